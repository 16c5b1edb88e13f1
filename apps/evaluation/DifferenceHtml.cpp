// SPDX-License-Identifier: Apache-2.0
#include "apps/charts/Charts.h"
#include "apps/evaluation/Parts.h"
#include "apps/page/Escape.h"
#include "apps/page/Page.h"
#include "apps/page/Table.h"
#include "apps/text/NumberText.h"

#include <algorithm>

namespace Quorvane::Reports {

namespace {

using Rules::MailKind;

constexpr char arrow[] = "\xE2\x86\x92";

std::string s_header(Rules::Difference const& difference, ComparedSets const& sets) {
    auto const changed = difference.changed();
    auto const& confidence = difference.m_confidence;
    return "<header class=\"top\">\n<p class=\"kicker\">Quorvane Deep Header: comparison</p>\n"
           "<h1>What changes from " +
           Page::isolated(sets.m_before.m_name) + " to " + Page::isolated(sets.m_after.m_name) +
           "</h1>\n<p>Judged: " + kindsText(difference.m_messages) +
           ". Not judgeable: " + kindsText(difference.m_unjudged) + ". Thresholds of both: spam " +
           numberText(sets.m_before.m_settings.spamThreshold) + ", ham " +
           numberText(sets.m_before.m_settings.hamThreshold) + ".</p>\n<dl class=\"tiles\">\n" +
           rateTile("Verdict changes", {changed.total(), difference.m_messages.total()}) +
           tile("For the better", groupedText(difference.better()), "verdicts towards the label") +
           tile("For the worse", groupedText(difference.worse()), "verdicts away from it") +
           tile("Unsorted", groupedText(changed.of(MailKind::unsorted)), "changes of such mail") +
           tile("Same verdict", groupedText(confidence.m_up + confidence.m_down),
                "with another confidence, by " + numberText(confidence.mean()) + " on average") +
           "</dl>\n</header>\n";
}

std::string s_verdictSection(Rules::Difference const& difference) {
    Page::Table table(
        "Verdicts before and after",
        {{"Mail"}, {"Called spam", true}, {"No verdict", true}, {"Called ham", true}});
    std::vector<Charts::NamedVerdicts> rows;
    for (auto const kind : Rules::mailKinds) {
        if (difference.m_messages.of(kind) != 0) {
            std::string const name = Rules::mailKindName(kind);
            rows.push_back({name + " before", difference.m_before.of(kind)});
            rows.push_back({name + " after", difference.m_after.of(kind)});
        }
    }
    for (auto const& [name, counts] : rows) {
        table.row({name, groupedText(counts.m_spam), groupedText(counts.m_none),
                   groupedText(counts.m_ham)});
    }
    auto const content =
        rows.empty()
            ? emptyNote("No message can be judged.")
            : sideBySide(figure("Verdicts.", "No verdict is neither right nor wrong.",
                                Charts::verdictChart({"verdict-chart", "Verdicts before and after",
                                                      "The table beside it holds the figures."},
                                                     rows)),
                         table.html());
    return section("verdicts", "Verdicts before and after", content);
}

struct Way {
    Rules::KindCounts m_counts;
    std::uint64_t m_better = 0;
    std::uint64_t m_worse = 0;
};

std::string s_wayTable(Rules::Difference const& difference) {
    std::map<std::string, Way> ways;
    for (auto const& group : difference.m_groups) {
        auto& way = ways[changeText(group, arrow)];
        way.m_counts += group.m_counts;
        for (auto const kind : Rules::mailKinds) {
            auto const gain = improvement(kind, group.m_before.m_verdict, group.m_after.m_verdict);
            way.m_better += gain > 0 ? group.m_counts.of(kind) : 0;
            way.m_worse += gain < 0 ? group.m_counts.of(kind) : 0;
        }
    }
    Page::Table table("Changes by kind", {{"Verdict"},
                                          {"Spam", true},
                                          {"Ham", true},
                                          {"Unsorted", true},
                                          {"Better", true},
                                          {"Worse", true}});
    for (auto const& [name, way] : ways) {
        table.row({name, groupedText(way.m_counts.of(MailKind::spam)),
                   groupedText(way.m_counts.of(MailKind::ham)),
                   groupedText(way.m_counts.of(MailKind::unsorted)), groupedText(way.m_better),
                   groupedText(way.m_worse)});
    }
    return table.html();
}

std::string s_corpusTable(std::vector<Rules::CorpusChanges> const& corpora) {
    Page::Table table("Changes by corpus",
                      {{"Corpus"}, {"Changed", true}, {"of", true}, {"Share", true}});
    for (auto const& corpus : corpora) {
        Rules::Rate const rate{corpus.m_changed, corpus.m_messages};
        table.row({Page::isolated(corpus.m_name), groupedText(rate.m_hits),
                   groupedText(rate.m_total), shareText(rate)});
    }
    return table.html();
}

std::string s_sumSection(Rules::Difference const& difference) {
    if (difference.m_groups.empty()) {
        return {};
    }
    return section("ways", "Where, and which way",
                   sideBySide(s_corpusTable(difference.m_corpora), s_wayTable(difference)));
}

std::string s_confidenceSection(Rules::ConfidenceChanges const& changes) {
    Page::Table table("Messages whose verdict stays", {{"Confidence"}, {"Messages", true}});
    table.row({"now higher", groupedText(changes.m_up)});
    table.row({"now lower", groupedText(changes.m_down)});
    table.row({"now given by a rule, before by none", groupedText(changes.m_nowDecided)});
    table.row({"no longer given by a rule", groupedText(changes.m_noLongerDecided)});
    return section("confidence", "Same verdict, other confidence",
                   "<p>On average by " + numberText(changes.mean()) + ", at most by " +
                       signedText(changes.m_largest) + ".</p>\n" + table.html());
}

std::string s_ruling(std::string const& when, Rules::JudgedVector const& judged,
                     Rules::RuleSet const& set) {
    return "<p class=\"decider\">" + when + ": " + Page::text(rulingText(judged)) + "</p>\n" +
           (judged.m_decider.m_number == 0 ? "" : deciderTests(set, judged.m_decider));
}

std::string s_item(Rules::ChangeGroup const& group, ComparedSets const& sets) {
    std::vector<std::string> samples;
    for (auto const& sample : group.m_samples) {
        samples.push_back(std::string(Rules::mailKindName(sample.m_kind)) + " <code>" +
                          Page::isolated(sample.m_source) + "</code>");
    }
    return "<p class=\"decider\"><strong>" + changeText(group, arrow) + "</strong> " +
           kindsText(group.m_counts) + "</p>\n" +
           sideBySide(s_ruling("Before", group.m_before, sets.m_before.m_set),
                      s_ruling("After", group.m_after, sets.m_after.m_set)) +
           sampleList("For example:", samples);
}

// Each kind of change with the rules before and after it, most messages first.
std::string s_groupSection(Rules::Difference const& difference, ComparedSets const& sets) {
    auto const& groups = difference.m_groups;
    std::vector<std::string> items;
    for (std::size_t i = 0; i < std::min(groups.size(), pageChanges); ++i) {
        items.push_back(s_item(groups[i], sets));
    }
    return section("changes", "What changes, and by which rules",
                   items.empty()
                       ? emptyNote("No verdict changes.")
                       : ruleList(items, groups.size() - items.size(), " kinds of change"));
}

} // namespace

std::string differenceHtml(Rules::Difference const& difference, ComparedSets const& sets) {
    Page::Document document;
    document.m_title = "From " + sets.m_before.m_name + " to " + sets.m_after.m_name;
    document.m_style = std::string(Charts::style()) + std::string(pageStyle());
    document.m_body = s_header(difference, sets) + "<main>\n" + s_verdictSection(difference) +
                      s_sumSection(difference) + s_groupSection(difference, sets) +
                      s_confidenceSection(difference.m_confidence) +
                      "</main>\n<footer class=\"end\"></footer>\n";
    return Page::html(document);
}

} // namespace Quorvane::Reports
