// SPDX-License-Identifier: Apache-2.0
#include "apps/settings/SettingsTable.h"
#include "docs/Documents.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <regex>

namespace Quorvane::Testing {

namespace {

// Options that several commands take stand in one place.
constexpr char const* sharedSections[] = {"How mail is scanned", "What is known of the message"};

std::string s_page(std::string const& name) {
    return readFile(documentPath(name));
}

// Without the escapes of roff.
std::string s_plain(std::string const& page) {
    return std::regex_replace(page, std::regex(R"(\\-)"), "-");
}

// The lines of a section or subsection, up to the next.
std::string s_section(std::string const& page, std::string const& title) {
    auto const start = page.find(title + "\n");
    auto const end = page.find("\n.S", start);
    return start == std::string::npos ? "" : page.substr(start, end - start);
}

Names s_items(std::string const& page) {
    Names options;
    for (auto const& name :
         captures(s_plain(page), R"(^\.It (Fl [a-zA-Z] , )?Fl (-[a-z][a-z0-9-]*))", 2)) {
        options.insert("-" + name);
    }
    return options;
}

// As a reader sees it: mandoc prints bold letters as letter, backspace, letter.
std::string s_rendered(std::string const& name) {
    auto const result = runProgram(QV_MANDOC, {"-T", "utf8", documentPath(name)});
    return std::regex_replace(result.m_output, std::regex(".\b"), "");
}

Names s_allOptions() {
    auto options = optionsIn(helpOf("qvscan"));
    options.merge(optionsIn(helpOf("qvmilter")));
    options.merge(optionsIn(helpOf("qvrules")));
    for (auto const& command : rulesCommands()) {
        options.merge(optionsIn(helpOf("qvrules", command)));
    }
    return options;
}

// The commands of the examples, in order.
std::vector<std::string> s_examples(std::string const& page) {
    std::vector<std::string> commands;
    std::istringstream lines(s_section(page, ".Sh EXAMPLES"));
    std::string line;
    while (std::getline(lines, line)) {
        if (line.starts_with(".Dl $ ")) {
            commands.push_back(line.substr(6));
        }
    }
    return commands;
}

// Runs a command of the page with a shell in a folder of its own, on rules below that folder.
class ManPageExamples : public testing::TestWithParam<char const*> {
  protected:
    ManPageExamples() {
        std::string const message = "Received: from a.example.org (a.example.org [192.0.2.1]) by "
                                    "mx.example.net with ESMTP; Mon, 1 Jan 2024 00:00:00 +0000\n"
                                    "From: a@example.org\n\nHello\n";
        m_folder.write("strange.eml", message);
        m_folder.write("Maildir/cur/1.host:2,S", message);
        m_folder.write("Maildir/new/2.host", message);
        auto const record = "From a Mon Jan  1 00:00:00 2024\n" + message + "\n";
        m_folder.write("archive.mbox", record + record + record);
        m_folder.write("site.toml", "spam-threshold = 0.9\n");
        m_folder.write("cases.toml", "[[case]]\nname = \"a server\"\nverdict = \"none\"\n"
                                     "vector.first_helo_matches_reverse = \"yes\"\n");
        for (auto const* const site : {"a", "b", "c"}) {
            for (auto const* const kind : {"ham", "spam"}) {
                m_folder.write(std::string(site) + "/" + kind + ".mbox",
                               "From a Mon Jan  1 00:00:00 2024\n" + message);
            }
        }
        m_folder.write("my.qvr", readFile(QV_STARTER_TEXT));
        run("gzip -k archive.mbox; tar czf mail.tar.gz Maildir");
        run("qvrules install my.qvr");
    }

    ProgramResult run(std::string command) const {
        auto const folder = m_folder.path().string();
        command = std::regex_replace(command, std::regex(" /var"), " " + folder + "/var");
        if (command.starts_with("qvrules install")) {
            command += " --root " + folder;
        }
        if (command.starts_with("qvscan") && command.find("--root") == std::string::npos) {
            command.insert(6, " --dns off --root " + folder);
        }
        return runProgram("/bin/sh",
                          {"-c", "PATH=" QV_PROGRAMS ":$PATH; cd " + folder + "\n" + command});
    }

