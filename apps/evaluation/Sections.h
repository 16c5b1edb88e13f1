// SPDX-License-Identifier: Apache-2.0
//
// The sections of the evaluation page, each as HTML. Pure functions.
#pragma once

#include "apps/evaluation/Report.h"

#include <string>

namespace Quorvane::Reports {

// All corpora beside one another.
std::string comparisonSection(Rules::Evaluation const& evaluation);

// One corpus, or all together: what the thresholds give, ROC curves, reliability. `id` is its
// anchor on the page.
std::string corpusSection(Rules::CorpusFigures const& figures, std::string const& id,
                          EvaluatedRules const& rules);

// How much spam is caught for how much ham called spam: curves and tables within a corpus.
std::string rocBlock(Rules::CorpusFigures const& figures, std::string const& id,
                     EvaluatedRules const& rules);

// What decides most and what errs most.
std::string deciderSection(Rules::Evaluation const& evaluation, EvaluatedRules const& rules);

} // namespace Quorvane::Reports
