#!/bin/bash
# Checks the manual pages: every page builds without a warning from mandoc
# and from man/groff, every exported function opens a page that names it,
# every file format and the tool have their page, and qx25(1) describes
# every command of the tool.
set -euo pipefail
build_dir=$1
library=$2
cmake=$3
tool=$4

# shellcheck source=../support/script_checks.sh
source "$(dirname "$0")/../support/script_checks.sh"

# 1. Every page lints clean.
mapfile -t pages < <(find "$build_dir/man" -name '*.[135]' | sort)
[ ${#pages[@]} -gt 0 ] || fail "no pages under $build_dir/man"
for page in "${pages[@]}"; do
    if ! out=$(mandoc -T lint -W warning "$page" 2>&1) || [ -n "$out" ]; then
        fail "mandoc: $out"
    fi
    out=$(LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings -E UTF-8 -l -Tutf8 -Z "$page" 2>&1 > /dev/null) || true
    [ -z "$out" ] || fail "man --warnings $page: $out"
done

# 2. The installed pages open by every name.
"$cmake" --install "$build_dir" --prefix "$scratch/prefix" > "$scratch/install.log"
mandir=$scratch/prefix/share/man
# The names the NAME section of an installed page gives.
names_of() {
    sed -n '/^\.SH NAME/{n;p;q}' "$1" | sed 's/ \\-.*//; s/, /\n/g'
}
opens() { # section name
    local path
    if ! path=$(man -M "$mandir" -w "$1" "$2" 2> /dev/null); then
        fail "man $1 $2 finds no page"
        return
    fi
    names_of "$(readlink -f "$path")" | grep -qx -- "$2" || fail "man $1 $2 opens $path, whose NAME does not give $2"
    man -M "$mandir" "$1" "$2" 2> /dev/null | grep -q . || fail "man $1 $2 shows nothing"
}
mapfile -t functions < <(nm -D --defined-only "$library" | awk '$2 == "T" {print $3}' | sort)
[ ${#functions[@]} -gt 90 ] || fail "only ${#functions[@]} exported functions found in $library"
for name in "${functions[@]}"; do
    opens 3 "$name"
done
for name in link_config boardconf pvcmapconf xhosts subnetworks padmapconf x29profile paddconf \
    x25conf x25_template lapb_template llc2_template wan_template world_networks.profile; do
    opens 5 "$name"
done
opens 1 qx25

# 3. qx25(1) describes every command of the tool.
mapfile -t commands < <("$tool" --help | sed -n '/^Commands:/,/^$/p' | awk 'NF > 1 {print $1}')
[ ${#commands[@]} -gt 10 ] || fail "qx25 --help lists only ${#commands[@]} commands"
commands_section=$(man -M "$mandir" 1 qx25 2> /dev/null | sed -n '/^COMMANDS/,/^OPTIONS/p')
for command in "${commands[@]}"; do
    grep -qE "^       $command( |$)" <<< "$commands_section" || fail "qx25(1) does not describe $command"
done

if [ "$failures" -ne 0 ]; then
    echo "$failures problems with the manual pages"
    exit 1
fi
echo "${#pages[@]} pages clean; ${#functions[@]} functions, the file formats and qx25 open their page"
