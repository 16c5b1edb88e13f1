#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# installed_programs.sh PREFIX: what was installed in PREFIX works at once, also after it was moved to
# a folder that no build file knows.
set -euo pipefail
installed=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
prefix="$folder/moved here"
cp -a "$installed" "$prefix"
share=$prefix/share/qvdeepheader

# expect STATUS PATTERN COMMAND...: the command ends with this status, and its output has the pattern.
expect() {
    local status=0 output
    output=$("${@:3}" 2>&1) || status=$?
    if [[ $status != "$1" ]] || ! grep -qE -- "$2" <<<"$output"; then
        echo "${*:3}: status $status, not $1 with $2:"$'\n'"$output" >&2
        exit 1
    fi
}

cd "$folder"
expect 1 '^spam ' "$prefix/bin/qvscan" --format text "$share/examples/spam-bot-dynamic-name.eml"
expect 0 'passed' "$prefix/bin/qvrules" test "$share/rules/cases/default.toml" \
    "$share/rules/cases/starter.toml"
expect 0 'passed' "$prefix/bin/qvrules" test "$share/rules/cases/with-dns.toml" \
    --rules "$share/rules/with-dns.qvr"
# The example of settings is one that the daemon takes, and so is the list of patterns.
{
    echo "root = '$share/root'"
    echo "dynamic-patterns = '$share/dynamic-patterns.txt'"
    cat "$share/qvdeepheader.toml"
} >settings.toml
expect 0 'in order' "$prefix/bin/qvmilter" --check --config settings.toml
# The Python package finds its library and the default rules.
expect 0 '^spam$' env PYTHONPATH="$prefix/lib/python3/dist-packages" /usr/bin/python3 -B -c "
import qvdeepheader, sys
print(qvdeepheader.Scanner(settings={'dns': 'off'}).scan(open(sys.argv[1], 'rb').read()).verdict)" \
    "$share/examples/spam-bot-dynamic-name.eml"
# The unit names the program where it was installed.
expect 0 "^ExecStart=$installed/bin/qvmilter " cat "$prefix/lib/systemd/system/qvmilter.service"
