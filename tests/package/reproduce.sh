#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# reproduce.sh FOLDER: builds the packages of this checkout again, elsewhere, with another language, time
# zone and mask. They have to be those in FOLDER, byte for byte. A compiler cache may only give what was
# compiled here, never what was compiled for FOLDER.
set -euo pipefail
folder=$1
here=$(dirname "${BASH_SOURCE[0]}")
again=$folder/again
mkdir -p "$again"
trap 'rm -rf "$again/other"' EXIT

umask 027
env -u CCACHE_BASEDIR -u CCACHE_NOHASHDIR CCACHE_NAMESPACE=again LC_ALL=C.UTF-8 TZ=Pacific/Auckland \
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
