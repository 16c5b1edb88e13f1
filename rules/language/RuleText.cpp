// SPDX-License-Identifier: Apache-2.0
#include "rules/language/RuleText.h"

#include "rules/format/RuleTests.h"
#include "rules/format/ValueWords.h"
#include "rules/language/Literals.h"
#include "rules/language/Printers.h"
#include "rules/model/Readme.h"

#include <algorithm>
#include <utility>

namespace Quorvane::Rules {

namespace {

constexpr std::size_t hexBytesInLine = 32;

// One line of the language, with `word`, for each line of a text file.
std::string s_fileLines(std::string const& word, std::string_view file) {
    std::string text;
    do {
        auto const end = file.find('\n');
        auto const length = end == std::string_view::npos ? file.size() : end + 1;
        text += word + ' ' + quotedText(file.substr(0, length)) + '\n';
        file.remove_prefix(length);
    } while (!file.empty());
    return text;
}

std::string s_versionText(RuleSet const& set) {
    if (!set.m_readme) {
        return "";
    }
    auto const version = set.version();
    auto const line = version ? "version " + std::to_string(*version) + '\n' : "";
    auto const isUsual = version && *set.m_readme == readmeText(*version);
    return isUsual ? line : line + s_fileLines("readme", *set.m_readme);
}

std::string s_attributeText(std::int32_t attribute) {
    return isAttribute(attribute)
               ? std::string(attributeTable[static_cast<std::size_t>(attribute)].m_name)
               : std::to_string(attribute);
}

std::string s_testText(std::int32_t test) {
    switch (test) {
    case Comparison::equals:
        return " == ";
    case Comparison::differs:
        return " != ";
    default:
        return " test(" + std::to_string(test) + ") ";
    }
}

// The names, if the file is the one that the compiler would make of them.
RuleNames s_usualNames(SpareFile const& file) {
    auto names = readNames(file).m_names;
    return file.m_content && namesText(names) == *file.m_content ? std::move(names) : RuleNames();
}

std::string s_ruleText(RuleSet const& set, std::string const& namesFile, NamePrinter& names) {
    auto text = s_versionText(set);
    auto const append = [&text](std::string const& part) {
        text += (text.empty() || part.empty() ? "" : "\n") + part;
    };
    append(namesFile);
    append(set.m_elite ? eliteText(*set.m_elite, names) : "");
    append(treeText(set, names));
    return text;
}

} // namespace

std::string conditionText(EliteCondition const& condition) {
    // A negative attribute becomes a huge index, which has no words.
    auto const index = static_cast<std::size_t>(condition.attribute);
    return s_attributeText(condition.attribute) + s_testText(condition.test) +
           valueText(index, condition.value);
}

std::string hexLines(char const* word, std::string_view bytes) {
    std::string text;
    do {
        text += word + (" \"" + hexText(bytes.substr(0, hexBytesInLine))) + "\"\n";
        bytes.remove_prefix(std::min(bytes.size(), hexBytesInLine));
    } while (!bytes.empty());
    return text;
}

std::string ruleText(RuleSet const& set) {
    auto const names = s_usualNames(set.m_names);
    NamePrinter atRules(names);
    auto text = s_ruleText(set, "", atRules);
    bool const isUsual = !names.empty() && atRules.hasPrintedAll();
    if (!set.m_names.m_content || isUsual) {
        return text;
    }
    RuleNames const none;
    NamePrinter nowhere(none);
    return s_ruleText(set, s_fileLines("names-file", *set.m_names.m_content), nowhere);
}

} // namespace Quorvane::Rules
