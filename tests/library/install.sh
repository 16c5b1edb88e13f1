#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# install.sh CMAKE BUILD PREFIX: installs BUILD into the emptied folder PREFIX. Everything of
# installed.txt has to be there, and no file may be installed by two build files.
set -euo pipefail
cmake=$1 build=$2 prefix=$3
here=$(dirname "${BASH_SOURCE[0]}")
failed=0

rm -rf "$prefix"
"$cmake" --install "$build" --prefix "$prefix" >"$build/install.log"

while read -r pattern; do
    if [[ ! $(compgen -G "$prefix/$pattern") ]]; then
        echo "not installed: $pattern" >&2
        failed=1
    fi
done < <(grep -v '^#' "$here/installed.txt")

twice=$(sort "$build/install_manifest.txt" | uniq --repeated)
if [[ $twice ]]; then
    echo "installed twice: $twice" >&2
    failed=1
fi
exit "$failed"
