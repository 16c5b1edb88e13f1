// SPDX-License-Identifier: Apache-2.0
#include "platform/DynamicIdentifier.h"
#include "include2/Exception.h"

#include <atomic>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <string>
#include <thread>
#include <vector>

using Quorvane::Exception;
using Telvanis::DynamicIdentifier;
using Telvanis::DynamicIdentifierSingleton;
using testing::HasSubstr;

namespace {

bool s_match(std::string const& patterns, std::string const& name) {
    return DynamicIdentifier::compile(patterns, "patterns")->match(name);
}

// The text of the Exception of category 3 that `action` throws.
template<typename Action>
std::string s_error(Action const& action) {
    try {
        action();
    } catch (Exception const& error) {
        EXPECT_EQ(3, error.intParameter());
        return error.asString();
    }
    ADD_FAILURE() << "nothing was thrown";
    return {};
}

std::string s_compileError(std::string const& patterns) {
    return s_error([&] { DynamicIdentifier::compile(patterns, "names.txt"); });
}

// A folder that goes with the test.
class Folder {
  public:
    Folder() {
        std::string path = (std::filesystem::temp_directory_path() / "qv-names-XXXXXX").string();
        m_path = mkdtemp(path.data());
    }
    Folder(Folder const&) = delete;
    Folder& operator=(Folder const&) = delete;
    ~Folder() { std::filesystem::remove_all(m_path); }

    std::string path() const { return m_path; }
    std::string write(std::string const& text) const {
        auto file = m_path + "/patterns";
        std::ofstream(file, std::ios::binary) << text;
        return file;
    }

