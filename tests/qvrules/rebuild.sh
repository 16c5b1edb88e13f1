#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# rebuild.sh QVRULES RULES: the programs of data/rules make rules of training mail, byte for byte the
# same however the mail is packed, and write what they measured into a page. The mail is invented.
set -euo pipefail
qvrules=$1
rules=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

die() {
    echo "rebuild.sh: $*" >&2
    exit 1
}

# message HELO REVERSE-NAME ADDRESS
message() {
    printf 'From x@example.invalid Mon Jan  1 10:00:00 2024\n'
    printf 'Received: from %s (%s [%s])\n\tby mx.example.org; Mon, 1 Jan 2024 10:00:00 +0000\n' \
        "$1" "$2" "$3"
    printf 'From: a@example.net\nTo: b@example.org\nMessage-ID: <1@%s>\n\n' "$1"
}

for site in alpha beta; do
    mkdir -p "plain/$site" "packed/$site"
    for i in {1..115}; do
        message "mail$i.$site.example" "mail$i.$site.example" "192.0.2.$i" >>"plain/$site/ham.mbox"
        message "pc$((i % 7)).$site.example" "192-0-2-$i.dyn.$site.example" "192.0.2.$i" \
            >>"plain/$site/spam.mbox"
    done
    xz -c "plain/$site/ham.mbox" >"packed/$site/ham.mbox.xz"
    gzip -c "plain/$site/spam.mbox" >"packed/$site/spam.mbox.gz"
done

"$rules/learn.py" "$qvrules" plain plain.qvr
"$rules/learn.py" "$qvrules" packed packed.qvr
cmp plain.qvr packed.qvr
sed '/first_helo_dynamic == no: confidence/,$d' "$rules/top.qvr" >top.qvr
cmp -n "$(stat -c %s top.qvr)" plain.qvr top.qvr
grep -q '^ *first_helo_dynamic == no: confidence 0.2583 support 75.0000 counts 690 230 460$' plain.qvr ||
    die "the last leaf has other figures: $(cat plain.qvr)"
"$qvrules" check plain.qvr

{
    printf '# Page\n'
    printf '\n<!-- table %s -->\nold\n<!-- end -->\n' left-out calibration editions adapted envelope rules messages \
        copies ipv6 ipv6-learned
    echo rest
} >page.md
"$rules/measure.py" "$qvrules" packed page.md
for row in '| alpha | 100.0 % | 0 of 115, ' '| beta | 100.0 % | 0 of 115, ' \
    '| last third of alpha | 100.0 % | 0 of 39, ' '| alpha | nothing | 0 of 58, ' \
    '| alpha | a tenth: 22 messages, too few of one kind | 0 of 58, ' \
    '| alpha | half: 114 messages' '| alpha | 0.00 % → 0.00 % | ' \
    '| alpha | 0 of 115, 0.0 % | 0 of 115, 0.0 % | - |' \
    '| 8 | **Consumer line that begins the trail.** ' '| from 0.9 | 230 | 99.7 % | 100.0 % |' \
    '| all of these | 100.0 % | 0 of 230, ' '| all of these | 0 → 0 of 230 | 100.0 % → 100.0 % | ' \
    '| rule | alpha | beta |' '| 8 | 115 / 0 | 115 / 0 |'; do
    grep -qF "$row" page.md || die "no row '$row' in: $(cat page.md)"
done
xmllint --noout adapted.svg || die "the drawing is no SVG"
grep -q "<polyline.*<text.*alpha\|>alpha<" adapted.svg || die "no line for alpha"
grep -qx rest page.md || die "the text after the tables is gone"
! grep -qx old page.md || die "the old table is still there"

mkdir nothing
! "$rules/learn.py" "$qvrules" nothing none.qvr 2>error.txt || die "learned from nothing"
grep -q '^learn: nothing: no corpus in it' error.txt || die "said: $(cat error.txt)"
! "$rules/measure.py" "$qvrules" plain error.txt 2>error2.txt || die "measured into a page without marks"
grep -q 'no "<!-- table left-out -->"' error2.txt || die "said: $(cat error2.txt)"
