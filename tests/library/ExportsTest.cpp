// SPDX-License-Identifier: Apache-2.0
//
// The symbol table of libqvdeepheader.so.1, read from outside: what hosts may call is there under
// its version, and nothing else is.
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

// Under a version of its own: for programs that want the record of a scan or rules from memory.
constexpr std::array<std::string_view, 1> recordClasses{"Quorvane::DeepHeaderEngine"};
constexpr std::array<std::string_view, 0> recordFunctions{};

constexpr char hostVersion[] = "QVDEEPHEADER_1";
constexpr char recordVersion[] = "QVDEEPHEADER_RECORD_1";

// What the compiler makes beside the members of a class.
constexpr std::array<std::string_view, 7> compilerMade{
    "vtable for ",           "VTT for ",          "typeinfo for ",       "typeinfo name for ",
    "non-virtual thunk to ", "virtual thunk to ", "guard variable for ",
};

bool s_startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

// The demangled symbols defined under a version; the one that names it (type A) is left out.
std::vector<std::string> s_definedSymbols(std::string const& version) {
    std::string const command = "nm -D --defined-only --with-symbol-versions " QV_LIBRARY
                                " | sed -n 's/@@" +
                                version + "$//p' | c++filt";
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
void s_expectAll(Owners const& owners, std::string_view separator,
                 std::string const& version = hostVersion) {
    auto const symbols = s_definedSymbols(version);
    for (auto const owner : owners) {
        bool found = false;
        for (auto const& symbol : symbols) {
            found = found || s_belongsTo(symbol, owner, separator);
        }
        EXPECT_TRUE(found) << owner << " is not exported";
    }
}

template<typename Classes, typename Functions>
void s_expectOnly(std::string const& version, Classes const& classes, Functions const& functions) {
    auto const symbols = s_definedSymbols(version);
    ASSERT_FALSE(symbols.empty());
    for (auto const& symbol : symbols) {
        EXPECT_TRUE(s_belongsToAny(symbol, classes, "::") || s_belongsToAny(symbol, functions, "("))
            << symbol << " is exported as " << version;
    }
}

TEST(Exports, NothingBesideTheSixClassesAndFiveFunctions) {
    s_expectOnly(hostVersion, exportedClasses, exportedFunctions);
}

TEST(Exports, TheRecordHasAVersionOfItsOwn) {
    s_expectOnly(recordVersion, recordClasses, recordFunctions);
    std::vector<std::string_view> const members{
        "Quorvane::DeepHeaderEngine::inForce", "Quorvane::DeepHeaderEngine::fromStreams",
        "Quorvane::DeepHeaderEngine::scan", "Quorvane::DeepHeaderEngine::judge"};
    s_expectAll(members, "(", recordVersion);
}

TEST(Exports, EverySymbolHasAVersion) {
    auto const versioned =
        s_definedSymbols(hostVersion).size() + s_definedSymbols(recordVersion).size();
    EXPECT_EQ(s_definedSymbols("[A-Z0-9_]*").size(), versioned);
}

TEST(Exports, EveryClass) {
    s_expectAll(exportedClasses, "::");
}

TEST(Exports, EveryFreeFunction) {
    s_expectAll(exportedFunctions, "(");
}

TEST(Exports, EveryOperationThatHostsUse) {
    std::vector<std::string_view> const members(promisedMembers.begin(), promisedMembers.end());
    s_expectAll(members, "(");
}

TEST(Exports, TypeInformationForHostsThatDeriveOrCatch) {
    auto const symbols = s_definedSymbols(hostVersion);
    for (auto const owner : exportedClasses) {
        for (auto const* kind : {"vtable for ", "typeinfo for "}) {
            auto const wanted = std::string(kind).append(owner);
            EXPECT_EQ(std::count(symbols.begin(), symbols.end(), wanted), 1) << wanted;
        }
    }
}

} // namespace
