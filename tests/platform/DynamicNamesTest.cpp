// SPDX-License-Identifier: Apache-2.0
//
// The built-in list against the table of names in dynamic-names.txt.
#include "platform/DynamicIdentifier.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

using Telvanis::DynamicIdentifier;

namespace {

struct Row {
    std::string m_expectation;
    std::string m_name;
    std::string m_shape;
    int m_line = 0;

    bool isDynamic() const { return m_expectation == "dynamic"; }
    std::string where() const {
        return "line " + std::to_string(m_line) + ": " + m_name + " (" + m_shape + ")";
    }
};

std::vector<Row> s_rows() {
    std::vector<Row> rows;
    std::ifstream file(QV_DYNAMIC_NAMES);
    std::string line;
    for (int number = 1; std::getline(file, line); ++number) {
        Row row;
        row.m_line = number;
        std::istringstream fields(line);
        if (line.compare(0, 1, "#") != 0 && fields >> row.m_expectation >> row.m_name) {
            std::getline(fields >> std::ws, row.m_shape);
            rows.push_back(row);
        }
    }
    return rows;
}

std::string s_upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char c) {
        return static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    });
    return text;
}

class DynamicNamesTest : public testing::Test {
  protected:
    bool match(std::string const& name) const { return m_names->match(name); }

    std::vector<Row> const m_rows = s_rows();
    boost::shared_ptr<DynamicIdentifier> const m_names = DynamicIdentifier::builtIn();
};

TEST_F(DynamicNamesTest, TheTableIsWhole) {
    std::size_t dynamic = 0;
    for (auto const& row : m_rows) {
        EXPECT_TRUE(row.isDynamic() || row.m_expectation == "named") << row.where();
        EXPECT_LE(2, std::count(row.m_name.begin(), row.m_name.end(), '.')) << row.where();
        EXPECT_FALSE(row.m_shape.empty()) << row.where();
        dynamic += row.isDynamic() ? 1 : 0;
    }
    EXPECT_LT(100U, dynamic);
    EXPECT_LT(80U, m_rows.size() - dynamic);
}

TEST_F(DynamicNamesTest, NamesOfDynamicMachinesAreToldFromOthers) {
    for (auto const& row : m_rows) {
        EXPECT_EQ(row.isDynamic(), match(row.m_name)) << row.where();
    }
}

TEST_F(DynamicNamesTest, TheBuiltInListIsTheOneInTheFile) {
    auto const names = DynamicIdentifier::load(QV_DYNAMIC_PATTERNS);
    for (auto const& row : m_rows) {
        EXPECT_EQ(match(row.m_name), names->match(row.m_name)) << row.where();
    }
}

TEST_F(DynamicNamesTest, LetterCaseAndATrailingDotMakeNoDifference) {
    for (auto const& row : m_rows) {
        EXPECT_EQ(row.isDynamic(), match(s_upper(row.m_name))) << row.where();
        EXPECT_EQ(row.isDynamic(), match(row.m_name + '.')) << row.where();
    }
}

TEST_F(DynamicNamesTest, EveryAddressWrittenIntoANameIsSeen) {
    for (auto const* const join : {"-", ".", "_", "x"}) {
        for (int octet = 0; octet < 256; ++octet) {
            std::ostringstream name;
            name << octet << join << 255 - octet << join << 0 << join << octet
                 << ".isp.example.net";
            EXPECT_TRUE(match(name.str())) << name.str();
            EXPECT_TRUE(match("line" + name.str())) << name.str();
        }
    }
}

TEST_F(DynamicNamesTest, EveryHexadecimalAddressWithADigitIsSeen) {
    for (std::size_t digit = 0; digit < 8; ++digit) {
        std::string hex(8, 'c');
        EXPECT_FALSE(match(hex + ".isp.example.net"));
        hex[digit] = '7';
        EXPECT_TRUE(match(hex + ".isp.example.net")) << hex;
        EXPECT_TRUE(match("h-" + hex + ".isp.example.net")) << hex;
    }
}

} // namespace
