#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# host_page.sh PREFIX PAGE MESSAGE VERDICT: what the page says of building a program against an installed
# copy, followed to the letter in a folder outside the sources. PREFIX holds an installed copy.
set -euo pipefail
prefix=$(readlink -f "$1") page=$2 message=$3 verdict=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The blocks of commands, one file each, and the code.
awk -v work="$work" '/^```$/ { file = "" }
    file { print > file }
    /^```sh$/ { file = work "/block" ++count }
    /^```cpp$/ { file = work "/site.cpp" }' "$page"

# ./dev has built; here is what it installs.
mkdir "$work/home"
cp -a "$prefix" "$work/home/qv"
installed="./dev install --prefix ~/qv"
grep -qxF "$installed" "$work/block1"

for block in 2 3; do
    mkdir "$work/$block"
    cp "$message" "$work/$block/some.eml"
    (cd "$work/$block" && HOME=$work/home bash -eu "$work/block$block") >"$work/output" 2>&1 ||
        { cat "$work/output" && exit 1; }
    cat "$work/output"
    grep -q "^$verdict " "$work/output"
done

# What a folder without rules, or none at all, leads to is said in words.
for root in "$work" "$work/nowhere"; do
    if "$work/3/host" "$root" "$message" 2>"$work/output" || ! grep '^host: .*'"$root" "$work/output"; then
        cat "$work/output"
        exit 1
    fi
done

# The code for a site compiles and judges with what it sets.
cat >>"$work/site.cpp" <<'END'
#include <fstream>
#include <iostream>
#include <iterator>
#include <platform/File.h>

int main(int, char** argv) {
    File::setRoot(argv[1]);
    setSite();
    DeepHeaderScanner().init();
    std::ifstream file(argv[2]);
    auto const record = judge({std::istreambuf_iterator<char>(file), {}});
    std::cout << (record.verdict.isSpam ? "spam" : "not spam") << ' ' << record.trail.size() << '\n';
}
END
export PKG_CONFIG_PATH=$work/home/qv/lib/pkgconfig
# shellcheck disable=SC2046 # pkg-config prints several words
c++ -std=c++17 -Wall -Wextra -Wpedantic -Werror "-Wl,-rpath,$work/home/qv/lib" "$work/site.cpp" -o "$work/site" \
    $(pkg-config --cflags --libs qvdeepheader)
judged() {
    "$work/site" "$work/home/qv/share/qvdeepheader/root" "$(dirname "$message")/$1.eml"
}
# The relay of the first message has a score there, and that of the other one has none.
[[ $(judged "$(basename "$message" .eml)" | tee /dev/stderr) == 'not spam 1' ]]
[[ $(judged helo-localhost | tee /dev/stderr) == 'spam 1' ]]
