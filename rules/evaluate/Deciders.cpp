// SPDX-License-Identifier: Apache-2.0
#include "rules/evaluate/Deciders.h"

#include <algorithm>

namespace Quorvane::Rules {

namespace {

LabelCounts s_wrong(Verdict verdict, LabelCounts const& counts) {
    switch (verdict) {
    case Verdict::spam:
        return {0, counts.m_ham};
    case Verdict::ham:
        return {counts.m_spam, 0};
    case Verdict::none:
        break;
    }
    return {};
}

// Those with the most messages first.
std::vector<DeciderFigures> s_sorted(std::map<Decider, DeciderFigures> const& figures,
                                     LabelCounts DeciderFigures::*counts) {
    std::vector<DeciderFigures> sorted;
    sorted.reserve(figures.size());
    for (auto const& [decider, one] : figures) {
        sorted.push_back(one);
    }
    std::stable_sort(sorted.begin(), sorted.end(), [counts](auto const& a, auto const& b) {
        return (a.*counts).total() > (b.*counts).total();
    });
    return sorted;
}

} // namespace

void Deciders::add(JudgedVector const& judged, LabelCounts const& counts,
                   std::vector<std::string> const& wrongSources) {
    if (judged.m_decider.m_number == 0) {
        return;
    }
    auto& figures = m_figures[judged.m_decider];
    figures.m_decider = judged.m_decider;
    figures.m_confidence = judged.m_confidence;
    figures.m_support = judged.m_support;
    figures.m_reached += counts;
    figures.m_wrong += s_wrong(judged.m_verdict, counts);
    for (auto const& source : wrongSources) {
        if (figures.m_samples.size() < maxSamples) {
            figures.m_samples.push_back(source);
        }
    }
}

std::vector<DeciderFigures> Deciders::byUse() const {
    return s_sorted(m_figures, &DeciderFigures::m_reached);
}

std::vector<DeciderFigures> Deciders::byErrors() const {
    auto sorted = s_sorted(m_figures, &DeciderFigures::m_wrong);
    std::erase_if(sorted, [](auto const& one) { return one.m_wrong.total() == 0; });
    return sorted;
}

} // namespace Quorvane::Rules
