// SPDX-License-Identifier: Apache-2.0
#include "apps/commandline/CommandLine.h"
#include "apps/commandline/Help.h"
#include "apps/commandline/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <new>
#include <stdexcept>
#include <system_error>

namespace Quorvane::Testing {

namespace {

using Texts = CommandLine::Texts;

ProgramTable const tool{"tool",
                        {"", "A tool.", {}, {helpRow, versionRow}, "The end."},
                        {{"make",
                          "Makes things",
                          {{"SRC", "SRC", "what to make", Takes::required},
                           {"MORE", "PATH", "more of it", Takes::repeatable}},
                          {helpRow,
                           {"output", "DIR", "where to", Takes::required, 'o'},
                           {"format", "text|json",
                            "a help that is so long that it does not fit the line of a terminal"},
                           {"mail", "PATH", "mail", Takes::several},
                           {"note", "TEXT", "any text", Takes::anyText},
                           {"relay", "PREFIX", "a relay", Takes::anyText | Takes::repeatable},
                           {"serve", "[PORT]", "serve it"},
                           {"explain", "[=all|some]", "explain it"},
                           {"force", "", "in spite of errors"}}},
                         {"mark", "Marks things", {}, {}}}};

CommandLine s_make(Texts words) {
    words.insert(words.begin(), "make");
    return parseCommandLine(tool, words);
}

// With what is required.
CommandLine s_full(Texts words) {
    words.insert(words.begin(), {"-o", "out", "src"});
    return s_make(words);
}

TEST(CommandLine, TakesAValueAfterABlankOrAnEqualsSignOrItsLetter) {
    for (auto const& words : std::vector<Texts>{{"--output", "out", "src"},
                                                {"--output=out", "src"},
                                                {"-o", "out", "src"},
                                                {"src", "-oout"}}) {
        auto const line = s_make(words);
        EXPECT_EQ(line.command().m_name, "make");
        EXPECT_EQ(line.text("output"), "out") << words[0];
        EXPECT_EQ(line.text("SRC"), "src") << words[0];
    }
    EXPECT_EQ(s_full({"--note=a=b"}).text("note"), "a=b");
}

TEST(CommandLine, AnEmptyValueIsAValue) {
    EXPECT_EQ(s_full({"--note=", "x"}).texts("MORE"), Texts{"x"});
    EXPECT_EQ(s_full({"--note", "", "x"}).texts("note"), Texts{""});
    EXPECT_TRUE(s_full({"--note="}).has("note"));
}

TEST(CommandLine, AValueMayLookLikeAnOptionThatThereIsNot) {
    EXPECT_EQ(s_full({"--note", "-1"}).text("note"), "-1");
    EXPECT_EQ(s_full({"--note", "--x"}).text("note"), "--x");
    EXPECT_THROW(s_full({"--note", "--force"}), UsageError);
    EXPECT_THROW(s_full({"--note", "--"}), UsageError);
    EXPECT_THROW(s_full({"--note"}), UsageError);
}

TEST(CommandLine, TheLastValueCountsWhereOneIsTaken) {
    EXPECT_EQ(s_full({"--note", "a", "--note", "b"}).texts("note"), Texts{"b"});
    EXPECT_EQ(s_full({"--relay", "a", "--relay", "b"}).texts("relay"), (Texts{"a", "b"}));
    EXPECT_EQ(s_full({}).text("note", "none"), "none");
}

TEST(CommandLine, WordsOfAWildcardBelongToOneOption) {
    auto const line = s_full({"--mail", "a", "-", "[b]", "--force", "c", "--mail", "d"});
    EXPECT_EQ(line.texts("mail"), (Texts{"a", "-", "[b]", "d"}));
    EXPECT_EQ(line.texts("MORE"), Texts{"c"});
    EXPECT_EQ(s_full({"--relay", "a", "b"}).texts("MORE"), Texts{"b"});
}

TEST(CommandLine, AValueInBracketsMayBeLeftOut) {
    EXPECT_EQ(s_full({"--serve", "80"}).text("serve"), "80");
    EXPECT_EQ(s_full({"--serve", "--force"}).text("serve", "none"), "");
    EXPECT_EQ(s_full({"--serve"}).text("serve", "none"), "");
}

TEST(CommandLine, AValueAfterAnEqualsSignIsNeverTheNextWord) {
    auto const line = s_full({"--explain", "all"});
    EXPECT_EQ(line.text("explain", "none"), "");
    EXPECT_EQ(line.texts("MORE"), Texts{"all"});
    EXPECT_EQ(s_full({"--explain=all"}).text("explain"), "all");
    EXPECT_EQ(s_full({"--explain=all", "--explain"}).text("explain", "none"), "");
    EXPECT_FALSE(s_full({}).has("explain"));
}

TEST(CommandLine, AfterTwoDashesEveryWordIsAnArgument) {
    auto const line = s_full({"--", "--force", "--", "-o"});
    EXPECT_EQ(line.texts("MORE"), (Texts{"--force", "--", "-o"}));
    EXPECT_FALSE(line.has("force"));
}

struct Refusal {
    Texts m_words;
    std::string m_error;
};

TEST(CommandLine, SaysWhatIsWrong) {
    Refusal const cases[] = {
        {{}, "a command is missing"},
        {{"mak"}, "unknown command \"mak\"; did you mean make?"},
        {{"umbrella"}, "unknown command \"umbrella\""},
        {{"--force"}, "unknown option --force"},
        {{"make"}, "SRC is missing"},
        {{"make", "src"}, "--output is missing"},
        {{"make", "-o"}, "--output needs a value: DIR"},
        {{"make", "-o", ""}, "--output: the value is empty"},
        {{"make", "-oa", ""}, "SRC: the value is empty"},
        {{"make", "--frce"}, "unknown option --frce; did you mean --force?"},
        {{"make", "--umbrella=1"}, "unknown option --umbrella"},
        {{"make", "-x"}, "unknown option -x"},
        {{"make", "--force=1"}, "--force takes no value"},
        {{"make", "--format", "xml"}, "--format: \"xml\" is not one of text|json"},
        {{"make", "--format", "jsn"},
         "--format: \"jsn\" is not one of text|json; did you mean \"json\"?"},
        {{"make", "--explain=al"},
         "--explain: \"al\" is not one of all|some; did you mean \"all\"?"},
        {{"mark", "x"}, "unexpected argument \"x\""},
    };
    for (auto const& row : cases) {
        try {
            parseCommandLine(tool, row.m_words);
            ADD_FAILURE() << row.m_error;
        } catch (UsageError const& error) {
            EXPECT_EQ(error.what(), row.m_error);
            EXPECT_EQ(error.status(), 64);
        }
    }
}

TEST(CommandLine, WhoAsksForHelpNeedsNotKnowTheRest) {
    EXPECT_TRUE(s_make({"--help"}).has("help"));
    EXPECT_TRUE(s_make({"-h", "src"}).has("help"));
    EXPECT_TRUE(parseCommandLine(tool, {"--version"}).has("version"));
}

TEST(Help, ShowsArgumentsAndOptionsInLinesThatFit) {
    EXPECT_EQ(helpText(tool, tool.m_commands[0]),
              "Usage: tool make [options] --output DIR SRC [MORE ...]\n"
              "Makes things\n"
              "\nArguments:\n"
              "  SRC                        what to make\n"
              "  MORE                       more of it\n"
              "\nOptions:\n"
              "  -h, --help                 show this help\n"
              "  -o, --output DIR           where to\n"
              "  --format text|json         a help that is so long that it does not fit the\n"
              "                             line of a terminal\n"
              "  --mail PATH ...            mail\n"
              "  --note TEXT                any text\n"
              "  --relay PREFIX             a relay\n"
              "  --serve [PORT]             serve it\n"
              "  --explain[=all|some]       explain it\n"
              "  --force                    in spite of errors\n");
}

TEST(Help, ListsTheCommandsOfAProgram) {
    EXPECT_EQ(helpText(tool, tool.m_own), "Usage: tool COMMAND [options]\n"
                                          "A tool.\n"
                                          "\nCommands:\n"
                                          "  make                       Makes things\n"
                                          "  mark                       Marks things\n"
                                          "\nOptions:\n"
                                          "  -h, --help                 show this help\n"
                                          "  -V, --version              show the version\n"
                                          "\nThe end.\n");
}

struct Outcome {
    int m_status;
    std::string m_errors;
};

Outcome s_run(std::vector<char const*> words, int (*run)(CommandLine const&)) {
    words.insert(words.begin(), "tool");
    testing::internal::CaptureStderr();
    auto const status = runProgram(tool, static_cast<int>(words.size()), words.data(), run);
    return {status, testing::internal::GetCapturedStderr()};
}

TEST(Program, TurnsWhatIsThrownIntoAMessageAndAStatus) {
    auto const returns = s_run({"mark"}, [](CommandLine const&) { return 1; });
    EXPECT_EQ(returns.m_status, 1);
    auto const usage = s_run({"mark"}, [](CommandLine const&) -> int { throw UsageError("a\nb"); });
    EXPECT_EQ(usage.m_status, 64);
    EXPECT_EQ(usage.m_errors, "tool: a\\x0Ab\n\"tool mark --help\" shows the options.\n");
    auto const bad = s_run({"mark"}, [](CommandLine const&) -> int {
        throw ProgramError(ExitStatus::config, "x.toml:1:2: no");
    });
    EXPECT_EQ(bad.m_status, 78);
    EXPECT_EQ(bad.m_errors, "tool: x.toml:1:2: no\n");
    auto const fault =
        s_run({"mark"}, [](CommandLine const&) -> int { throw std::runtime_error("broken"); });
    EXPECT_EQ(fault.m_status, 70);
    EXPECT_EQ(fault.m_errors, "tool: unexpected: broken\n");
    auto const memory = s_run({"mark"}, [](CommandLine const&) -> int { throw std::bad_alloc(); });
    EXPECT_EQ(memory.m_status, 70);
    EXPECT_EQ(memory.m_errors.find("tool: there is not enough memory (see"), 0U);
    auto const threads = s_run({"mark"}, [](CommandLine const&) -> int {
        throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
    });
    EXPECT_EQ(threads.m_status, 70);
    EXPECT_EQ(threads.m_errors.find("tool: the system gives no more threads (see"), 0U);
    EXPECT_EQ(s_run({"fly"}, nullptr).m_errors,
              "tool: unknown command \"fly\"\n\"tool --help\" shows the options.\n");
}

} // namespace

} // namespace Quorvane::Testing
