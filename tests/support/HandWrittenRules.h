// SPDX-License-Identifier: Apache-2.0
//
// One tree node and one elite file as bytes written by hand, after docs/rule-files.md and not
// through the records that they are read into: files that are written and read through the same
// records agree whatever the order of the fields. Every field holds a number of its own, so fields
// that change places are noticed.
#pragma once

#include "rules/format/RuleFiles.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Quorvane::Testing {

// The bytes that pairs of hexadecimal digits name; blanks between them are skipped.
inline std::string bytesOf(std::string_view hex) {
    auto const digit = [](char c) {
        auto const value = std::string_view("0123456789abcdef").find(c);
        if (value == std::string_view::npos) {
            throw std::invalid_argument("no hexadecimal digit");
        }
        return value;
    };
    std::string bytes;
    for (std::size_t at = 0; at < hex.size();) {
        if (hex[at] == ' ') {
            ++at;
            continue;
        }
        bytes += static_cast<char>(digit(hex.at(at)) * 16 + digit(hex.at(at + 1)));
        at += 2;
    }
    return bytes;
}

// A leaf that engines take as node 3.
inline std::string handWrittenNode() {
    return bytesOf("11000000"                   //  0 attribute 17
                   "01000000"                   //  4 test 1
                   "13000000"                   //  8 test value 19
                   "15"                         // 12 leaf mark 21
                   "161718"                     // 13 reserved
                   "19000000"                   // 16 reserved 25
                   "21000000 22000000 23000000" // 20 children 33 to 42
                   "24000000 25000000 26000000" //
                   "27000000 28000000 29000000" //
                   "2a000000"                   //
                   "05000000"                   // 60 child count 5
                   "31000000"                   // 64 value 1: 49
                   "32000000"                   // 68 value 2: 50
                   "33000000"                   // 72 value 3: 51
                   "000000000000ec3f"           // 76 confidence 0.875
                   "0000000000002940");         // 84 support 12.5
}

inline void expectHandWritten(DTNode const& node) {
    EXPECT_EQ(node.attribute, 17);
    EXPECT_EQ(node.test, 1);
    EXPECT_EQ(node.testValue, 19);
    EXPECT_EQ(node.isLeaf, 21);
    EXPECT_EQ(node.reserved1, (std::array<std::uint8_t, 3>{22, 23, 24}));
    EXPECT_EQ(node.reserved2, 25);
    for (std::size_t slot = 0; slot < node.children.size(); ++slot) {
        EXPECT_EQ(node.children[slot], 33 + static_cast<int>(slot));
    }
    EXPECT_EQ(node.childCount, 5);
    EXPECT_EQ(node.value1, 49);
    EXPECT_EQ(node.value2, 50);
    EXPECT_EQ(node.value3, 51);
    EXPECT_EQ(node.confidence, 0.875);
    EXPECT_EQ(node.support, 12.5);
}

// Its header announces two rules; the second is that of expectHandWritten.
inline std::string handWrittenElite() {
    return bytesOf("47000000"                   //  0 reserved 71
                   "02000000"                   //  4 count 2
                   "48000000"                   //  8 reserved 72
                   "03000000"                   // 12 select mode 3
                   "01000000"                   // 16 also tree 1
                   "494a4b4c 4d4e4f50 51525354" // 20 reserved
                   // A rule without conditions.
                   "61000000"         // code 97
                   "000000000000d03f" // weight 0.25
                   "0000000000000000" // support 0
                   "00000000 01000000 00000000 00000000 00000000"
                   // The rule.
                   "04030201"                     //  0 code 0x01020304
                   "000000000000e43f"             //  4 weight 0.625
                   "0000000000001a40"             // 12 support 6.5
                   "f9ffffff"                     // 20 flag -7
                   "02000000"                     // 24 type 2
                   "0a000000"                     // 28 level 10
                   "0b000000"                     // 32 reserved 11
                   "03000000"                     // 36 condition count 3
                   "0c000000 01000000 0e000000"   // attribute 12, test 1, value 14
                   "0f000000 00000000 10000000"   // attribute 15, test 0, value 16
                   "12000000 feffffff 14000000"); // attribute 18, test -2, value 20
}

inline void expectHandWritten(EliteFileHeader const& header) {
    EXPECT_EQ(header.reserved1, 71);
    EXPECT_EQ(header.nodeCount, 2);
    EXPECT_EQ(header.reserved2, 72);
    EXPECT_EQ(header.selectMode, 3);
    EXPECT_EQ(header.alsoWalkTree, 1);
    for (std::size_t at = 0; at < header.reserved3.size(); ++at) {
        EXPECT_EQ(header.reserved3[at], 73 + at);
    }
}

inline void expectHandWritten(EliteNodes const& rule) {
    EXPECT_EQ(rule.code, 0x01020304);
    EXPECT_EQ(rule.weight, 0.625);
    EXPECT_EQ(rule.support, 6.5);
    EXPECT_EQ(rule.flag, -7);
    EXPECT_EQ(rule.type, 2);
    EXPECT_EQ(rule.level, 10);
    EXPECT_EQ(rule.reserved, 11);
    EXPECT_EQ(rule.conditionCount, 3);
    ASSERT_EQ(rule.conditions.size(), 3U);
    auto condition = rule.conditions.begin();
    for (auto const& [attribute, test, value] :
         {EliteCondition{12, 1, 14}, EliteCondition{15, 0, 16}, EliteCondition{18, -2, 20}}) {
        EXPECT_EQ(condition->attribute, attribute);
        EXPECT_EQ(condition->test, test);
        EXPECT_EQ(condition->value, value);
        ++condition;
    }
}

} // namespace Quorvane::Testing
