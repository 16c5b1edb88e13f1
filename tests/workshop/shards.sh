#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# shards.sh PROGRAMS DOCS: a scan spread over GNU parallel, its tables brought together, and one learner
# give the very tree that one process learns. The commands are read from docs/learning.md; options of
# GNU parallel may be in PARALLEL.
set -euo pipefail
export PATH=$1:$PATH
docs=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
mkdir -p mail/{site-a,site-b}/{ham,spam}

# message FILE HELO REVERSE-NAME ADDRESS
message() {
    printf 'Received: from %s (%s [%s])\n\tby mx.example.org; Mon, 1 Jan 2024 10:00:00 +0000\n' \
        "$2" "$3" "$4" >"$1"
    printf 'From: a@example.net\nTo: b@example.org\nMessage-ID: <1@%s>\n\n' "$2" >>"$1"
}

for site in site-a site-b; do
    for i in {1..60}; do
        message "mail/$site/ham/$i.eml" "mail$i.$site.example" "mail$i.$site.example" "192.0.2.$i"
        message "mail/$site/spam/$i.eml" "pc$((i % 7)).$site.example" \
            "192-0-2-$i.dyn.$site.example" "192.0.2.$i"
    done
done

# One process.
qvrules learn --ham mail/{site-a,site-b}/ham --spam mail/{site-a,site-b}/spam -o one.qvr

# Shards, of 16 messages instead of 10,000. What is not a message does not matter.
: >mail/site-a/ham/empty.eml
commands=$(awk '/with GNU parallel:$/ { found = 1; next } found && /^[^ ]/ { exit } found' "$docs" |
    sed 's/^    //; s/-n 10000/-n 16/')
run() {
    PARALLEL="--will-cite -j 4 ${PARALLEL-}" bash -c "$commands"
}
run
[[ $(find shards -type f | wc -l) == 16 ]]
cmp one.qvr learned.qvr

# A scan that dies in the middle of its output.
if [[ ! ${PARALLEL-} ]]; then
    rm -r shards learned.qvr
    mkdir dying
    cat >dying/qvscan <<END
#!/bin/sh
case "\$*" in *site-b/ham/7.eml*) $1/qvscan "\$@" | sed 5q && kill -KILL \$\$ ;; esac
exec $1/qvscan "\$@"
END
    chmod +x dying/qvscan
    ! PATH=$PWD/dying:$PATH run || {
        echo "a scan died, and nobody noticed" >&2
        exit 1
    }
    [[ ! -e learned.qvr ]]
fi
