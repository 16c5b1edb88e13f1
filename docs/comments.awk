# SPDX-License-Identifier: Apache-2.0
# Comments of the headers as Doxygen wants them, without a change of line numbers. The first paragraph of a header
# is about the file, and about the class of the same name, which then has no comment of its own.
FNR == 1 { name = FILENAME; sub(/.*\//, "", name); class = name; sub(/\.h$/, "", class) }
FNR == 1 && /^\/\/ SPDX/ { print "/// \\file"; next }
/^ *\/\/ ---/ { print; last = ""; next } # a heading, about no one thing
/\/\// { gsub(/\\xNN/, "\\\\\\\\xNN") }
$0 ~ "^(class|struct) (QV_API )?" class "( |$)" && !/;$/ && last !~ /^(\/\/|template)/ {
    $0 = "/** \\copydoc " name " */ " $0
}
# What a copy shares is said once, of the class.
/^ +[A-Za-z]+\(([A-Za-z]+ const&|[A-Za-z]+&&)( other)?\)( noexcept)?( = default)?;$/ ||
/^ +[A-Za-z]+& operator=\(([A-Za-z]+ const&|[A-Za-z]+&&)( other)?\)( noexcept)?( = default)?;$/ {
    if (last !~ /^ *\/\//) {
        $0 = $0 " ///< " (/&&/ ? "Moves." : "Copies, as the class says.")
    }
}
{ last = $0 }
/^ *\/\/ / { sub(/\/\/ /, "/// ") }
/^ *\/\/$/ { sub(/\/\//, "///") }
!/\/\/\// { sub(/; +\/\/ /, "; ///< "); sub(/, +\/\/ /, ", ///< ") }
{ print }
