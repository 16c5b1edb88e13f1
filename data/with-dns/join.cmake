# SPDX-License-Identifier: Apache-2.0
#
# cmake -DDEFAULT=default.qvr -DMORE=rules.qvr.in -DOUTPUT=with-dns.qvr -P join.cmake
#
# Writes the default rules with the rules of MORE after the last deciding rule. With "elite first" the
# adjusting rules, which follow, do not apply to them.
set(license "# SPDX-License-Identifier: Apache-2.0\n")
file(READ "${DEFAULT}" default)
file(READ "${MORE}" more)
string(REPLACE "${license}" "" default "${default}")
string(REPLACE "${license}" "" more "${more}")

# The first adjusting rule with the comment above it, and the title of its section if it has one.
string(REGEX MATCH "\n(# ---[^\n]*\n\n)?(#[^\n]*\n)*adjust " adjusting "${default}")
if(adjusting STREQUAL "")
    message(FATAL_ERROR "${DEFAULT} has no adjusting rule that follows an empty line: "
                        "say in ${CMAKE_CURRENT_LIST_FILE} where the rules of ${MORE} belong")
endif()
string(FIND "${default}" "${adjusting}" at)
string(SUBSTRING "${default}" 0 ${at} before)
string(SUBSTRING "${default}" ${at} -1 after)

file(WRITE "${OUTPUT}"
"${license}#
# The default rules and, after their deciding rules, three rules that ask DNS. Those three were not
# measured: see docs/with-dns.md. The build makes this file of default.qvr, whose text follows, and
# with-dns/rules.qvr.in.
${before}
${more}${after}")
