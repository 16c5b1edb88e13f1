#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# shards.sh QVSCAN QVRULES: a scan spread over GNU parallel, its tables brought together, and one
# learner give the very tree that one process learns. The commands are those of docs/learning.md.
set -euo pipefail
qvscan=$1
qvrules=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
mkdir -p mail/{alpha,beta}/{ham,spam} shards rules/var/spool/etc/antispam
: >rules/var/spool/etc/antispam/qv.dt

# message FILE HELO REVERSE-NAME ADDRESS
message() {
    printf 'Received: from %s (%s [%s])\n\tby mx.example.org; Mon, 1 Jan 2024 10:00:00 +0000\n' \
        "$2" "$3" "$4" >"$1"
    printf 'From: a@example.net\nTo: b@example.org\nMessage-ID: <1@%s>\n\n' "$2" >>"$1"
}

for site in alpha beta; do
    for i in {1..60}; do
        message "mail/$site/ham/$i.eml" "mail$i.$site.example" "mail$i.$site.example" "192.0.2.$i"
        message "mail/$site/spam/$i.eml" "pc$((i % 7)).$site.example" \
            "192-0-2-$i.dyn.$site.example" "192.0.2.$i"
    done
done

# One process.
"$qvrules" learn --ham mail/{alpha,beta}/ham --spam mail/{alpha,beta}/spam -o one.qvr

# Shards of 16 messages: scanned side by side, each counted into a small table.
shard() {
    local corpus=$1 label=$2 number=$3
    shift 3
    "$qvscan" --root rules --dns off --format csv "$@" |
        "$qvrules" learn "--$label-vectors" "$corpus=-" --table "shards/$corpus-$label-$number.csv"
}
export -f shard
export qvscan qvrules
for site in alpha beta; do
    for label in ham spam; do
        find "mail/$site/$label" -name '*.eml' -print0 |
            parallel --will-cite -0 -n 16 -j 4 shard "$site" "$label" '{#}' '{}'
    done
done
[[ $(find shards -type f | wc -l) == 16 ]]
# One aggregated table, one learner.
"$qvrules" learn --vectors shards/*.csv --table all.csv
"$qvrules" learn --vectors all.csv -o sharded.qvr
cmp one.qvr sharded.qvr
