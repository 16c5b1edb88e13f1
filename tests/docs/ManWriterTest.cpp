// SPDX-License-Identifier: Apache-2.0
#include "apps/docgen/ManPage.h"
#include "apps/docgen/Mdoc.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace Quorvane::Testing {

using namespace Docs;

namespace {

ProgramTable s_program() {
    return {
        "tool",
        {"", "", {}, {{"format", "text|FILE", "how. it looks", Takes::repeatable, 'f', "Output"}}},
        {{"make", "Make", {{"SRC", "SRC", "Text", Takes::required}}, {{"force", "", "at once"}}}}};
}

std::string s_page(ProgramTable const& program, std::string const& prose) {
    return manPage(program, {}, prose, "2.3");
}

constexpr char allSections[] = "@OPTIONS Output@\n@OPTIONS make@\n";

} // namespace

TEST(MdocText, LetsNoTableEntryActAsAMacro) {
    EXPECT_EQ(mdocText(".Sh"), "\\&.Sh");
    EXPECT_EQ(mdocText("'x"), "\\&'x");
    EXPECT_EQ(mdocText("a\\fBb"), "a\\efBb");
    EXPECT_EQ(mdocText("walk-to-leaf"), "walk\\-to\\-leaf");
}

TEST(ManWriter, PutsOptionsWhereTheProseAsksForThem) {
    EXPECT_EQ(s_page(s_program(), ".Sh A\n@OPTIONS Output@\n.Sh B\n@OPTIONS make@\n"),
              ".Sh A\n.Bl -tag -width Ds\n"
              ".It Fl f , Fl \\-format Cm text | Ar FILE\n"
              "How. it looks.\nMay be given more than once.\n.El\n"
              ".Sh B\n.Bl -tag -width Ds\n.It Ar SRC\nText.\n.It Fl \\-force\nAt once.\n.El\n");
}

TEST(ManWriter, WritesTheSynopsisOfEachCommand) {
    auto const page = s_page(s_program(), std::string("@SYNOPSIS@\n") + allSections);
    EXPECT_TRUE(page.starts_with(".Nm tool\n.Cm make\n.Op Fl \\-force\n.Ar SRC\n")) << page;
}

TEST(ManWriter, PutsTheVersionIn) {
    auto const page = s_page(s_program(), std::string(".Os X @VERSION@\n") + allSections);
    EXPECT_TRUE(page.starts_with(".Os X 2.3\n"));
}

TEST(ManWriter, DescribesCommandsThatTheProseForgets) {
    EXPECT_EQ(
        s_page(s_program(), "@COMMANDS@\n@OPTIONS Output@\n").substr(0, 60),
        s_page(s_program(), ".Ss make\nMake.\n@OPTIONS make@\n@OPTIONS Output@\n").substr(0, 60));
    EXPECT_EQ(s_page(s_program(), std::string(allSections) + "@COMMANDS@\n"),
              s_page(s_program(), allSections));
}

TEST(ManWriter, ListsWhatCommandsShareOnce) {
    auto program = s_program();
    for (auto const* const name : {"one", "two"}) {
        program.m_commands.push_back({name, "", {}, {{"jobs", "N", "threads", 0, '\0', "shared"}}});
    }
    auto const page = s_page(program, std::string(allSections) + "@OPTIONS shared@\n");
    EXPECT_NE(page.find("jobs"), std::string::npos);
    EXPECT_EQ(page.find("jobs"), page.rfind("jobs"));
    EXPECT_EQ(mdocSynopsis(program, program.m_commands.back()),
              ".Nm tool\n.Cm two\n.Op Ar settings\n");
}

TEST(ManWriter, RefusesProseThatLeavesOptionsOut) {
    EXPECT_THROW(s_page(s_program(), "@OPTIONS Output@\n"), std::runtime_error);
}

TEST(ManWriter, RefusesProseThatAsksForWhatThereIsNot) {
    auto const twice = std::string(allSections) + "@OPTIONS make@\n";
    EXPECT_THROW(s_page(s_program(), twice), std::runtime_error);
    auto const unknown = std::string(allSections) + "@OPTIONS Input@\n";
    EXPECT_THROW(s_page(s_program(), unknown), std::runtime_error);
}

} // namespace Quorvane::Testing
