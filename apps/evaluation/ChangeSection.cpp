// SPDX-License-Identifier: Apache-2.0
#include "apps/evaluation/Parts.h"
#include "apps/page/Escape.h"
#include "apps/text/NumberText.h"
#include "apps/workshop/DeciderText.h"

#include <algorithm>

namespace Quorvane::Reports {

namespace {

using Rules::ChangeGroup;

// Kinds of change that differ in the confidence or the adjustment alone: the same verdicts by the
// same rules. Most messages first.
struct Card {
    std::vector<ChangeGroup const*> m_variants;
    Rules::KindCounts m_counts;
};

// Cards with the same verdicts before and after.
struct Way {
    std::vector<Card> m_cards;
    Rules::KindCounts m_counts;
};

bool s_isSameWay(ChangeGroup const& a, ChangeGroup const& b) {
    return a.m_before.m_verdict == b.m_before.m_verdict &&
           a.m_after.m_verdict == b.m_after.m_verdict;
}

bool s_isSameCard(ChangeGroup const& a, ChangeGroup const& b) {
    return s_isSameWay(a, b) && a.m_before.m_decider == b.m_before.m_decider &&
           a.m_after.m_decider == b.m_after.m_decider;
}

template<typename Entry>
void s_sort(std::vector<Entry>& entries) {
    std::stable_sort(entries.begin(), entries.end(), [](Entry const& a, Entry const& b) {
        return a.m_counts.total() > b.m_counts.total();
    });
}

std::vector<Card> s_cards(std::vector<ChangeGroup> const& groups) {
    std::vector<Card> cards;
    for (auto const& group : groups) {
        auto card = std::find_if(cards.begin(), cards.end(), [&group](Card const& one) {
            return s_isSameCard(*one.m_variants.front(), group);
        });
        if (card == cards.end()) {
            card = cards.insert(cards.end(), Card{});
        }
        card->m_variants.push_back(&group);
        card->m_counts += group.m_counts;
    }
    s_sort(cards);
    return cards;
}

std::vector<Way> s_ways(std::vector<Card> const& cards) {
    std::vector<Way> ways;
    for (auto const& card : cards) {
        auto way = std::find_if(ways.begin(), ways.end(), [&card](Way const& one) {
            return s_isSameWay(*one.m_cards.front().m_variants.front(), *card.m_variants.front());
        });
        if (way == ways.end()) {
            way = ways.insert(ways.end(), Way{});
        }
        way->m_cards.push_back(card);
        way->m_counts += card.m_counts;
    }
    s_sort(ways);
    return ways;
}

// --- in words ---

std::string s_messages(std::uint64_t count) {
    return groupedText(count) + (count == 1 ? " message" : " messages");
}

// The tests that tell a rule from its neighbours stand last in its path.
std::string s_lastWords(Rules::RuleSet const& set, Rules::Decider const& decider) {
    constexpr std::size_t most = 2;
    auto const tests = Workshop::deciderTests(set, decider);
    std::string words;
    for (auto i = tests.size() - std::min(tests.size(), most); i < tests.size(); ++i) {
        words += (words.empty() ? "" : "; ") + tests[i].m_words;
    }
    return words;
}

std::string s_now(ChangeGroup const& group, Rules::RuleSet const& after) {
    if (group.m_after.m_decider.m_number == 0) {
        return "No rule decides any more.";
    }
    auto const words = s_lastWords(after, group.m_after.m_decider);
    return words.empty() ? "Now a rule without tests decides." : "Now what counts: " + words + ".";
}

// --- a card ---

std::string s_ruling(std::string const& when, Card const& card,
                     Rules::JudgedVector ChangeGroup::*judged, EvaluatedRules const& rules) {
    std::vector<std::string> rulings;
    for (auto const* const variant : card.m_variants) {
        auto const text = rulingText(variant->*judged, rules);
        if (std::find(rulings.begin(), rulings.end(), text) == rulings.end()) {
            rulings.push_back(text);
        }
    }
    std::string html = "<h4>" + when + "</h4>\n";
    for (auto const& text : rulings) {
        html += "<p>" + Page::text(text) + "</p>\n";
    }
    auto const& decider = (card.m_variants.front()->*judged).m_decider;
    return html + (decider.m_number == 0 ? "" : deciderTests(rules, decider));
}

// A sample opens: what its message has, in words and by name.
std::string s_sample(Rules::KnownSource const& sample) {
    std::string facts;
    for (auto const& fact : Workshop::vectorFacts(sample.m_vector)) {
        facts += "<li>" + Page::text(fact.m_words) + " <code>" + Page::text(fact.m_text) +
                 "</code></li>\n";
    }
    return std::string("<details><summary>") + Rules::mailKindName(sample.m_kind) + " <code>" +
           Page::isolated(sample.m_source) + "</code></summary>\n<ul>\n" + facts +
           "</ul>\n</details>\n";
}

std::string s_samples(Card const& card) {
    std::string samples;
    for (auto const* const variant : card.m_variants) {
        for (auto const& sample : variant->m_samples) {
            samples += s_sample(sample);
        }
    }
    return samples.empty() ? samples
                           : "<div class=\"samples\"><h4>For example</h4>\n" + samples + "</div>\n";
}

std::string s_item(Card const& card, ComparedSets const& sets) {
    auto const& first = *card.m_variants.front();
    auto const variants = card.m_variants.size();
    auto const name = [](Rules::JudgedVector const& judged, EvaluatedRules const& rules) {
        return judged.m_decider.m_number == 0
                   ? "no rule"
                   : Workshop::deciderText(rules.m_ruleNames, judged.m_decider);
    };
    auto const summary =
        "<strong>" + s_messages(card.m_counts.total()) + "</strong> " + kindsText(card.m_counts) +
        "<span class=\"words\">" + Page::text(s_now(first, sets.m_after.m_set)) +
        "</span><span class=\"muted\">" +
        Page::text(name(first.m_before, sets.m_before) + ", now " +
                   name(first.m_after, sets.m_after)) +
        (variants == 1 ? "" : "; " + std::to_string(variants) + " variants") + "</span>";
    return folded(summary,
                  sideBySide(s_ruling("Before", card, &ChangeGroup::m_before, sets.m_before),
                             s_ruling("After", card, &ChangeGroup::m_after, sets.m_after)) +
                      s_samples(card));
}

// The figures are of all cards, also of those after the first `most`.
std::string s_wayHtml(Way const& way, ComparedSets const& sets, std::size_t most, bool isOpen) {
    std::vector<std::string> items;
    for (std::size_t i = 0; i < std::min(way.m_cards.size(), most); ++i) {
        items.push_back(s_item(way.m_cards[i], sets));
    }
    return std::string("<details class=\"way\"") + (isOpen ? " open" : "") + "><summary><h3>" +
           s_messages(way.m_counts.total()) + ": " +
           changeWords(*way.m_cards.front().m_variants.front()) + "</h3> <span class=\"muted\">" +
           kindsText(way.m_counts) + "</span></summary>\n" +
           ruleList(items, way.m_cards.size() - items.size(), " kinds of change") + "</details>\n";
}

constexpr char filter[] =
    R"(<p class="filter scripted-only no-print"><input id="filter" type="search" placeholder="Filter: words, attribute, rule, file" aria-label="Filter the changes"> <span id="filtered" role="status" class="muted"></span></p>
)";

} // namespace

std::string changeSection(Rules::Difference const& difference, ComparedSets const& sets) {
    std::string ways;
    auto room = pageChanges;
    for (auto const& way : s_ways(s_cards(difference.m_groups))) {
        ways += s_wayHtml(way, sets, room, ways.empty());
        room -= std::min(room, way.m_cards.size());
    }
    return section("changes", "What changes, and by which rules",
                   ways.empty() ? emptyNote("No verdict changes.") : filter + ways);
}

} // namespace Quorvane::Reports
