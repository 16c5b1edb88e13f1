#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# host_cmake.sh PREFIX EXPECTED MESSAGE: copies the small host out of the tree, builds it
# against the library installed in PREFIX with find_package, and runs it on MESSAGE.
set -euo pipefail
prefix=$1 expected=$2 message=$3
source=$(dirname "${BASH_SOURCE[0]}")/host

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp -r "$source" "$work/source"
cmake -S "$work/source" -B "$work/build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >"$work/log"
cmake --build "$work/build" >>"$work/log" || {
    cat "$work/log"
    exit 1
}
answer=$("$work/build/host" "$prefix/share/qvdeepheader/root" "$message")
echo "$answer"
[[ $answer == "$expected"* ]]
