// SPDX-License-Identifier: Apache-2.0
//
// The symbol table of libqvdeepheader.so.1, read from outside: what hosts may call is there, and
// nothing else is.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::array<std::string_view, 6> exportedClasses{
    "Quorvane::DeepHeaderScanner", "Quorvane::DeepHeaderQuery",      "Quorvane::DeepHeaderAnswer",
    "Quorvane::DeepHeaderAdapter", "Quorvane::RefDeepHeaderAdapter", "Quorvane::MsgReceived",
};

constexpr std::array<std::string_view, 5> exportedFunctions{
    "Quorvane::s_isForged",           "Quorvane::s_getReverseName", "Quorvane::s_ThreeWayMisMatch",
    "Quorvane::s_createEmailAddress", "Quorvane::s_getTVAS",
};

constexpr std::array<std::string_view, 12> promisedMembers{
    "Quorvane::DeepHeaderScanner::init",
    "Quorvane::DeepHeaderScanner::ready",
    "Quorvane::DeepHeaderScanner::postQuery",
    "Quorvane::DeepHeaderScanner::m_Mutex",
    "Quorvane::DeepHeaderAnswer::isSpam",
    "Quorvane::DeepHeaderAnswer::isHam",
    "Quorvane::DeepHeaderAnswer::confidenceDegree",
    "Quorvane::DeepHeaderAnswer::getNode",
    "Quorvane::DeepHeaderAnswer::getIPs",
    "Quorvane::DeepHeaderAnswer::getReasons",
    "Quorvane::DeepHeaderAdapter::scanMessage",
    "Quorvane::RefDeepHeaderAdapter::instance",
};

// What the compiler makes beside the members of a class.
constexpr std::array<std::string_view, 7> compilerMade{
    "vtable for ",           "VTT for ",          "typeinfo for ",       "typeinfo name for ",
    "non-virtual thunk to ", "virtual thunk to ", "guard variable for ",
};

bool s_startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

// The demangled defined symbols; the one that names the version (type A) is left out.
std::vector<std::string> s_definedSymbols() {
    std::string const command =
        "nm -D --defined-only --demangle --without-symbol-versions " QV_LIBRARY;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> const pipe(popen(command.c_str(), "r"), pclose);
    std::vector<std::string> symbols;
    std::array<char, 4096> line{};
    while (pipe && std::fgets(line.data(), line.size(), pipe.get()) != nullptr) {
        std::string text = line.data();
        // 16 digits, a blank, the type, a blank, the name, the end of the line.
        if (text.size() > 20 && text[17] != 'A') {
            symbols.push_back(text.substr(19, text.size() - 20));
        }
    }
    return symbols;
}

std::string_view s_withoutPrefix(std::string_view symbol) {
    for (auto const prefix : compilerMade) {
        if (s_startsWith(symbol, prefix)) {
            return symbol.substr(prefix.size());
        }
    }
    return symbol;
}

// Whether `symbol` is `owner` itself, or a member of it, or a function of that name.
bool s_belongsTo(std::string_view symbol, std::string_view owner, std::string_view separator) {
    auto const name = s_withoutPrefix(symbol);
    if (!s_startsWith(name, owner)) {
        return false;
    }
    auto const rest = name.substr(owner.size());
    return rest.empty() || s_startsWith(rest, separator) || s_startsWith(rest, "[abi:");
}

template<typename Owners>
bool s_belongsToAny(std::string_view symbol, Owners const& owners, std::string_view separator) {
    for (auto const owner : owners) {
        if (s_belongsTo(symbol, owner, separator)) {
            return true;
        }
    }
    return false;
}

template<typename Owners>
void s_expectAll(Owners const& owners, std::string_view separator) {
    auto const symbols = s_definedSymbols();
    for (auto const owner : owners) {
        bool found = false;
        for (auto const& symbol : symbols) {
            found = found || s_belongsTo(symbol, owner, separator);
        }
        EXPECT_TRUE(found) << owner << " is not exported";
    }
}

TEST(Exports, nothingBesideTheSixClassesAndFiveFunctions) {
    auto const symbols = s_definedSymbols();
    ASSERT_FALSE(symbols.empty());
    for (auto const& symbol : symbols) {
        EXPECT_TRUE(s_belongsToAny(symbol, exportedClasses, "::") ||
                    s_belongsToAny(symbol, exportedFunctions, "("))
            << symbol << " is exported";
    }
}

TEST(Exports, everyClass) {
    s_expectAll(exportedClasses, "::");
}

TEST(Exports, everyFreeFunction) {
    s_expectAll(exportedFunctions, "(");
}

TEST(Exports, everyOperationThatHostsUse) {
    std::vector<std::string_view> const members(promisedMembers.begin(), promisedMembers.end());
    s_expectAll(members, "(");
}

TEST(Exports, typeInformationForHostsThatDeriveOrCatch) {
    auto const symbols = s_definedSymbols();
    for (auto const owner : exportedClasses) {
        for (auto const* kind : {"vtable for ", "typeinfo for "}) {
            auto const wanted = std::string(kind).append(owner);
            EXPECT_EQ(std::count(symbols.begin(), symbols.end(), wanted), 1) << wanted;
        }
    }
}

} // namespace
