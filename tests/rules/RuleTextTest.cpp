// SPDX-License-Identifier: Apache-2.0
//
// The pretty form, and how odd things are spelled. Each text is the decompiler's own form of the
// set that it compiles to.
#include "rules/language/RuleText.h"

#include "rules/language/Compiler.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

using namespace Rules;

namespace {

struct TextCase {
    char const* m_name;
    char const* m_text;
};

class RuleTextTest : public testing::TestWithParam<TextCase> {};

TEST_P(RuleTextTest, PrintsWhatAPersonWouldHaveWritten) {
    std::string const text = GetParam().m_text;
    auto const compiled = compileRules(text);
    ASSERT_EQ(showErrors("text", text, compiled.m_errors), "");
    EXPECT_EQ(ruleText(compiled.m_set), text);
}

INSTANTIATE_TEST_SUITE_P(
    Forms, RuleTextTest,
    testing::Values(
        TextCase{"Nothing", ""}, TextCase{"VersionAlone", "version 12\n"},
        TextCase{"ReadmeOfItsOwn", "version 3\nreadme \"hello\\n\"\nreadme \"CF_DT_VERSION=3\"\n"},
        TextCase{"ReadmeWithoutVersion", "readme \"\"\n"},
        TextCase{"Ordinary",
                 "version 1\n"
                 "\n"
                 "elite highest also-tree\n"
                 "adjust -0.2 code 'o' when first_from_matches_both == yes\n"
                 "decide 0.97 code 9001 support 1.5 level 1 when first_forged == yes and "
                 "hops_helo_no_domain != 0\n"
                 "decide 0.5 code 7 always\n"
                 "\n"
                 "tree {\n"
                 "    first_helo_dynamic == literal: confidence 0.9 support 3 counts 30 "
                 "27 3\n"
                 "    first_helo_dynamic != literal: confidence 0.4 support 97 {\n"
                 "        chain_broken == yes: confidence 0.1 support 5\n"
                 "    }\n"
                 "}\n"},
        TextCase{"Named", "version 1\n"
                          "\n"
                          "elite first\n"
                          "decide 0.97 code 9001 support 1.5\n"
                          "    name \"A consumer line\"\n"
                          "    because \"\xc3\x9c\xc3\xb6 says \\\"pc\\\" and \\\\.\"\n"
                          "    when first_forged == yes and hops_helo_no_domain != 0\n"
                          "decide 0.96 code 9001 always\n"
                          "adjust 0.1 code 'a'\n"
                          "    name \"An addend\"\n"
                          "    always\n"
                          "\n"
                          "tree\n"
                          "    name \"All\" {\n"
                          "    first_forged == yes: confidence 0 support 1 counts 5 0 5\n"
                          "        name \"Forged\"\n"
                          "        because \"Why.\" {\n"
                          "        chain_broken == yes: confidence 0 support 1\n"
                          "            name \"Broken\"\n"
                          "    }\n"
                          "}\n"},
        TextCase{"NamesOfNobody",
                 "version 1\n"
                 "\n"
                 "names-file \"Names of Quorvane Deep Header rules, format 1\\n\"\n"
                 "names-file \"decide 5\\n\"\n"
                 "names-file \"name A rule\\n\"\n"
                 "\n"
                 "tree leaf 0\n"},
        TextCase{"ADamagedFileOfNames", "names-file \"hello\\x00\"\n"},
        TextCase{"AnEmptyFileOfNames", "names-file \"\"\n"},
        TextCase{"RootThatSaysMore",
                 "tree when message_id_has_dot != yes: confidence 0.25 support 99 counts 10 4 6\n"},
        TextCase{"NumbersOutOfOrder",
                 "tree {\n"
                 "    node 4 message_id_has_dot == yes: confidence 0 support 1\n"
                 "    node 3 message_id_has_dot == no: confidence 1 support 1\n"
                 "}\n"},
        TextCase{"SharedAndCyclicAndDangling",
                 "tree {\n"
                 "    message_id_has_dot == yes: confidence 0 support 1 {\n"
                 "        -> 2\n"
                 "    }\n"
                 "    -> 3\n"
                 "    -> 480\n"
                 "    -> -5\n"
                 "    -> 0\n"
                 "}\n"},
        TextCase{"LowRecords", "tree leaf 0\n"
                               "node 0 message_id_has_dot == yes: confidence 0 support 1\n"},
        TextCase{"FileOfTwoEmptyRecords", "node 1 first_helo_is_domain == no: confidence 0 support "
                                          "0 counts 0 0 0 leaf 0\n"},
        TextCase{"UnreachableNode", "tree {\n"
                                    "    node 3 message_id_has_dot == yes: confidence 0 support 1\n"
                                    "}\n"
                                    "node 4 message_id_has_dot == no: confidence 0 support 1\n"},
        TextCase{"LeafWithChildren",
                 "tree {\n"
                 "    message_id_has_dot == yes: confidence 0 support 1 leaf 7 {\n"
                 "        first_forged == 5: confidence 0 support 1\n"
                 "    }\n"
                 "}\n"},
        TextCase{"OddNode", "tree {\n"
                            "    -1 test(-3) 5: confidence bits(0x7ff8000000000001) support -inf "
                            "counts 1 -2 3 leaf 0 reserved1 \"010203\" reserved2 9 child-count 11 "
                            "slots 3 2 1 0 -1 500 6 7 8 9\n"
                            "}\n"},
        TextCase{"TreeTail", "tree leaf 0\ntree-tail \"00ff\"\n"},
        TextCase{"OddElite", "elite select 9 also-tree 2 count 5 reserved1 1 reserved2 2 reserved3 "
                             "\"0102030405060708090a0b0c\"\n"
                             "type 7 -0 code 65 support 3 flag 2 reserved 4 conditions -2 always\n"
                             "adjust inf code 10 always\n"
                             "decide 0.5 code 0 support 0 when 38 test(2) 5 and -1 == 1\n"
                             "elite-tail \"616263\"\n"},
        TextCase{"EliteFileWithoutAHeader", "elite-tail \"\"\n"}),
    [](auto const& row) { return row.param.m_name; });

} // namespace
} // namespace Quorvane::Testing
