// SPDX-License-Identifier: Apache-2.0
// What qvrules says of a wrong command line: the option, the value, and what it could have been.
#include "CommandTest.h"

#include <gmock/gmock.h>

namespace Quorvane::Testing {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

TEST(OptionErrors, NameTheOptionAndWhatItTakes) {
    struct {
        Arguments m_words;
        char const* m_error;
    } const cases[] = {
        {{"evalute", "x"}, "unknown command \"evalute\"; did you mean evaluate?"},
        {{"check", "x", "--format", "jsn"},
         "--format: \"jsn\" is not one of text|json; did you mean \"json\"?"},
        {{"check", "x", "--spam-threshold", "-1"},
         "--spam-threshold: \"-1\" is not a probability; write a number from 0 to 1"},
        {{"check", "x", "--walk-to-leaf", "yes"},
         "--walk-to-leaf: \"yes\" is not a whole number from 0 to 1"},
        {{"check"}, "PATH is missing"},
        {{"check", "x", "y"}, "unexpected argument \"y\""},
        {{"learn", "--min-node-support", "101"},
         "--min-node-support: \"101\" is not a number from 0 to 100"},
        {{"learn", "--min-node-support", "x"}, "--min-node-support: \"x\" is not a number"},
        {{"learn", "--min-gain", "-1"}, "--min-gain: \"-1\" is not a number from 0 to 1"},
        {{"learn", "--max-nodes", "498"},
         "--max-nodes: \"498\" is not a whole number from 1 to 497"},
        {{"learn", "--max-nodes", "1.5"}, "--max-nodes: \"1.5\" is not a whole number"},
        {{"learn", "--exclude", "first_hello_dynamic"},
         "--exclude: \"first_hello_dynamic\" is not an attribute; did you mean "
         "\"first_helo_dynamic\"?"},
        {{"learn", "--exclude", "umbrella"},
         "--exclude: \"umbrella\" is not an attribute; \"qvrules attributes\" lists them"},
        {{"learn", "--prune", "one_se"},
         "--prune: \"one_se\" is not one of minimum|one-se|none, nor a number from 0 on; did you "
         "mean \"one-se\"?"},
        {{"learn", "--prune", "-1"}, "--prune: \"-1\" is not one of"},
        {{"learn", "--impurity", "gin"},
         "--impurity: \"gin\" is not one of entropy|gini; did you mean \"gini\"?"},
        {{"learn", "--jobs", "-1"}, "--jobs: \"-1\" is not a whole number from 0"},
        {{"install", "--rollback", "--to", "x"}, "--to: \"x\" is not a whole number from 0"},
        {{"show", "x", "--serve", "65536"}, "--serve: \"65536\" is not a port from 1 to 65535"},
        {{"show", "x", "--color", "allways"},
         "--color: \"allways\" is not one of auto|always|never; did you mean \"always\"?"},
        {{"explain", "x", "y", "--trusted-mta", "300.0.0.1"}, "--trusted-mta: "},
        {{"explain", "x", "y", "--client-score", "-1"},
         "--client-score: \"-1\" is not a whole number"},
    };
    TemporaryFolder const folder;
    for (auto const& row : cases) {
        auto words = row.m_words;
        if (words[0] == "learn") {
            words.insert(words.end(),
                         {"--ham", folder.path("a"), "--spam", folder.path("b"), "--table", "-"});
        }
        auto const result = runProgram(QV_RULES_PROGRAM, words);
        EXPECT_EQ(result.m_status, 64) << row.m_error;
        EXPECT_THAT(result.m_errors, StartsWith(std::string("qvrules: ") + row.m_error));
        EXPECT_THAT(result.m_errors, HasSubstr(" --help\" shows the options.\n"));
        EXPECT_EQ(result.m_output, "");
    }
}

} // namespace
} // namespace Quorvane::Testing
