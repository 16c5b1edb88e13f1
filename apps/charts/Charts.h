// SPDX-License-Identifier: Apache-2.0
//
// The charts of an evaluation, each as an SVG element. Pure functions.
#pragma once

#include "apps/charts/Axes.h"
#include "rules/evaluate/Evaluation.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Quorvane::Charts {

// charts.css: a page with charts adds it to its theme.
std::string_view style();

// Points of a ROC curve, each with the interval of the spam that it catches.
struct RocMarks {
    // Shares of ham called spam at which the caught spam is shown, on a logarithmic scale.
    std::vector<double> m_falsePositives;
    // What the thresholds in force give.
    Rules::Rate m_hamCalledSpam;
    Rules::Rate m_spamCalledSpam;
    std::string m_name; // of that point
};

// How much spam is caught for how much ham called spam; both must be there. With `kind` linear the
// curve is the one whose area is measured: thresholds joined by straight lines, dashed where the
// only messages left are those that no rule decides. With `kind` logarithmic it is a staircase:
// what is caught with at most that much ham called spam. There, the part of the axis that stands
// for less than one ham message is shaded.
std::string rocChart(Caption const& caption, Rules::RocCurve const& curve, RocMarks const& marks,
                     Scale::Kind kind);

struct NamedRate {
    std::string m_name; // any bytes
    Rules::Rate m_rate; // of no messages: the chart says so
};

// One rate for each of several corpora: a row each, with name and rate above a dot and the whisker
// of the interval. On a linear scale a bar leads to the dot. `colour` is "spam", "ham" or "accent".
std::string rateChart(Caption const& caption, std::vector<NamedRate> const& rates, Scale::Kind kind,
                      std::string_view colour);

// The actual share of spam for each tenth of the confidence that has messages, as a dot with its
// interval; correct confidences give dots on the diagonal. Below them the numbers of messages.
std::string reliabilityChart(Caption const& caption, Rules::CorpusFigures const& figures);

struct NamedVerdicts {
    std::string m_name; // "Spam"
    Rules::VerdictCounts m_counts;
};

// A bar each: called spam, no verdict, called ham. No verdict has a colour of its own: it is
// neither right nor wrong.
std::string verdictChart(Caption const& caption, std::vector<NamedVerdicts> const& rows);

// The messages that a rule was used for, as a bar within a list, spam before ham; `most` messages,
// at least 1, fill it. The numbers stand beside it, so it is hidden from screen readers.
std::string deciderBar(Rules::LabelCounts const& counts, std::uint64_t most);

} // namespace Quorvane::Charts
