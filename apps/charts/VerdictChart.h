// SPDX-License-Identifier: Apache-2.0
//
// What became of spam and of ham: called spam, no verdict, called ham. Pure.
#pragma once

#include "apps/charts/Drawing.h"
#include "rules/evaluate/Evaluation.h"

#include <string>

namespace Quorvane::Charts {

// An SVG element with a bar for the spam and one for the ham of a corpus. No verdict is a colour of
// its own: it is neither right nor wrong.
std::string verdictChart(Caption const& caption, Rules::CorpusFigures const& figures);

} // namespace Quorvane::Charts
