#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# host_readme.sh PREFIX README MESSAGE VERDICT: what README says of building a program against an
# installed copy, followed to the letter in a folder outside the sources. PREFIX holds an installed copy.
set -euo pipefail
prefix=$(readlink -f "$1") readme=$2 message=$3 verdict=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The blocks of commands of the section, one file each.
awk -v work="$work" '/^## / { here = ($0 == "## Use the library") }
    here && /^```$/ { inside = 0 }
    inside { print > (work "/block" count) }
    here && /^```sh$/ { inside = 1; count++ }' "$readme"

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
