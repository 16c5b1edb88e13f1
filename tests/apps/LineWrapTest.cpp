// SPDX-License-Identifier: Apache-2.0
#include "apps/text/LineWrap.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

namespace {

struct WrapCase {
    char const* m_why;
    char const* m_text;
    char const* m_lines;
};

WrapCase const cases[] = {
    {"what fits stays", "  ten, just.\n", "  ten, just.\n"},
    {"a longer line goes on further in", "  one two three\n", "  one two\n    three\n"},
    {"so does what is still too long", "one two three four five six",
     "one two\n  three four\n  five six"},
    {"a word is never cut", "a b mail.example.org b", "a b\n  mail.example.org\n  b"},
    {"not even the first one", "  mail.example.org b", "  mail.example.org\n    b"},
    {"the last column goes on below itself", "a:  bb cc dd ee\n", "a:  bb cc dd\n    ee\n"},
    {"a column too far right does not", "  aaaa bb  cc dd", "  aaaa bb\n    cc dd"},
    {"characters count, not bytes",
     "\u00E4\u00F6\u00FC\u00E4\u00F6\u00FC \u00E4\u00F6\u00FC\u00E4\u00F6",
     "\u00E4\u00F6\u00FC\u00E4\u00F6\u00FC \u00E4\u00F6\u00FC\u00E4\u00F6"},
    {"colours take no room", "\x1B[31mone\x1B[0m two three\n", "\x1B[31mone\x1B[0m two\n  three\n"},
    {"each line by itself", "one\n\ntwo two two two\n\n", "one\n\ntwo two two\n  two\n\n"},
    {"nothing", "", ""},
};

TEST(LineWrap, BreaksLinesAtBlanks) {
    for (auto const& row : cases) {
        EXPECT_EQ(wrappedLines(row.m_text, 12), row.m_lines) << row.m_why;
    }
}

} // namespace

} // namespace Quorvane::Testing
