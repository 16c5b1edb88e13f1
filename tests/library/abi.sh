#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# abi.sh [--record] BUILD: compares what the libraries in BUILD, which has debug information, offer to
# programs that were compiled before with what is recorded here, symbols and the layout of public types;
# --record writes that down anew.
set -euo pipefail
record=''
if [[ $1 == --record ]]; then
    record=1
    shift
fi
build=$1
here=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")
source=$here/../..
failed=0
# Types that no public header declares are nobody else's business, so they are not recorded.
public=()
for room in include include2 platform; do
    public+=(--headers-dir "$source/$room")
done

for library in libqvdeepheader libqvplatform; do
    known=$here/$library.abi
    if [[ $record ]]; then
        abidw "${public[@]}" --drop-private-types --exported-interfaces-only \
            --no-corpus-path --no-comp-dir-path --no-show-locs --no-parameter-names --no-elf-needed \
            --type-id-style hash --out-file "$known" "$build/lib/$library.so"
    elif ! abidiff --no-show-locs --exported-interfaces-only "$known" "$build/lib/$library.so"; then
        echo "$library is not what is recorded in tests/library/$library.abi" >&2
        failed=1
    fi
done
if [[ $failed == 1 ]]; then
    echo "Programs that were compiled before may notice. A change that breaks them needs another soname; record" \
        "any other with \"./dev abi --record\", and say in CHANGELOG.md what is new." >&2
fi
exit "$failed"
