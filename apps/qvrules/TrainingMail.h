// SPDX-License-Identifier: Apache-2.0
//
// Gathers everything that a learn command names into one table: messages, scanned, and tables of
// vectors from elsewhere.
#pragma once

#include "apps/qvrules/Learn.h"
#include "apps/workshop/ProgressLine.h"
#include "rules/learn/VectorTable.h"

#include <cstdint>

namespace Quorvane::RulesApp {

struct TrainingMailCounts {
    std::uint64_t m_messages = 0;     // scanned, copies not counted
    std::uint64_t m_notJudgeable = 0; // no public hop, so no vector
    std::uint64_t m_copies = 0;       // rewritten messages that were added
};

// A RuleError for an input that cannot be read.
Rules::VectorTable readTrainingMail(LearnArguments const& arguments,
                                    Workshop::ProgressLine& progress, TrainingMailCounts& counts);

} // namespace Quorvane::RulesApp