  private:
    std::string m_path;
};

TEST(DynamicIdentifierTest, ExpressionsMatchAnywhereInTheName) {
    struct Row {
        char const* m_patterns;
        char const* m_name;
        bool m_dynamic;
    };
    Row const rows[] = {
        {"pool", "a.pool.example", true},
        {"pool", "carpools.example.org", true}, // no border asked for
        {"^pool", "a.pool.example", false},
        {"\\.example$", "a.pool.example", true},
        {"a|b", "b.example.org", true},
        {"dsl\npool", "a.pool.example", true},
        {"dsl\npool", "dsl.a.example", true},
        {"dsl\npool", "www.a.example", false},
        {"\\d{3}", "a123.example.org", true},
        {"\\bdyn\\b", "a.dyn.example", true},
        {"\\bdyn\\b", "a.dynamo.example", false},
        {"x.y", "xzy.example.org", true},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(row.m_dynamic, s_match(row.m_patterns, row.m_name))
            << row.m_patterns << " on " << row.m_name;
    }
}

TEST(DynamicIdentifierTest, CommentsBlanksAndEmptyLinesAreSkipped) {
    for (auto const* const patterns :
         {"# pool\npool", "pool # what pools are called", "\n\n  pool \t\n", "\r\npool\r\n#x\r\n",
          "pool#", "#\n#\npool", "\tpool"}) {
        EXPECT_TRUE(s_match(patterns, "a.pool.example")) << patterns;
        EXPECT_FALSE(s_match(patterns, "a.example.org")) << patterns;
    }
    EXPECT_FALSE(s_match("# pool", "a.pool.example"));
}

TEST(DynamicIdentifierTest, ACounterPatternTakesTheAnswerBack) {
    auto const names = DynamicIdentifier::compile("!mail\npool\n ! ^static # kept\n", "patterns");
    EXPECT_TRUE(names->match("a.pool.example"));
    EXPECT_FALSE(names->match("mail.pool.example"));
    EXPECT_FALSE(names->match("static.pool.example"));
    EXPECT_TRUE(names->match("a.static.pool.example"));
    EXPECT_FALSE(names->match("mail.example.org"));
}

TEST(DynamicIdentifierTest, AnEmptyListMatchesNothing) {
    for (auto const* const patterns : {"", "\n", "# nothing here", "!mail", "\n \r\n"}) {
        for (auto const* const name : {"", ".", "a.pool.example", "192-0-2-1.dyn.example"}) {
            EXPECT_FALSE(s_match(patterns, name)) << patterns << " on " << name;
        }
    }
}

TEST(DynamicIdentifierTest, LetterCaseOfTheNameMakesNoDifference) {
    EXPECT_TRUE(s_match("pool", "A.POOL.Example"));
    EXPECT_TRUE(s_match("pool", "a.pooL.example"));
    EXPECT_FALSE(s_match("pool\n!mail", "MAIL.pool.example"));
    EXPECT_FALSE(s_match("POOL", "A.POOL.EXAMPLE")); // the lower-cased name holds no capitals
}

TEST(DynamicIdentifierTest, OneTrailingDotMakesNoDifference) {
    EXPECT_TRUE(s_match("example$", "a.pool.example."));
    EXPECT_TRUE(s_match("example$", "A.POOL.EXAMPLE."));
    EXPECT_FALSE(s_match("example$", "a.pool.example.."));
    EXPECT_FALSE(s_match(".", "."));
}

TEST(DynamicIdentifierTest, EveryByteIsACharacter) {
    struct Row {
        char const* m_pattern;
        std::string m_name;
        bool m_dynamic;
    };
    Row const rows[] = {
        {"pool", "\xff\xfe.pool.example", true},         // bytes that are no UTF-8
        {"pool", "a\xc3.pool.\xc3", true},               // an unfinished UTF-8 sequence
        {"^a.pool", "a\xe4pool.example.org", true},      // one byte, one character
        {"^a.pool", "a\xc3\xa4pool.example.org", false}, // two bytes, two characters
        {"^a..pool", "a\xc3\xa4pool.example.org", true},
        {"\xc3\xa4", "a\xc3\xa4.example.org", true}, // bytes in the list are bytes too
        {"\\xe4", "a\xe4.example.org", true},
        {"^a.pool", std::string("a\0pool.example.org", 18), true},
        {"example$", std::string("a.pool\0.example", 15), true}, // NUL ends nothing
        {"^a.b", "a\nb.example.org", false},                     // RE2's "." leaves line breaks out
        {"^a[^x]b", "a\nb.example.org", true},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(row.m_dynamic, s_match(row.m_pattern, row.m_name))
            << row.m_pattern << " on " << testing::PrintToString(row.m_name);
    }
}

TEST(DynamicIdentifierTest, ABadExpressionIsNamedWithFileLineAndReason) {
    struct Row {
        char const* m_patterns;
        char const* m_place;
        char const* m_reason;
    };
    Row const rows[] = {
        {"(", "names.txt:1", "missing )"},
        {"pool\n# x\n  [a # y", "names.txt:3", "missing ]"},
        {"pool\r\n!*mail\r\n", "names.txt:2", "no argument for repetition operator"},
        {"a{2000}", "names.txt:1", "invalid repetition"},
        {"(?=a)", "names.txt:1", "invalid perl operator"},
        {"(a)\\1", "names.txt:1", "invalid escape sequence"},
        {"pool\n!\n", "names.txt:2", "without an expression"},
        {"pool\n! # mail", "names.txt:2", "without an expression"},
    };
    for (auto const& row : rows) {
        auto const error = s_compileError(row.m_patterns);
        EXPECT_THAT(error, HasSubstr(row.m_place));
        EXPECT_THAT(error, HasSubstr(row.m_reason));
    }
}

TEST(DynamicIdentifierTest, TheTextOfABadExpressionStaysOnOneLine) {
    auto const error = s_compileError("pool\n(\x1b[2J\x07\n");
    EXPECT_THAT(error, HasSubstr("(\\x1b[2J\\x07"));
    EXPECT_EQ(std::string::npos, error.find_first_of("\n\x1b\x07"));
}

TEST(DynamicIdentifierTest, AnExpressionThatCompilesTooLargeIsRefused) {
    std::string large;
    for (int i = 0; i < 200; ++i) {
        large += "[a-z]{1000}";
    }
    auto const error = s_compileError("pool\n" + large);
    EXPECT_THAT(error, HasSubstr("names.txt:2"));
    EXPECT_THAT(error, HasSubstr("too large"));
}

TEST(DynamicIdentifierTest, AListThatCompilesTooLargeIsRefused) {
    std::string patterns;
    for (int i = 0; i < 300; ++i) {
        patterns += "[a-z]{1000}\n";
    }
    EXPECT_THAT(s_compileError(patterns),
                testing::AllOf(HasSubstr("too much memory"), HasSubstr("names.txt:262")));
}

TEST(DynamicIdentifierTest, TooManyExpressionsAreRefused) {
    std::string patterns;
    for (int i = 0; i < 2'000; ++i) {
        patterns += i % 2 == 0 ? "a\n" : "!b\n";
    }
    EXPECT_TRUE(s_match(patterns, "a.example.org"));
    EXPECT_THAT(s_compileError(patterns + "\n# x\nc"),
                testing::AllOf(HasSubstr("more than 2000"), HasSubstr("names.txt:2003")));
}

TEST(DynamicIdentifierTest, AnOverlongListIsRefused) {
    std::string const longest(std::size_t{1} << 20U, '#');
    EXPECT_FALSE(s_match(longest, "a.pool.example"));
    EXPECT_THAT(s_compileError(longest + '#'), HasSubstr("at most 1048576 bytes"));
    Folder const folder;
    auto const file = folder.write(longest + '#');
    EXPECT_THAT(s_error([&] { DynamicIdentifier::load(file); }),
                testing::AllOf(HasSubstr("at most 1048576 bytes"), HasSubstr(file)));
    EXPECT_THAT(s_error([] { DynamicIdentifier::load("/dev/zero"); }), HasSubstr("at most"));
}

TEST(DynamicIdentifierTest, AFileIsReadByteForByte) {
    Folder const folder;
    auto const names = DynamicIdentifier::load(folder.write("dsl\r\npool\xe4\n!mail"));
    EXPECT_TRUE(names->match("a.dsl.example"));
    EXPECT_TRUE(names->match("a.pool\xe4.example"));
    EXPECT_FALSE(names->match("mail.dsl.example"));
    EXPECT_FALSE(DynamicIdentifier::load(folder.write(""))->match("a.dsl.example"));
}

TEST(DynamicIdentifierTest, AFileThatCannotBeReadIsNamedWithTheReason) {
    Folder const folder;
    auto const missing = folder.path() + "/missing";
    EXPECT_THAT(s_error([&] { DynamicIdentifier::load(missing); }),
                testing::AllOf(HasSubstr(missing), HasSubstr("No such file")));
    EXPECT_THAT(s_error([&] { DynamicIdentifier::load(folder.path()); }),
                testing::AllOf(HasSubstr(folder.path()), HasSubstr("directory")));
    auto const bad = folder.write("pool\n(\n");
    EXPECT_THAT(s_error([&] { DynamicIdentifier::load(bad); }), HasSubstr(bad + ":2"));
}

// 200 expressions of a thousand states each make states of the common automaton so large that it
// cannot hold two; the answers must be right nevertheless.
TEST(DynamicIdentifierTest, AListTooLargeForOneAutomatonStillGivesRightAnswers) {
    std::string patterns;
    for (int i = 0; i < 200; ++i) {
        patterns += "q" + std::to_string(i) + "[a-f]{900}z\n";
    }
    auto const names = DynamicIdentifier::compile("pool\n" + patterns, "patterns");
    EXPECT_TRUE(names->match("a.pool.example"));
    EXPECT_TRUE(names->match("a.q199" + std::string(900, 'c') + "z.example"));
    EXPECT_FALSE(names->match("a.q199" + std::string(899, 'c') + "z.example"));
    EXPECT_FALSE(names->match("mail.example.org"));
}

TEST(DynamicIdentifierTest, ACounterListTooLargeForOneAutomatonStillTakesAnswersBack) {
    std::string patterns = "pool\n";
    for (int i = 0; i < 200; ++i) {
        patterns += "!q" + std::to_string(i) + "[a-f]{900}z\n";
    }
    auto const names = DynamicIdentifier::compile(patterns, "patterns");
    EXPECT_TRUE(names->match("a.pool.example"));
    EXPECT_FALSE(names->match("q7" + std::string(900, 'a') + "z.pool.example"));
}

// Without bounds on its memory, an automaton for this expression would hold 2^20 states and more.
TEST(DynamicIdentifierTest, NamesThatMakeTheAutomatonGrowGetRightAnswers) {
    auto const names = DynamicIdentifier::compile("a[ab]{20}c", "patterns");
    std::string name;
    unsigned int bits = 12345;
    for (int i = 0; i < 300'000; ++i) {
        bits = bits * 1103515245U + 12345U;
        name += (bits >> 16U & 1U) != 0 ? 'a' : 'b';
    }
    EXPECT_FALSE(names->match(name));
    EXPECT_TRUE(names->match(name + "abbbbbbbbbbbbbbbbbbbbc"));
}

TEST(DynamicIdentifierTest, ANameOfManyMegabytesIsAnswered) {
    std::string const name(8U << 20U, '1');
    EXPECT_FALSE(DynamicIdentifier::builtIn()->match(name + ".example.org"));
    EXPECT_TRUE(DynamicIdentifier::builtIn()->match(name + ".192-0-2-17.example.org"));
}

class DynamicIdentifierSingletonTest : public testing::Test {
  protected:
    ~DynamicIdentifierSingletonTest() override {
        DynamicIdentifierSingleton::install(DynamicIdentifier::builtIn());
    }
};

TEST_F(DynamicIdentifierSingletonTest, TheBuiltInListIsInForceAtFirst) {
    auto const names = DynamicIdentifierSingleton::instance(false);
    ASSERT_NE(nullptr, names);
    EXPECT_TRUE(names->match("192-0-2-17.dsl.example.net"));
    EXPECT_FALSE(names->match("mail.example.net"));
}

TEST_F(DynamicIdentifierSingletonTest, AnInstalledListIsSeenByEveryThread) {
    DynamicIdentifierSingleton::instance(false);
    DynamicIdentifierSingleton::install(DynamicIdentifier::compile("purple", "patterns"));
    EXPECT_TRUE(DynamicIdentifierSingleton::instance(false)->match("purple.example.org"));
    EXPECT_FALSE(DynamicIdentifierSingleton::instance(true)->match("192-0-2-17.dsl.example.net"));
    bool seen = false;
    std::thread([&] {
        seen = DynamicIdentifierSingleton::instance(false)->match("purple.example.org");
    }).join();
    EXPECT_TRUE(seen);
}

TEST_F(DynamicIdentifierSingletonTest, AScanKeepsTheListItBeganWith) {
    DynamicIdentifierSingleton::install(DynamicIdentifier::compile("purple", "patterns"));
    auto const old = DynamicIdentifierSingleton::instance(false);
    DynamicIdentifierSingleton::install(DynamicIdentifier::compile("green", "patterns"));
    EXPECT_TRUE(old->match("purple.example.org"));
    EXPECT_FALSE(DynamicIdentifierSingleton::instance(false)->match("purple.example.org"));
}

TEST_F(DynamicIdentifierSingletonTest, AnEmptyIdentifierIsRefusedAndTheOldOneStays) {
    EXPECT_THAT(s_error([] { DynamicIdentifierSingleton::install({}); }), HasSubstr("empty"));
    EXPECT_NE(nullptr, DynamicIdentifierSingleton::instance(false));
}

// Each list knows one of two names, so that an answer shows which list gave it.
TEST_F(DynamicIdentifierSingletonTest, ThreadsMatchWhileTheListIsReplaced) {
    auto const purple = DynamicIdentifier::compile("purple\n!never", "patterns");
    auto const green = DynamicIdentifier::compile("green\n!never", "patterns");
    DynamicIdentifierSingleton::install(green);
    std::atomic<bool> stop{false};
    std::atomic<int> wrong{0};
    std::atomic<int> answers{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            while (!stop) {
                auto const names = DynamicIdentifierSingleton::instance(false);
                bool const isPurple = names->match("a.purple.example");
                wrong += names->match("A.green.example") == isPurple ? 1 : 0;
                ++answers;
            }
        });
    }
    while (answers < 5000) {
        DynamicIdentifierSingleton::install(purple);
        DynamicIdentifierSingleton::install(green);
    }
    stop = true;
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(0, wrong);
    EXPECT_TRUE(DynamicIdentifierSingleton::instance(false)->match("a.green.example"));
}

} // namespace
