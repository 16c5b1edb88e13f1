// SPDX-License-Identifier: Apache-2.0
#include "apps/evaluation/Parts.h"
#include "apps/text/NumberText.h"
#include "apps/text/Utf8.h"
#include "apps/workshop/DeciderText.h"
#include "rules/evaluate/FigureText.h"

#include <iomanip>
#include <sstream>

namespace Quorvane::Reports {

namespace {

using Rules::KindCounts;
using Rules::MailKind;

std::string s_messages(std::uint64_t count) {
    return groupedText(count) + (count == 1 ? " message" : " messages");
}

void s_addHead(std::ostream& text, Rules::Difference const& difference, ComparedSets const& sets) {
    text << toPrintable(sets.m_before.m_name) << " -> " << toPrintable(sets.m_after.m_name)
         << ": thresholds spam " << numberText(sets.m_before.m_settings.spamThreshold) << ", ham "
         << numberText(sets.m_before.m_settings.hamThreshold) << '\n'
         << s_messages(difference.m_messages.total()) << ": " << kindsText(difference.m_messages);
    if (difference.m_unjudged.total() != 0) {
        text << "; " << groupedText(difference.m_unjudged.total())
             << " more cannot be judged, whatever the rules";
    }
    text << "\n\n";
}

std::string s_arrow(std::uint64_t before, std::uint64_t after) {
    return before == after ? groupedText(before)
                           : groupedText(before) + " -> " + groupedText(after);
}

void s_addVerdicts(std::ostream& text, Rules::Difference const& difference) {
    constexpr int width = 22;
    text << std::left << std::setw(12) << "Verdicts" << std::setw(width) << "called spam"
         << std::setw(width) << "no verdict"
         << "called ham\n";
    for (auto const kind : Rules::mailKinds) {
        if (difference.m_messages.of(kind) == 0) {
            continue;
        }
        auto const& before = difference.m_before.of(kind);
        auto const& after = difference.m_after.of(kind);
        text << "  " << std::setw(10) << Rules::mailKindName(kind) << std::setw(width)
             << s_arrow(before.m_spam, after.m_spam) << std::setw(width)
             << s_arrow(before.m_none, after.m_none) << s_arrow(before.m_ham, after.m_ham) << '\n';
    }
    text << '\n';
}

// "Changed: 12 of 3,456 messages (0.35 %): 8 better, 3 worse, 1 unsorted".
void s_addSum(std::ostream& text, Rules::Difference const& difference) {
    auto const changed = difference.changed();
    Rules::Rate const rate{changed.total(), difference.m_messages.total()};
    text << "Changed: " << groupedText(rate.m_hits) << " of " << s_messages(rate.m_total) << " ("
         << Rules::percentText(rate.value()) << "): " << groupedText(difference.better())
         << " better, " << groupedText(difference.worse()) << " worse, "
         << groupedText(changed.of(MailKind::unsorted)) << " unsorted\n";
    std::map<std::string, KindCounts> byChange;
    for (auto const& group : difference.m_groups) {
        byChange[changeText(group, "->")] += group.m_counts;
    }
    for (auto const& [change, counts] : byChange) {
        text << "  " << std::setw(16) << change << kindsText(counts) << '\n';
    }
    text << '\n';
}

// Corpora side by side; the figures of a single one stand above already.
void s_addCorpora(std::ostream& text, std::vector<Rules::CorpusChanges> const& corpora) {
    if (corpora.size() < 2) {
        return;
    }
    text << "Changed, by corpus\n";
    for (auto const& corpus : corpora) {
        text << "  " << toPrintable(corpus.m_name) << ": " << groupedText(corpus.m_changed)
             << " of " << groupedText(corpus.m_messages) << '\n';
    }
    text << '\n';
}

void s_addRuling(std::ostream& text, char const* when, Rules::JudgedVector const& judged,
                 Rules::RuleSet const& set) {
    text << "  " << when << rulingText(judged) << '\n';
    for (auto const& test : Workshop::deciderTests(set, judged.m_decider)) {
        text << "            " << test.m_text << ": " << test.m_words << '\n';
    }
}

void s_addGroups(std::ostream& text, Rules::Difference const& difference,
                 ComparedSets const& sets) {
    std::size_t shown = 0;
    for (auto const& group : difference.m_groups) {
        if (shown++ == shownChanges) {
            text << "and " << difference.m_groups.size() - shownChanges
                 << " more kinds of change; --format json lists all\n\n";
            return;
        }
        text << changeText(group, "->") << ": " << kindsText(group.m_counts) << '\n';
        s_addRuling(text, "before: ", group.m_before, sets.m_before.m_set);
        s_addRuling(text, "after:  ", group.m_after, sets.m_after.m_set);
        for (auto const& sample : group.m_samples) {
            text << "  " << Rules::mailKindName(sample.m_kind) << ": "
                 << toPrintable(sample.m_source) << '\n';
        }
        text << '\n';
    }
}

void s_addConfidence(std::ostream& text, Rules::ConfidenceChanges const& changes) {
    text << "Same verdict, other confidence: " << s_messages(changes.m_up) << " up, "
         << groupedText(changes.m_down) << " down";
    if (changes.m_up + changes.m_down != 0) {
        text << ", by " << numberText(changes.mean()) << " on average, at most by "
             << signedText(changes.m_largest);
    }
    text << '\n';
    if (changes.m_nowDecided + changes.m_noLongerDecided != 0) {
        text << "No verdict, but a rule gives a confidence: " << s_messages(changes.m_nowDecided)
             << " now, " << groupedText(changes.m_noLongerDecided) << " no longer\n";
    }
}

} // namespace

std::string differenceText(Rules::Difference const& difference, ComparedSets const& sets) {
    std::ostringstream text;
    s_addHead(text, difference, sets);
    s_addVerdicts(text, difference);
    s_addSum(text, difference);
    s_addCorpora(text, difference.m_corpora);
    s_addGroups(text, difference, sets);
    s_addConfidence(text, difference.m_confidence);
    return text.str();
}

} // namespace Quorvane::Reports
