// SPDX-License-Identifier: Apache-2.0
// Keys that would make so many tables in tables that the stack overflows.
#include "apps/settings/TomlKeys.h"

#include "apps/settings/TomlSettings.h"

#include <gtest/gtest.h>
#include <string>

namespace Quorvane::Testing {

namespace {

std::string keyOf(std::size_t parts) {
    std::string key = "a";
    while (--parts > 0) {
        key += ".a";
    }
    return key;
}

TEST(TomlKeys, OneOf200000PartsIsRefusedWithItsPlace) {
    for (auto const& text : {keyOf(200'000) + " = 1\n", '[' + keyOf(200'000) + "]\n",
                             "[[" + keyOf(200'000) + "]]\n", "x = { " + keyOf(200'000) + " = 1 }\n",
                             "x = [{y = 1}, {" + keyOf(200'000) + " = 1}]\n"}) {
        try {
            parseToml("my.conf", "# comment\n" + text);
            ADD_FAILURE() << text.substr(0, 30);
        } catch (SettingsError const& error) {
            std::string const message = error.what();
            EXPECT_EQ(message.find("my.conf:2:"), 0U) << message;
            EXPECT_NE(message.find("a key of more than 16 parts"), std::string::npos) << message;
        }
    }
}

TEST(TomlKeys, TheLongestIsReadAndDestroyedAtAnyDepth) {
    std::string text = "1";
    for (int depth = 0; depth < 250; ++depth) {
        text = "{ " + keyOf(maxKeyParts) + " = " + text + " }";
    }
    EXPECT_EQ(parseToml("my.conf", "a = " + text + '\n').size(), 1U);
}

TEST(TomlKeys, DotsInTextsAndCommentsAreNoParts) {
    auto const dots = std::string(40, '.');
    for (auto const& text : {"a = \"" + dots + "\"", "a = '" + dots + "'",
                             "a = \"\"\"\n" + dots + "\\\"\"\"" + dots + "\n\"\"\"",
                             "a = '''\n" + dots + "''" + dots + "\n'''", "# " + dots + "\na = 1",
                             "\"" + dots + "\".b = 1", "a = \"\\\"" + dots + "\""}) {
        EXPECT_EQ(findLongKey(text), std::nullopt) << text;
        EXPECT_NO_THROW(parseToml("my.conf", text + '\n')) << text;
    }
}

// A key must not hide behind what only looks like the rest of a text.
TEST(TomlKeys, AKeyAfterAnyTextIsFound) {
    auto const key = "\n" + keyOf(maxKeyParts + 1) + " = 1\n";
    for (std::string const text :
         {R"(x = "\\")", R"(x = '\')", R"(x = "'")", R"(x = """a"""")", R"(x = """a""""")",
          "x = '''a''''", "x = '''a'''''", R"(x = "")", R"(x = """""")", R"(x = """\"""")",
          "x = 1 # \"", "x = 1 # '''", R"(x = [".", '.'])"}) {
        EXPECT_NE(findLongKey(text + key), std::nullopt) << text;
    }
}

} // namespace

} // namespace Quorvane::Testing
