#!/bin/bash
# Builds the library with -m32 in its own tree and runs the layout program
# against it: the records keep their layout with 32-bit pointers.
#   check_layout_m32.sh SOURCE_DIR WORK_DIR C_COMPILER
set -euo pipefail
source=$1
work=$2
cc=$3

mkdir -p "$work"
if ! cmake -S "$source" -B "$work" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DQX25_WERROR=ON \
        -DCMAKE_C_FLAGS=-m32 -DCMAKE_CXX_FLAGS=-m32 -DQX25_BUILD_TESTS=OFF \
        -DQX25_BUILD_BENCH=OFF > "$work/configure.log" 2>&1; then
    cat "$work/configure.log"
    exit 1
fi
if ! cmake --build "$work" --target qx25 > "$work/build.log" 2>&1; then
    cat "$work/build.log"
    exit 1
fi
"$cc" -m32 -std=c11 -Wall -Wextra -Werror -pedantic -I"$source/head" \
    "$source/tests/abi/layout.c" -L"$work/lib" -lqx25 -o "$work/layout_m32"
# The ELF class byte: 1 for a 32-bit object.
[ "$(od -An -tx1 -j4 -N1 "$work/lib/libqx25.so.2" | tr -d ' ')" = "01" ] || {
    echo "the library in $work is not a 32-bit one"
    exit 1
}
LD_LIBRARY_PATH="$work/lib" "$work/layout_m32" "$work"
