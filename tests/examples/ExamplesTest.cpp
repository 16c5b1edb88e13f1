// SPDX-License-Identifier: Apache-2.0
//
// The working record of every example message, as qvscan --explain shows it with the default rules
// and the DNS data that goes with the examples, against the golden files beside this test: one for
// programs and one for people for each example.
#include "support/Golden.h"
#include "support/Program.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace Quorvane::Testing {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

fs::path const examples = QV_EXAMPLES;
fs::path const golden = QV_GOLDEN;

// The names of the files in `folder` that end in `extension`, without it.
std::vector<std::string> s_names(fs::path const& folder, std::string const& extension) {
    std::vector<std::string> names;
    for (auto const& entry : fs::directory_iterator(folder)) {
        if (entry.path().extension() == extension) {
            names.push_back(entry.path().stem());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

ProgramResult s_scan(std::vector<std::string> const& more) {
    std::vector<std::string> arguments{
        "--root", QV_DEFAULT_ROOT, "--dns-data", examples / "dns.zone", "--format", "json"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return runProgram(QV_SCAN_PROGRAM, arguments);
}

// Each value of an object or list on a line of its own, down to two levels below a key.
std::string s_lines(Json const& value, int depth, std::string const& indent) {
    if (depth == 0 || !value.is_structured() || value.empty()) {
        return value.dump();
    }
    std::string text;
    for (auto const& [key, item] : value.items()) {
        text += (text.empty() ? "" : ",") + ("\n" + indent + "  ") +
                (value.is_object() ? Json(key).dump() + ": " : "") +
                s_lines(item, depth - 1, indent + "  ");
    }
    bool const isObject = value.is_object();
    return (isObject ? "{" : "[") + text + "\n" + indent + (isObject ? "}" : "]");
}

// One record, laid out for a reader of diffs. The folder of the checkout is no part of it, and what
// the record says in words stands in the explained text.
std::string s_picture(ProgramResult const& result, std::string const& name) {
    auto record = Json::parse(result.m_output);
    record["source"] = "examples/" + name + ".eml";
    auto& explain = record["explain"];
    for (auto const* key :
         {"because", "needed", "trail", "rules", "values", "facts", "singleChanges"}) {
        explain.erase(key);
    }
    explain["tree"].erase("nodes");
    auto attributes = std::move(explain["attributes"]);
    explain["attributes"] = attributes.dump();
    return s_lines(record, 3, "") + '\n';
}

class Example : public testing::TestWithParam<std::string> {};

TEST_P(Example, HasTheWorkingRecordThatWasApproved) {
    auto const file = (examples / (GetParam() + ".eml")).string();
    auto const result = s_scan({"--explain", file});
    ASSERT_TRUE(result.m_status == 0 || result.m_status == 1) << result.m_errors;
    expectGolden(golden / (GetParam() + ".json"), s_picture(result, GetParam()));
}

// From the folder of the repository, so that no path of a machine shows.
ProgramResult s_scanHere(std::vector<std::string> arguments,
                         std::vector<std::string> const& names) {
    arguments.insert(arguments.end(),
                     {"--root", QV_DEFAULT_ROOT, "--dns-data", "examples/dns.zone"});
    for (auto const& name : names) {
        arguments.push_back("examples/" + name + ".eml");
    }
    return runProgram(QV_SCAN_PROGRAM, arguments);
}

TEST_P(Example, IsExplainedInTheWordsThatWereApproved) {
    auto const result = s_scanHere({"--format", "text", "--explain=all"}, {GetParam()});
    expectGolden(golden / (GetParam() + ".txt"), result.m_output);
}

TEST_P(Example, IsExplainedInFewLinesUnlessAllIsAskedFor) {
    auto const text = s_scanHere({"--format", "text", "--explain"}, {GetParam()}).m_output;
    EXPECT_LE(std::count(text.begin(), text.end(), '\n'), 15) << text;
}

std::string s_testName(testing::TestParamInfo<std::string> const& info) {
    auto name = info.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Examples, Example, testing::ValuesIn(s_names(examples, ".eml")),
                         s_testName);

TEST(Examples, CoverTheShapesOfManyMailServers) {
    EXPECT_GE(s_names(examples, ".eml").size(), 24u);
}

TEST(Examples, LeaveNoGoldenFileBehindWhenTheyGo) {
    auto const expected = s_names(examples, ".eml");
    for (std::string const extension : {".json", ".txt"}) {
        for (auto const& name : s_names(golden, extension)) {
            if (!std::binary_search(expected.begin(), expected.end(), name) && isApproving()) {
                fs::remove(golden / (name + extension));
            }
        }
        if (!isApproving()) {
            EXPECT_EQ(s_names(golden, extension), expected);
        }
    }
}

// Many at once, in one process and on several threads, give what each gives alone.
TEST(Examples, AreJudgedTogetherAsAlone) {
    if (isApproving()) {
        GTEST_SKIP() << "compares only";
    }
    std::vector<std::string> arguments{"--explain", "--jobs", "4"};
    auto const names = s_names(examples, ".eml");
    for (auto const& name : names) {
        arguments.push_back(examples / (name + ".eml"));
    }
    auto const result = s_scan(arguments);
    EXPECT_EQ(result.m_status, 1) << "some of the examples are spam; " << result.m_errors;
    std::istringstream lines(result.m_output);
    std::string line;
    for (auto const& name : names) {
        ASSERT_TRUE(std::getline(lines, line)) << name;
        expectGolden(golden / (name + ".json"), s_picture({0, line, {}}, name));
    }
    EXPECT_FALSE(std::getline(lines, line)) << line;
}

TEST(Examples, AnswerWhatWouldHaveStoppedEachVerdictOfSpam) {
    int spam = 0;
    for (auto const& name : s_names(examples, ".eml")) {
        auto const record = Json::parse(s_scan({"--explain", examples / (name + ".eml")}).m_output);
        auto const& changes = record["explain"]["singleChanges"];
        EXPECT_EQ(changes.is_null(), record["verdict"] != "spam") << name;
        if (changes.is_null()) {
            continue;
        }
        ++spam;
        EXPECT_TRUE(changes["allTried"]) << name;
        EXPECT_EQ(changes["text"], changes["list"].empty()
                                       ? "no change of a single attribute would have let this "
                                         "message pass"
                                       : "")
            << name;
    }
    EXPECT_GE(spam, 4);
}

TEST(Examples, HaveTheVectorsThatWereApproved) {
    auto const result = s_scanHere({"--format", "csv"}, s_names(examples, ".eml"));
    expectGolden(golden / "vectors.csv", result.m_output);
}

// What an explanation says first: a question to the site, or else the sentence of the rule that
// decided, or else what the verdict is because of.
std::string s_reason(std::string const& explanation) {
    for (std::string const pattern :
         {"\n  Note: (.*)", "\n  ((Node|Rule) .*\\): .*)", "\n  Because: (.*)"}) {
        std::smatch line;
        if (std::regex_search(explanation, line, std::regex(pattern))) {
            return line[1];
        }
    }
    return "";
}

// A row of README's table as it should read: | [what it shows](examples/NAME.eml), with `OPTIONS` |
// verdict | reason |. People write the first cell, and the programs the others.
std::string s_row(std::string const& first) {
    std::smatch name;
    EXPECT_TRUE(std::regex_search(first, name, std::regex("examples/([a-z0-9-]+)\\.eml"))) << first;
    std::vector<std::string> arguments{"--format", "text", "--explain"};
    std::smatch option;
    if (std::regex_search(first, option, std::regex("`(--[a-z-]+) (\\S+)`"))) {
        arguments.insert(arguments.end(), {option[1], option[2]});
    }
    auto const text = s_scanHere(arguments, {name[1]}).m_output;
    return first + text.substr(0, text.find("  ")) + " | " + s_reason(text) + " |";
}

// README shows what a newcomer sees. `./dev scan` runs the same program in the same folder.
TEST(Examples, ReadAsInTheReadme) {
    auto const readme = (examples.parent_path() / "README.md").string();
    std::regex const row("(\\| [^|]*\\(examples/[^|]* \\| ).*");
    std::istringstream lines(readFile(readme));
    std::string text;
    std::string line;
    int rows = 0;
    while (std::getline(lines, line)) {
        std::smatch cells;
        if (std::regex_match(line, cells, row)) {
            ++rows;
            line = s_row(cells[1]);
        }
        text += line + '\n';
    }
    EXPECT_GE(rows, 6);
    expectGolden(readme, text);
}

} // namespace
} // namespace Quorvane::Testing
