// SPDX-License-Identifier: Apache-2.0
#include "rules/language/Builders.h"

namespace Quorvane::Rules {

namespace {

// False, and reported, when the text cannot be used.
bool s_check(Placed<Bytes> const& text, std::string const& problem, CompiledRules& compiled) {
    if (!problem.empty()) {
        compiled.m_errors.push_back({text.m_position, problem});
    }
    return problem.empty();
}

} // namespace

void buildName(NamingSyntax const& naming, RuleKey const& key, CompiledRules& compiled) {
    auto const& [name, sentence] = naming;
    auto& [set, names, places, errors] = compiled;
    if (!name) {
        if (sentence) {
            errors.push_back({sentence->m_position, "a sentence needs a name before it; add "
                                                    "\"name\" and a name in double quotes"});
        }
        return;
    }
    bool const isGood = s_check(*name, nameProblem(name->m_value), compiled);
    if ((sentence && !s_check(*sentence, sentenceProblem(sentence->m_value), compiled)) ||
        !isGood) {
        return;
    }
    auto const [place, isNew] = places.m_names.emplace(key, name->m_position);
    if (!isNew) {
        errors.push_back({name->m_position, keyWords(key) + " has a name already, in line " +
                                                std::to_string(place->second.m_line) +
                                                "; rules of one code share one name"});
    }
    names[key] = {name->m_value, sentence ? sentence->m_value : ""};
}

void buildNamesFile(RulesSyntax const& rules, CompiledRules& compiled) {
    auto& [set, names, places, errors] = compiled;
    if (!names.empty()) {
        set.m_names.m_content = namesText(names);
    }
    if (!rules.m_namesFile) {
        return;
    }
    places.m_namesFile = rules.m_namesFile->m_position;
    set.m_names.m_content = rules.m_namesFile->m_value;
    if (!names.empty()) {
        errors.push_back({places.m_namesFile, "names are given at the rules, too; drop the "
                                              "names-file lines, or those names"});
    }
}

} // namespace Quorvane::Rules
