#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# host_pkgconfig.sh COMPILER PREFIX EXPECTED MESSAGE: the same with pkg-config; also builds the
# very lines of C++ that README shows, and runs them.
set -euo pipefail
compiler=$1 prefix=$2 expected=$3 message=$4
here=$(dirname "${BASH_SOURCE[0]}")

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name qvdeepheader.pc)")
export PKG_CONFIG_PATH
read -ra flags < <(pkg-config --cflags --libs qvdeepheader)
libraries=$(pkg-config --variable=libdir qvdeepheader)

# judge SOURCE: builds it and runs it on the message.
judge() {
    local program=$work/${1##*/}.out answer
    "$compiler" -std=c++17 -Wall -Wextra -Werror -o "$program" "$1" "${flags[@]}" \
        "-Wl,-rpath,$libraries"
    answer=$("$program" "$prefix/share/qvdeepheader/root" "$message")
    echo "$answer"
    [[ $answer == "$expected"* ]]
}

# shellcheck disable=SC2016 # backquotes are Markdown's
# The first block of C++ of README is the first host that anybody writes.
sed -n '/^```cpp$/,/^```$/p' "$here/../../README.md" | sed '/^```/d' >"$work/readme.cpp"

judge "$here/host/host.cpp"
judge "$work/readme.cpp"
