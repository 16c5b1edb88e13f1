#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# host_cmake.sh PREFIX WORK EXPECTED MESSAGE: copies the small host out of the tree, builds it
# against the library installed in PREFIX with find_package, and runs it on MESSAGE.
set -euo pipefail
prefix=$1 work=$2 expected=$3 message=$4
source=$(dirname "${BASH_SOURCE[0]}")/host

rm -rf "$work"
mkdir -p "$work"
cp -r "$source" "$work/source"
cmake -S "$work/source" -B "$work/build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >"$work/log"
cmake --build "$work/build" >>"$work/log" || {
    cat "$work/log"
    exit 1
}
answer=$("$work/build/host" "$prefix/share/qvdeepheader/root" "$message")
echo "$answer"
[[ $answer == "$expected"* ]]
