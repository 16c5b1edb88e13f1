#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# headers_alone.sh COMPILER STANDARD FOLDER: compiles every header below FOLDER, as installed, on
# its own, with warnings as errors.
set -uo pipefail
compiler=$1 standard=$2 folder=$3
count=0 failed=0

while read -r header; do
    count=$((count + 1))
    if ! echo "#include \"$header\"" | "$compiler" -std="$standard" -fsyntax-only -x c++ \
        -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror -I"$folder" -; then
        echo "$header does not compile alone as $standard" >&2
        failed=$((failed + 1))
    fi
done < <(cd "$folder" && find . -name '*.h' -printf '%P\n' | sort)

echo "$count headers, $failed that do not compile alone"
[[ $count -gt 0 && $failed == 0 ]]