    TemporaryFolder m_folder;
};

} // namespace

TEST(ManPage, ListsTheOptionsThatTheScannerOffers) {
    auto const offered = optionsIn(helpOf("qvscan"));
    EXPECT_THAT(offered, testing::IsSupersetOf({"--format", "--internal", "--help", "--version"}));
    EXPECT_EQ(s_items(s_page("man/man1/qvscan.1")), offered);
}

TEST(ManPage, ListsTheOptionsThatTheMailFilterOffers) {
    EXPECT_EQ(s_items(s_section(s_page("man/man8/qvmilter.8"), ".Sh OPTIONS")),
              optionsIn(helpOf("qvmilter")));
}

TEST(ManPage, ListsTheOptionsOfEachRuleCommand) {
    auto const page = s_page("man/man1/qvrules.1");
    EXPECT_EQ(s_items(s_section(page, ".Sh OPTIONS")), optionsIn(helpOf("qvrules")));
    EXPECT_THAT(rulesCommands(), testing::IsSupersetOf({"compile", "check", "install"}));
    for (auto const& command : rulesCommands()) {
        auto const help = helpOf("qvrules", command);
        auto const section = s_section(page, ".Ss " + command);
        EXPECT_NE(section, "") << command;
        auto items = s_items(section);
        items.insert("--help");
        for (auto const* const shared : sharedSections) {
            if (help.find(shared) != std::string::npos) {
                items.merge(s_items(s_section(page, std::string(".Ss ") + shared)));
            }
        }
        EXPECT_EQ(items, optionsIn(help)) << command;
    }
}

TEST(ManPage, HasNoSectionForACommandThatThereIsNot) {
    auto const page = s_page("man/man1/qvrules.1");
    auto const commands = rulesCommands();
    EXPECT_EQ(captures(page, R"(^\.Ss ([a-z]+))"), Names(commands.begin(), commands.end()));
    EXPECT_EQ(captures(s_section(page, ".Sh SYNOPSIS"), R"(^\.Cm ([a-z]+))"),
              Names(commands.begin(), commands.end()));
}

TEST(ManPage, NamesNoOptionInItsProseThatNoProgramHas) {
    auto const known = s_allOptions();
    for (auto const* const name : {"man/man1/qvscan.1", "man/man1/qvrules.1",
                                   "man/man5/qvdeepheader.conf.5", "man/man8/qvmilter.8"}) {
        auto const named = captures(s_rendered(name), "(^|[^a-z-])(--[a-z][a-z0-9-]*)", 2);
        EXPECT_FALSE(named.empty()) << name;
        for (auto const& option : named) {
            EXPECT_TRUE(known.contains(option)) << name << " " << option;
        }
    }
}

TEST(ManPage, ListsTheSettingsThatTheScannerShows) {
    auto const shown = runProgram(programPath("qvscan"), {"--show-config"}).m_output;
    auto const items = captures(s_plain(s_page("man/man5/qvdeepheader.conf.5")),
                                R"(^\.It Cm ([a-z][a-z0-9-]*) =)");
    EXPECT_EQ(items, captures(shown, "^(# )?([a-z][a-z0-9-]*) = ", 2));
}

TEST(ManPage, GivesDefaultsThatAreTheProgramsOwn) {
    std::regex const inParentheses(R"(.*\(([^ ()]+)\))");
    HostSettings const defaults;
    int count = 0;
    for (auto const& row : settingRows()) {
        std::smatch found;
        auto const help = std::string(row.m_facts.m_help);
        if (std::regex_match(help, found, inParentheses)) {
            EXPECT_EQ(found[1].str(), row.m_show(defaults).at(0)) << row.m_facts.m_name;
            ++count;
        }
    }
    EXPECT_GE(count, 7);
}

TEST(ManPage, HasTheSectionsThatReadersLookFor) {
    for (auto const* const name : {"man/man1/qvscan.1", "man/man1/qvrules.1"}) {
        EXPECT_THAT(captures(s_page(name), R"(^\.Sh (.*)$)"),
                    testing::IsSupersetOf({"NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "FILES",
                                           "EXIT STATUS", "EXAMPLES", "SEE ALSO"}))
            << name;
    }
}

TEST_P(ManPageExamples, AllWork) {
    auto const commands = s_examples(s_page(GetParam()));
    EXPECT_GE(commands.size(), 6U);
    for (auto const& command : commands) {
        if (command.find("--rollback") != std::string::npos) {
            // A set to go back to.
            EXPECT_EQ(run("qvrules install my.qvr").m_status, 0);
        }
        auto const result = run(command);
        EXPECT_EQ(result.m_status, 0) << command << "\n" << result.m_errors;
    }
}

INSTANTIATE_TEST_SUITE_P(Pages, ManPageExamples,
                         testing::Values("man/man1/qvscan.1", "man/man1/qvrules.1"));

TEST(SettingsPage, HasAnExampleThatTheScannerTakes) {
    auto const page = s_page("man/man5/qvdeepheader.conf.5");
    auto const start = page.find("-offset indent\n") + 15;
    TemporaryFolder const folder;
    auto const file = folder.write("x.toml", page.substr(start, page.find(".Ed") - start));
    auto const result = runProgram(programPath("qvscan"), {"--config", file, "--show-config"});
    EXPECT_EQ(result.m_status, 0) << result.m_errors;
    EXPECT_THAT(result.m_output, testing::HasSubstr("spam-threshold = 0.9 "));
}

} // namespace Quorvane::Testing
