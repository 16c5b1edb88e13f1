// SPDX-License-Identifier: Apache-2.0
// A program with a table of its own in the settings file: here a mail filter's.
#include "apps/commandline/Help.h"
#include "apps/docgen/Completion.h"
#include "apps/docgen/ManPage.h"
#include "apps/settings/SettingSources.h"
#include "apps/settings/SettingsTable.h"
#include "support/TemporaryFolder.h"

#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace Quorvane::Testing {

namespace {

using testing::HasSubstr;
using testing::Not;

struct FilterSettings {
    std::string m_socket = "inet:8890@localhost";
    std::string m_pidFile;
    double m_share = 0.5;
    int m_timeout = 10;
    bool m_rejects = false;
    std::vector<IPPrefix> m_exempt;
};

void s_checkSocket(std::string const& text) {
    if (text.find(':') == std::string::npos) {
        throw SettingsError("\"" + text + "\" is not a socket; write inet:PORT@HOST or unix:PATH");
    }
}

constexpr auto rows = std::to_array<SettingRow<FilterSettings>>({
    settingRow<&FilterSettings::m_socket>(
        {"socket", SettingKind::text, "SOCKET", "where the server asks"}, s_checkSocket),
    settingRow<&FilterSettings::m_pidFile>(
        {"pid-file", SettingKind::path, "FILE", "file for the process id"}),
    settingRow<&FilterSettings::m_share>(
        {"share", SettingKind::number, "X", "share of the mail (0.5)"}),
    settingRow<&FilterSettings::m_timeout>(
        {"timeout", SettingKind::integer, "N", "in seconds (10)"}),
    settingRow<&FilterSettings::m_rejects>(
        {"reject", SettingKind::integer, "0|1", "refuse spam (0)"}),
    settingRow<&FilterSettings::m_exempt>(
        {"exempt", SettingKind::list, "PREFIX", "clients not looked at"}),
});

class OwnSection : public testing::Test {
  protected:
    void load(std::string const& text) {
        SettingsSection* const sections[] = {&m_host, &m_filter};
        loadSettingsFile(m_folder.write("etc/site.toml", text), "qvmilter", sections);
    }

    // The error of a file, without its path.
    std::string errorOf(std::string const& text) {
        try {
            load(text);
        } catch (SettingsError const& error) {
            EXPECT_EQ(error.status(), ExitStatus::config);
            std::string const what = error.what();
            auto const path = (m_folder.path() / "etc/site.toml").string() + ":";
            EXPECT_TRUE(what.starts_with(path)) << what;
            return what.substr(path.size());
        }
        return "no error";
    }

    // A command line of a program that takes both sections.
    CommandLine line(std::vector<std::string> const& words) {
        m_program.m_own.m_options = {configRow, helpRow};
        addRows(m_program.m_own.m_options, m_host.facts(), "Settings");
        addRows(m_program.m_own.m_options, m_filter.facts(), "Mail filter");
        return parseCommandLine(m_program, words);
    }

