# SPDX-License-Identifier: Apache-2.0
#
# cmake -DDEFAULT=default.qvr -DMORE=rules.qvr.in -DOUTPUT=with-dns.qvr -P join.cmake
#
# Writes the default rules with the rules of MORE after the last elite rule, before the tree.
string(CONCAT license "# SPDX-License-" "Identifier: Apache-2.0\n") # not a licence line of this file
file(READ "${DEFAULT}" default)
file(READ "${MORE}" more)
string(REPLACE "${license}" "" default "${default}")
string(REPLACE "${license}" "" more "${more}")

# The tree with the comment above it.
string(REGEX MATCH "\n(#[^\n]*\n)*tree " tree "${default}")
if(tree STREQUAL "")
    message(FATAL_ERROR "${DEFAULT} has no tree: "
                        "say in ${CMAKE_CURRENT_LIST_FILE} where the rules of ${MORE} belong")
endif()
string(FIND "${default}" "${tree}" at)
string(SUBSTRING "${default}" 0 ${at} before)
string(SUBSTRING "${default}" ${at} -1 after)

file(WRITE "${OUTPUT}"
"${license}#
# The default rules and, after their elite rules, three rules that ask DNS. Those three were not
# measured: see docs/with-dns.md. The build makes this file of default.qvr, whose text follows, and
# with-dns/rules.qvr.in.
${before}
${more}${after}")
