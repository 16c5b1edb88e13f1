#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# The types of the package: that they are those of the module, that its Python keeps to them, and
# that a program of a user which uses them well passes while one that does not is caught.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mypy() {
    /usr/bin/python3 -m mypy --strict --cache-dir "$folder/cache" "$@"
}

# pybind11 gives its classes a metaclass of its own, and those that nobody makes an __init__ that says
# so.
cat >"$folder/pybind11" <<'END'
qvdeepheader(\._native)?\.[A-Z][a-z]+
qvdeepheader(\._native)?\.(Answer|Files|Messages|Scans)\.__init__
END
/usr/bin/python3 -m mypy.stubtest qvdeepheader --ignore-missing-stub --allowlist "$folder/pybind11"
mypy "$MYPYPATH"/qvdeepheader/*.py
mypy "$here/typed.py"

cat >"$folder/wrong.py" <<'END'
import qvdeepheader

scanner = qvdeepheader.Scanner(settings=3)
scanner.scan("text")
length: str = scanner.scan(b"A: b").node
END
if mypy "$folder/wrong.py" >"$folder/found"; then
    echo "the types let everything pass" >&2
    exit 1
fi
[[ $(grep -c ': error: ' "$folder/found") == 3 ]] || {
    cat "$folder/found" >&2
    exit 1
}
