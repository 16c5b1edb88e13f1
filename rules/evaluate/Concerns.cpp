// SPDX-License-Identifier: Apache-2.0
#include "rules/evaluate/Concerns.h"

#include "rules/evaluate/FigureText.h"

#include <algorithm>

namespace Quorvane::Rules {

namespace {

bool s_hasBothKinds(CorpusFigures const& figures) {
    auto const total = figures.judged();
    return total.m_spam != 0 && total.m_ham != 0;
}

// Messages times the distance of their mean confidence from the interval.
double s_distance(ReliabilityBin const& bin) {
    auto const interval = wilsonInterval(bin.spamRate());
    auto const mean = bin.meanConfidence();
    auto const distance = std::max({0.0, interval.m_low - mean, mean - interval.m_high});
    return distance * static_cast<double>(bin.m_counts.total());
}

std::string s_calibrationText(CorpusFigures const& figures, double gap) {
    auto const& worst =
        *std::max_element(figures.m_reliability.begin(), figures.m_reliability.end(),
                          [](ReliabilityBin const& a, ReliabilityBin const& b) {
                              return s_distance(a) < s_distance(b);
                          });
    return "Confidences are far off the actual share of spam: by " + fixedText(gap, 2) +
           " on average, beyond what chance explains. Most of all, a confidence of " +
           fixedText(worst.meanConfidence(), 3) + " means " +
           percentText(worst.spamRate().value()) + " spam here.";
}

} // namespace

bool isBelowGuessing(CorpusFigures const& figures) {
    return s_hasBothKinds(figures) && figures.m_roc.area() < 0.5;
}

double calibrationGap(CorpusFigures const& figures) {
    if (!s_hasBothKinds(figures)) {
        return 0.0;
    }
    double sum = 0.0;
    std::uint64_t messages = 0;
    for (auto const& bin : figures.m_reliability) {
        sum += s_distance(bin);
        messages += bin.m_counts.total();
    }
    return messages == 0 ? 0.0 : sum / static_cast<double>(messages);
}

std::vector<std::string> concerns(CorpusFigures const& figures) {
    std::vector<std::string> found;
    if (isBelowGuessing(figures)) {
        found.push_back("The ROC area " + fixedText(figures.m_roc.area(), 4) +
                        " is below 0.5: the rules put ham above spam more often than spam above "
                        "ham.");
    }
    if (auto const gap = calibrationGap(figures); gap >= farOffGap) {
        found.push_back(s_calibrationText(figures, gap));
    }
    return found;
}

} // namespace Quorvane::Rules
