// SPDX-License-Identifier: Apache-2.0
//
// Rules from texts, and engines with them.
#pragma once

#include "apps/workshop/VectorJudge.h"
#include "rules/adapt/Adapter.h"
#include "rules/language/Compiler.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace Quorvane::Testing {

inline DeepHeaderSettings judgingSettings() {
    DeepHeaderSettings settings;
    settings.spamThreshold = settings.hamThreshold = 0.95;
    return settings;
}

inline Rules::RuleSet rulesOf(std::string const& text) {
    auto const compiled = Rules::compileRules(text);
    EXPECT_TRUE(compiled.m_errors.empty()) << Rules::showErrors("test", text, compiled.m_errors);
    return compiled.m_set;
}

inline Rules::Judge judgeOf(Rules::RuleSet const& rules) {
    auto const judge = std::make_shared<Workshop::VectorJudge const>(rules, judgingSettings());
    return [judge](Rules::AttributeVector const& vector) { return (*judge)(vector); };
}

} // namespace Quorvane::Testing