    TemporaryFolder m_folder;
    SettingsStore m_host;
    Settings<FilterSettings> m_filter{"milter", rows};
    ProgramTable m_program{"qvmilter", {"", "Filters mail."}};
};

TEST_F(OwnSection, HasTheDefaultsOfItsRecord) {
    EXPECT_EQ(m_filter.values().m_timeout, 10);
    EXPECT_EQ(m_filter.origin("timeout"), "default");
    EXPECT_EQ(m_filter.texts("socket"), SettingTexts{"inet:8890@localhost"});
    EXPECT_EQ(m_filter.texts("exempt"), SettingTexts{});
}

TEST_F(OwnSection, TakesEveryKindOfValueFromTheFile) {
    load("jobs = 3\n[milter]\nsocket = \"unix:/run/x\"\npid-file = \"run/x.pid\"\nshare = 1\n"
         "timeout = -1\nreject = true\nexempt = [\"192.0.2.1\",\n  \"2001:db8::/32\"]\n");
    auto const& values = m_filter.values();
    EXPECT_EQ(m_host.values().m_jobs, 3U);
    EXPECT_EQ(values.m_socket, "unix:/run/x");
    EXPECT_EQ(values.m_pidFile, (m_folder.path() / "etc/run/x.pid").string());
    EXPECT_EQ(values.m_share, 1.0);
    EXPECT_EQ(values.m_timeout, -1);
    EXPECT_TRUE(values.m_rejects);
    EXPECT_EQ(m_filter.texts("exempt"), (SettingTexts{"192.0.2.1/32", "2001:db8::/32"}));
    EXPECT_EQ(m_filter.origin("exempt"), (m_folder.path() / "etc/site.toml").string() + ":8");
}

TEST_F(OwnSection, ErrorsNameFileLineAndColumn) {
    struct {
        char const* m_text;
        char const* m_error;
    } const cases[] = {
        {"[milter]\ntimeout = \"x\"\n", "2:11: timeout needs a whole number"},
        {"[milter]\ntimeout = 9999999999\n",
         "2:11: timeout: \"9999999999\" is not a whole number from -2147483648 to 2147483647"},
        {"[milter]\nreject = 2\n", "2:10: reject: \"2\" is not a whole number from 0 to 1"},
        {"[milter]\nsocket = \"x\"\n", "2:10: socket: \"x\" is not a socket; write"},
        {"[milter]\nexempt = [\"192.0.2.1\", \"x\"]\n", "2:24: exempt: "},
        {"[milter]\nshare = []\n", "2:9: share needs a number"},
        {"[milter]\nsockt = \"x\"\n", "2:1: unknown key \"sockt\"; did you mean \"socket\"?"},
        {"[milter]\njobs = 1\n",
         "2:1: unknown key \"jobs\"; qvmilter --show-config lists the known ones"},
        {"timeout = 1\n", "1:1: unknown key \"timeout\"; qvmilter --show-config lists"},
        {"[miltre]\n", "1:2: unknown key \"miltre\"; did you mean \"milter\"?"},
        {"milter = 1\n", "1:1: milter is a table: write [milter]"},
        {"\"\" = 1\n", "1:1: unknown key \"\"; qvmilter"},
    };
    for (auto const& row : cases) {
        EXPECT_THAT(errorOf(row.m_text), testing::StartsWith(row.m_error)) << row.m_text;
    }
}

TEST_F(OwnSection, OfAnotherProgramIsSkipped) {
    auto const file = m_folder.write("a.toml", "jobs = 2\n[milter]\nanything = 1\n");
    SettingsSection* const sections[] = {&m_host};
    loadSettingsFile(file, "qvscan", sections);
    EXPECT_EQ(m_host.values().m_jobs, 2U);
    auto const wrong = m_folder.write("b.toml", "[other]\n");
    EXPECT_THROW(loadSettingsFile(wrong, "qvscan", sections), SettingsError);
}

TEST_F(OwnSection, ShownAsTomlItReadsBackAsItIs) {
    load("[milter]\nsocket = \"unix:/a \\\"b\\\"\"\nshare = 1e-3\nreject = 1\n"
         "exempt = [\"192.0.2.0/24\"]\n");
    auto const shown = m_host.asToml() + m_filter.asToml();
    EXPECT_THAT(shown, HasSubstr("\n[milter]\nsocket = \"unix:/a \\\"b\\\"\""));
    EXPECT_THAT(shown, HasSubstr("\n# pid-file = \"\""));
    EXPECT_THAT(shown, HasSubstr("\ntimeout = 10                            # default\n"));
    EXPECT_THAT(shown, HasSubstr("etc/site.toml:3\n"));
    auto const before = m_filter;
    m_filter = Settings<FilterSettings>("milter", rows);
    load(shown);
    for (auto const& facts : before.facts()) {
        EXPECT_EQ(m_filter.texts(facts.m_name), before.texts(facts.m_name)) << facts.m_name;
    }
}

TEST_F(OwnSection, AFolderThatIsSetToNothingIsShownAndReadBackAsNothing) {
    load("root = \"\"\n");
    EXPECT_EQ(m_host.values().m_root, "");
    auto const shown = m_host.asToml();
    EXPECT_THAT(shown, testing::StartsWith("root = \"\" "));
    EXPECT_THAT(shown, HasSubstr("\n# dynamic-patterns = \"\" "));
    m_host = SettingsStore();
    load(shown);
    EXPECT_EQ(m_host.values().m_root, "");
}

TEST_F(OwnSection, TheCommandLineWinsOverTheFile) {
    auto const file = m_folder.write("a.toml", "[milter]\ntimeout = 1\nexempt = \"192.0.2.1\"\n");
    auto const given = line({"--config", file, "--timeout=-7", "--exempt", "192.0.2.2", "--exempt",
                             "192.0.2.3", "--jobs", "4"});
    SettingsSection* const sections[] = {&m_host, &m_filter};
    readSettings(given, "qvmilter", sections);
    EXPECT_EQ(m_filter.values().m_timeout, -7);
    EXPECT_EQ(m_filter.origin("timeout"), "command line");
    EXPECT_EQ(m_filter.texts("exempt"), (SettingTexts{"192.0.2.2/32", "192.0.2.3/32"}));
    EXPECT_EQ(m_host.values().m_jobs, 4U);
    try {
        readSettings(line({"--reject", "maybe"}), "qvmilter", sections);
        FAIL() << "taken";
    } catch (UsageError const& error) {
        EXPECT_STREQ(error.what(), "--reject: \"maybe\" is not a whole number from 0 to 1");
    }
}

TEST_F(OwnSection, HasItsRowsInTheHelpTheCompletionAndTheManualPage) {
    line({});
    auto const help = helpText(m_program, m_program.m_own);
    EXPECT_THAT(help, HasSubstr("\nMail filter:\n"
                                "  --socket SOCKET            where the server asks\n"));
    EXPECT_THAT(help, HasSubstr("\n  --exempt PREFIX            clients not looked at\n"));
    EXPECT_THAT(Docs::bashCompletion(m_program), HasSubstr("--timeout --reject --exempt"));
    auto const page = Docs::manPage({"qvdeepheader.conf", {}},
                                    {{"", m_host.facts()}, {"milter", m_filter.facts()}},
                                    "@SETTINGS milter@\n", "1");
    EXPECT_THAT(page, HasSubstr(".It Cm pid\\-file = Ar path\nFile for the process id.\n"));
    EXPECT_THAT(page, HasSubstr(".It Cm reject = Ar whole number\nRefuse spam (0).\nOne of\n"));
    EXPECT_THAT(page, Not(HasSubstr("jobs")));
}

} // namespace

} // namespace Quorvane::Testing
