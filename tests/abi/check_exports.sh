#!/bin/bash
# Compares the dynamic symbols a shared library defines with the expected
# list, and checks its SONAME.
set -eu
library=$1
expected=$2

actual=$(nm -D --defined-only "$library" | awk '{print $NF}' | sort)
wanted=$(grep -v '^#' "$expected" | sed '/^$/d' | sort)
if [ "$actual" != "$wanted" ]; then
    echo "exported symbols differ from $expected (< expected, > actual):"
    diff <(echo "$wanted") <(echo "$actual") || true
    exit 1
fi

soname=$(readelf -d "$library" | sed -n 's/.*Library soname: \[\(.*\)\].*/\1/p')
if [ "$soname" != "libqx25.so.2" ]; then
    echo "SONAME is '$soname', expected libqx25.so.2"
    exit 1
fi
echo "$(echo "$actual" | wc -l) exported symbols as expected; SONAME $soname"
