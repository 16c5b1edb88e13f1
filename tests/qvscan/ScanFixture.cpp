// SPDX-License-Identifier: Apache-2.0
#include "qvscan/ScanFixture.h"

#include "rules/format/AttributeTable.h"
#include "rules/model/RuleFolder.h"
#include "support/ChildProcess.h"
#include "support/EliteHeader.h"

#include <algorithm>

namespace Quorvane::Testing {

namespace {

DTNode s_node(std::int32_t attribute, std::int32_t value, double confidence) {
    auto node = DTNode{};
    node.attribute = attribute;
    node.testValue = value;
    node.isLeaf = 1;
    node.value1 = 100;
    node.confidence = confidence;
    node.support = 10;
    return node;
}

EliteNodes s_elite(std::int32_t code, std::int32_t type, std::int32_t level, double weight,
                   std::int32_t attribute) {
    EliteNodes rule{};
    rule.code = code;
    rule.type = type;
    rule.level = level;
    rule.weight = weight;
    rule.support = 5;
    rule.conditionCount = 1;
    rule.conditions = {{attribute, 0, 1}};
    return rule;
}

Rules::RuleSet s_rules() {
    constexpr std::int32_t reverseDynamic = Attribute::firstReverseDynamic;
    Rules::RuleSet set;
    set.m_nodes.assign(3, DTNode{});
    set.m_nodes[2].confidence = 0.3;
    set.m_nodes[2].support = 100;
    set.m_nodes[2].childCount = 3;
    set.m_nodes[2].children = {3, 4, 5};
    set.m_nodes.push_back(s_node(reverseDynamic, 1, 0.99));
    set.m_nodes.push_back(s_node(reverseDynamic, 0, 0.02));
    set.m_nodes.push_back(s_node(reverseDynamic, 2, 0.5));
    set.m_elite.emplace();
    set.m_elite->m_header = plainEliteHeader();
    set.m_elite->m_header->nodeCount = 2;
    set.m_elite->m_header->alsoWalkTree = 1;
    set.m_elite->m_rules = {s_elite('a', EliteType::adjusting, 1, 0.01, Attribute::hopBehindFirst),
                            s_elite(901, EliteType::deciding, 2, 0.96, Attribute::statusIndicated)};
    set.setVersion(1);
    return set;
}

std::string s_message(std::string const& reverse) {
    return hop("pc.example.net", reverse, "192.0.2.7") +
           "From: Ann <ann@example.net>\nTo: bob@example.org\n"
           "Message-ID: <1@Host.Example.NET>\nReturn-Path: <ann@example.net>\n\nBody\n";
}

} // namespace

std::string hop(std::string const& helo, std::string const& reverse, std::string const& address,
                std::string const& by) {
    return "Received: from " + helo + " (" + reverse + " [" + address + "])\n\tby " + by +
           " (Postfix) with ESMTP id 4Qw; Mon, 1 Jan 2024 10:00:00 +0000\n";
}

ScanTest::ScanTest() {
    Rules::writeFolder(m_folder.path() / ("root" + std::string(ruleDirectory)), s_rules());
}

void ScanTest::writeNames(Rules::RuleNames const& names) const {
    writeNamesFile(Rules::namesText(names));
}

void ScanTest::writeNamesFile(std::string const& text) const {
    m_folder.write("root" + std::string(ruleDirectory) + '/' + namesFileName, text);
}

ProgramResult ScanTest::run(Arguments const& arguments, std::string const& input) {
    return runProgram(QV_SCAN_PROGRAM, arguments, input);
}

ProgramResult ScanTest::scan(Arguments const& arguments, std::string const& input) const {
    Arguments all{"--root", root(), "--dns", "off", "--format", "json"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return run(all, input);
}

// The program then waits for standard input. What it used is only known while it runs: at its end
// the memory of the test that started it counts as well.
long ScanTest::peakKilobytes(std::string const& path, std::string const& last,
                             std::string const& jobs) const {
    ChildProcess const child(QV_SCAN_PROGRAM, {"--root", root(), "--dns", "off", "--format", "json",
                                               "--jobs", jobs, path, "-"});
    auto const wanted = Json(path + last).dump();
    std::string recent;
    for (auto piece = child.readSome(); !piece.empty(); piece = child.readSome()) {
        recent.erase(0, recent.size() - std::min(recent.size(), wanted.size()));
        recent += piece;
        if (recent.find(wanted) != std::string::npos) {
            return child.peakKilobytesNow();
        }
    }
    ADD_FAILURE() << "there is no record of " << wanted;
    return 0;
}

std::vector<Json> ScanTest::records(ProgramResult const& result) {
    return jsonLines(result.m_output);
}

Arguments ScanTest::summary(ProgramResult const& result) {
    Arguments lines;
    for (auto const& record : records(result)) {
        lines.push_back(record["source"].get<std::string>() + " " +
                        record["verdict"].get<std::string>());
    }
    return lines;
}

Json ScanTest::explained(Arguments arguments, std::string const& input) const {
    arguments.emplace_back("--explain");
    auto const result = scan(arguments, input);
    auto const found = records(result);
    EXPECT_EQ(found.size(), 1U) << result.m_errors;
    return found.empty() ? Json() : found.front();
}

std::string ScanTest::spam() {
    return s_message("dsl-192-0-2-7.dyn.example.net");
}

std::string ScanTest::none() {
    return s_message("unknown");
}

std::string ScanTest::ham() {
    return s_message("mail.example.net");
}

std::string ScanTest::noise(std::uint32_t number) {
    std::string text;
    for (int i = 0; i < 400000; ++i) {
        number = number * 1664525U + 1013904223U;
        text += static_cast<char>('a' + (number >> 24U) % 26U);
        text += i % 60 == 59 ? "\n" : "";
    }
    return text + "\n\n";
}

} // namespace Quorvane::Testing
