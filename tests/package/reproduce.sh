#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# reproduce.sh FOLDER: builds the packages of this checkout again, elsewhere, with another language, time
# zone and mask and without a compiler cache. They have to be those in FOLDER, byte for byte.
set -euo pipefail
folder=$1
here=$(dirname "${BASH_SOURCE[0]}")
again=$(mktemp -d)
trap 'rm -rf "$again"' EXIT

umask 027
env CCACHE_DISABLE=1 LC_ALL=C.UTF-8 TZ=Pacific/Auckland \
    "$here/../../debian/build" "$again/other/folder" >"$again/log" 2>&1 || {
    tail -n 40 "$again/log" >&2
    exit 1
}
sums() {
    (cd "$1" && sha256sum -- *.deb)
}
diff <(sums "$folder") <(sums "$again/other/folder") >&2 || {
    echo "two builds of the same files gave different packages" >&2
    exit 1
}
echo "$(sums "$folder" | wc -l) packages, the same twice"
