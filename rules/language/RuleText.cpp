// SPDX-License-Identifier: Apache-2.0
#include "rules/language/RuleText.h"

#include "rules/format/RuleTests.h"
#include "rules/format/ValueWords.h"
#include "rules/language/Literals.h"
#include "rules/language/Printers.h"
#include "rules/model/Readme.h"

#include <algorithm>

namespace Quorvane::Rules {

namespace {

constexpr std::size_t hexBytesInLine = 32;

// One line of the language for each line of the README.
std::string s_readmeLines(std::string_view readme) {
    std::string text;
    do {
        auto const end = readme.find('\n');
        auto const length = end == std::string_view::npos ? readme.size() : end + 1;
        text += "readme " + quotedText(readme.substr(0, length)) + '\n';
        readme.remove_prefix(length);
    } while (!readme.empty());
    return text;
}

std::string s_versionText(RuleSet const& set) {
    if (!set.m_readme) {
        return "";
    }
    auto const version = set.version();
    auto const line = version ? "version " + std::to_string(*version) + '\n' : "";
    auto const isUsual = version && *set.m_readme == readmeText(*version);
    return isUsual ? line : line + s_readmeLines(*set.m_readme);
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
    auto text = s_versionText(set);
    auto const append = [&text](std::string const& part) {
        text += (text.empty() || part.empty() ? "" : "\n") + part;
    };
    append(set.m_elite ? eliteText(*set.m_elite) : "");
    append(treeText(set));
    return text;
}

} // namespace Quorvane::Rules
