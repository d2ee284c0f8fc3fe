#!/bin/bash
# Installs the build tree into a scratch prefix, then builds and runs a small
# C program against the installation, once through pkg-config and once
# through find_package(qx25).
set -euo pipefail
build_dir=$1
source_dir=$2
cc=$3
cmake=$4
extra_flags=${5:-}

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
prefix=$scratch/prefix

"$cmake" --install "$build_dir" --prefix "$prefix" > "$scratch/install.log"
libdir=$(dirname "$(find "$prefix" -name 'libqx25.so.2' | head -n 1)")
test -f "$prefix/include/qx25.h"
test -f "$libdir/pkgconfig/qx25.pc"
test -f "$libdir/cmake/qx25/qx25Config.cmake"
test -f "$libdir/locale/C/LC_MESSAGES/libqx25messages.cat"
test -f "$libdir/locale/fr_FR.UTF-8/LC_MESSAGES/libqx25messages.cat"
test -x "$prefix/bin/qx25"
datadir=$prefix/$(basename "$libdir")
cmp "$source_dir/../../examples/lib/world_networks.profile" "$datadir/world_networks.profile"

export PKG_CONFIG_PATH=$libdir/pkgconfig
# shellcheck disable=SC2046,SC2086
"$cc" -std=c99 -Wall -Wextra -Werror $extra_flags -o "$scratch/by_pkgconfig" \
    "$source_dir/use_qx25.c" $(pkg-config --cflags --libs qx25)
# It runs as it is: the link line names the library's directory.
env -u LD_LIBRARY_PATH "$scratch/by_pkgconfig"

mkdir "$scratch/project"
"$cmake" -S "$source_dir/project" -B "$scratch/project" -G Ninja \
    -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_C_FLAGS="$extra_flags" \
    -DCMAKE_EXE_LINKER_FLAGS="$extra_flags" > "$scratch/configure.log"
"$cmake" --build "$scratch/project" > "$scratch/build.log"
"$scratch/project/use_qx25"

# The installed tool finds its library by itself, and the networks in the
# library data directory.
"$prefix/bin/qx25" addr 3.23421234567 > /dev/null
X25LIBFILES=$datadir "$prefix/bin/qx25" networks > "$scratch/networks"
grep -q '^    10  PSS  ' "$scratch/networks"
echo "installed tree builds and runs C programs"
