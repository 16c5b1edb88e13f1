#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
#
# hardening.sh BUILD-TYPE FILE...: reads from programs and shared libraries that they were hardened:
# loaded anywhere (PIE), with read-only relocations (RELRO, bound at load), no executable stack, and
# compiled with checks of stacks, of the standard library and of branches. The checks of calls of the
# C library exist in optimised builds only.
set -uo pipefail
build_type=$1
shift
export LC_ALL=C
failed=0

# require FILE WHAT PATTERN < what was read of it
require() {
    if ! grep -Eq -- "$3"; then
        echo "$1: $2 is missing" >&2
        failed=1
    fi
}

for file in "$@"; do
    head=$(readelf --wide --file-header --program-headers --dynamic "$file")
    symbols=$(nm --dynamic --undefined-only "$file")
    code=$(objdump --disassemble --no-show-raw-insn "$file")
    require "$file" "an address of its loader's choice" 'Type: +DYN' <<<"$head"
    [[ $file == *.so* ]] || require "$file" PIE 'FLAGS_1.* PIE' <<<"$head"
    require "$file" RELRO '^ +GNU_RELRO' <<<"$head"
    require "$file" 'binding at load' 'FLAGS_1.* NOW' <<<"$head"
    require "$file" 'a stack that is not executable' '^ +GNU_STACK .* RW +0x' <<<"$head"
    require "$file" '-fstack-protector-strong' ' __stack_chk_fail@' <<<"$symbols"
    require "$file" _GLIBCXX_ASSERTIONS 'glibcxx_assert_fail' <<<"$symbols"
    # The C library's own start has a few landing places for branches; our functions have many.
    require "$file" -fcf-protection '^[0-9]{3,}$' <<<"$(grep -c endbr64 <<<"$code")"
    # What follows shows only where there is something to check, as in each program.
    [[ $file == *.so* ]] && continue
    # Large frames are touched page by page.
    require "$file" -fstack-clash-protection 'orq +[$]0x0,' <<<"$code"
    [[ $build_type == Debug ]] ||
        require "$file" _FORTIFY_SOURCE '_chk@GLIBC' <<<"${symbols//__stack_chk_fail@/}"
done
exit "$failed"
