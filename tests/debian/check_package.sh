#!/bin/bash
# Builds the Debian packages from a copy of the source tree, checks them with
# lintian, unpacks them into a scratch root and checks what each holds.
set -euo pipefail
source_dir=$(cd "$1" && pwd)

for program in dpkg-buildpackage dh lintian; do
    if ! command -v "$program" > /dev/null; then
        echo "Debian package: skipped, $program is not installed"
        exit 0
    fi
done

# shellcheck source=../support/script_checks.sh
source "$(dirname "$0")/../support/script_checks.sh"

# The tracked and new files of the tree, without build directories.
mkdir "$scratch/libqx25"
git -C "$source_dir" ls-files -z --cached --others --exclude-standard |
    (cd "$source_dir" && xargs -0 cp --parents -t "$scratch/libqx25" 2> /dev/null || true)
[ -f "$scratch/libqx25/debian/rules" ] || { echo "FAIL: the copy of the tree has no debian/rules"; exit 1; }

started=$SECONDS
if ! (cd "$scratch/libqx25" && DEB_BUILD_OPTIONS="nocheck parallel=2" \
    dpkg-buildpackage -us -uc -b > "$scratch/build.log" 2>&1); then
    tail -n 40 "$scratch/build.log"
    echo "FAIL: dpkg-buildpackage"
    exit 1
fi
echo "packages built in $((SECONDS - started)) s"

changes=$(ls "$scratch"/libqx25_*.changes)
if ! lintian --fail-on error "$changes" > "$scratch/lintian.log" 2>&1; then
    cat "$scratch/lintian.log"
    fail "lintian reports errors"
fi

multiarch=$(dpkg-architecture -qDEB_HOST_MULTIARCH)
libdir=usr/lib/$multiarch
for package in libqx25-2 libqx25-dev qx25; do
    deb=$(ls "$scratch"/${package}_*.deb)
    mkdir -p "$scratch/$package"
    dpkg-deb -x "$deb" "$scratch/$package"
    dpkg-deb -x "$deb" "$scratch/root"
    (cd "$scratch/$package" && find . ! -type d | sed 's#^\./##' | sort) > "$scratch/$package.files"
done

# holds PACKAGE PATH...: each path is in the package (a file or a link).
holds() {
    local package=$1 path
    shift
    for path in "$@"; do
        grep -qx -- "$path" "$scratch/$package.files" || fail "$package does not hold $path"
    done
}
# only PACKAGE PATTERN: every file of the package matches the pattern.
only() {
    local stray
    stray=$(grep -vE "$2" "$scratch/$1.files" || true)
    [ -z "$stray" ] || fail "$1 holds files it should not: $stray"
}

holds libqx25-2 "$libdir/libqx25.so.2" "$libdir/libqx25.so.2.0.0" \
    "$libdir/qx25/world_networks.profile" \
    "$libdir/qx25/locale/C/LC_MESSAGES/libqx25messages.cat" \
    "$libdir/qx25/locale/fr_FR.UTF-8/LC_MESSAGES/libqx25messages.cat" \
    usr/share/doc/libqx25-2/copyright
only libqx25-2 "^($libdir/libqx25\.so\.2|$libdir/qx25/|usr/share/doc/libqx25-2/)"

holds libqx25-dev usr/include/qx25.h "$libdir/libqx25.so" "$libdir/pkgconfig/qx25.pc" \
    "$libdir/cmake/qx25/qx25Config.cmake" "$libdir/cmake/qx25/qx25ConfigVersion.cmake" \
    usr/share/man/man3/stox25.3.gz usr/share/man/man3/getxhostent.3.gz \
    usr/share/man/man3/getxhostbyname.3.gz
only libqx25-dev "^(usr/include/|$libdir/libqx25\.so$|$libdir/pkgconfig/|$libdir/cmake/qx25/|usr/share/man/man3/|usr/share/doc/libqx25-dev/)"
# A page for every exported function.
nm -D --defined-only "$scratch/libqx25-2/$libdir/libqx25.so.2" | awk '$2 == "T" {print $3}' |
    while read -r function; do
        grep -qx "usr/share/man/man3/$function.3.gz" "$scratch/libqx25-dev.files" ||
            echo "$function" >> "$scratch/without-page"
    done
[ ! -s "$scratch/without-page" ] || fail "no page in libqx25-dev for $(tr '\n' ' ' < "$scratch/without-page")"
[ "$(readlink "$scratch/libqx25-dev/usr/share/man/man3/getxhostbyname.3.gz")" = getxhostent.3.gz ] ||
    fail "man3/getxhostbyname.3.gz is not a link to getxhostent.3.gz"

holds qx25 usr/bin/qx25 usr/share/man/man1/qx25.1.gz usr/share/man/man5/link_config.5.gz \
    usr/share/man/man5/boardconf.5.gz usr/share/man/man5/x25_template.5.gz \
    usr/share/man/man5/paddconf.5.gz usr/share/bash-completion/completions/qx25
only qx25 "^(usr/bin/qx25$|usr/share/man/man[15]/|usr/share/bash-completion/completions/qx25$|usr/share/doc/qx25/)"

# The package relations and the symbols file.
# The tool carries the library's objects, and takes its data from libqx25-2.
dpkg-deb -f "$scratch"/qx25_*.deb Depends | grep -q 'libqx25-2 (= ' ||
    fail "qx25 does not depend on its own libqx25-2"
dpkg-deb -f "$scratch"/libqx25-dev_*.deb Depends | grep -q 'libqx25-2 (= ' ||
    fail "libqx25-dev does not depend on its own libqx25-2"
dpkg-deb --ctrl-tarfile "$scratch"/libqx25-2_*.deb | tar -xO ./symbols > "$scratch/symbols"
[ "$(grep -c '@Base' "$scratch/symbols")" -eq "$(grep -cvE '^#|^$' "$source_dir/tests/abi/expected_exports.txt")" ] ||
    fail "the symbols file does not list every exported name"

# The installed tool runs with the installed library and finds its data
# where the package puts it.
tool_run() {
    env LD_LIBRARY_PATH="$scratch/root/$libdir" "$scratch/root/usr/bin/qx25" "$@"
}
tool_run --version | grep -qx 'qx25 2.0.0 (libqx25.so.2)' || fail "qx25 --version"
tool_run --help | grep -q "default /$libdir/qx25" || fail "qx25 does not name /$libdir/qx25 as its data"
X25LIBFILES=$scratch/root/$libdir/qx25 tool_run networks | grep -q '^    10  PSS  ' ||
    fail "qx25 networks with the packaged profiles"

if [ "$failures" -ne 0 ]; then
    echo "$failures problems with the Debian packages"
    exit 1
fi
echo "Debian packages libqx25-2, libqx25-dev and qx25 built, lintian-clean and complete"
