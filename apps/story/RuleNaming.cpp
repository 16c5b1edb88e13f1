// SPDX-License-Identifier: Apache-2.0
#include "apps/story/RuleNaming.h"

#include "rules/format/RuleFiles.h"

namespace Quorvane {

namespace {

using Kind = Rules::RuleKey::Kind;

Rules::RuleName const* s_find(Rules::RuleNames const& names, Rules::RuleKey const& key) {
    auto const found = names.find(key);
    return found == names.end() ? nullptr : &found->second;
}

} // namespace

Rules::RuleName const* eliteRuleName(Rules::RuleNames const& names, std::int32_t type,
                                     std::int32_t code) {
    switch (type) {
    case EliteType::deciding:
        return s_find(names, {Kind::decide, code});
    case EliteType::adjusting:
        return s_find(names, {Kind::adjust, code});
    default:
        return nullptr;
    }
}

Rules::RuleName const* treeNodeName(Rules::RuleNames const& names, std::int32_t number) {
    return s_find(names, {Kind::node, number});
}

Rules::RuleName const* deciderName(Rules::RuleNames const& names, Decision decision,
                                   std::int32_t number) {
    if (number == 0) {
        return nullptr; // nothing decided
    }
    switch (decision) {
    case Decision::elite:
        return eliteRuleName(names, EliteType::deciding, number);
    case Decision::tree:
        return treeNodeName(names, number);
    default:
        return nullptr;
    }
}

std::string inBrackets(Rules::RuleName const* name) {
    return name == nullptr ? std::string() : " (" + name->m_name + ")";
}

std::string nameText(Rules::RuleName const* name) {
    return name == nullptr ? std::string() : name->m_name;
}

std::string nameAndSentence(Rules::RuleName const* name) {
    bool const isAlone = name == nullptr || name->m_sentence.empty();
    return isAlone ? nameText(name) : name->m_name + ": " + name->m_sentence;
}

} // namespace Quorvane
