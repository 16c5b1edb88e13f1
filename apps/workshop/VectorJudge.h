// SPDX-License-Identifier: Apache-2.0
//
// VectorJudge: an engine with one rule set, asked about attribute vectors instead of messages.
//
// Owns its engine; several with different rules can exist at once. Call it from any thread. A
// RuleError when no host can load the rules.
#pragma once

#include "DeepHeaderEngine.h"
#include "rules/evaluate/JudgedVector.h"
#include "rules/model/RuleSet.h"
#include "rules/vectors/VectorTable.h"

namespace Quorvane::Workshop {

class VectorJudge {
  public:
    VectorJudge(Rules::RuleSet const& rules, DeepHeaderSettings const& settings);

    // The verdict of a message with these attributes. The score is the highest spam threshold at
    // which it is still called spam; it holds for walks to the leaf, since a walk that may stop
    // early takes another way at another threshold.
    Rules::JudgedVector operator()(Rules::AttributeVector const& vector) const;

  private:
    DeepHeaderEngine m_engine;
    DeepHeaderSettings m_settings;
};

} // namespace Quorvane::Workshop
