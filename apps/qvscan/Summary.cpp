// SPDX-License-Identifier: Apache-2.0
#include "apps/qvscan/Summary.h"

#include "apps/qvscan/Filter.h"
#include "apps/story/NamedJson.h"
#include "apps/story/OwnRelay.h"
#include "apps/story/ResultText.h"
#include "apps/story/RuleNaming.h"
#include "apps/story/VerdictStory.h"
#include "apps/text/NumberText.h"
#include "apps/text/Utf8.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

namespace Quorvane {

namespace {

using Json = nlohmann::ordered_json;

// Of each list.
constexpr std::size_t shownEntries = 5;
// An archive of millions of messages has millions of relays. Those that come after so many of them
// are counted only when they are known already.
constexpr std::size_t maxNames = 100'000;

template<typename Name>
void s_count(std::map<Name, std::uint64_t>& counts, Name const& name) {
    auto const found = counts.find(name);
    if (found != counts.end()) {
        ++found->second;
    } else if (name != Name() && counts.size() < maxNames) {
        counts.emplace(name, 1);
    }
}

// Those with the highest counts, and in the order of their names if these are equal.
template<typename Name>
std::vector<std::pair<Name, std::uint64_t>> s_top(std::map<Name, std::uint64_t> const& counts) {
    std::vector<std::pair<Name, std::uint64_t>> top(counts.begin(), counts.end());
    std::stable_sort(top.begin(), top.end(),
                     [](auto const& a, auto const& b) { return a.second > b.second; });
    top.resize(std::min(top.size(), shownEntries));
    return top;
}

std::uint64_t s_of(std::map<std::string, std::uint64_t> const& counts, std::string const& name) {
    auto const found = counts.find(name);
    return found == counts.end() ? 0 : found->second;
}

std::string s_messages(std::uint64_t count) {
    return groupedText(count) + (count == 1 ? " message" : " messages");
}

// "  1,234  what": a line of a list.
std::string s_line(std::uint64_t count, std::string const& what) {
    constexpr std::size_t width = 11;
    auto const number = groupedText(count);
    return std::string(width - std::min(width, number.size()), ' ') + number + "  " +
           toPrintable(what) + "\n";
}

std::string s_relayText(std::string const& address, std::string const& name) {
    return name.empty() ? address : address + " (" + name + ")";
}

std::string s_list(std::string const& title,
                   std::vector<std::pair<std::string, std::uint64_t>> const& top) {
    auto text = top.empty() ? std::string() : title + ":\n";
    for (auto const& [name, count] : top) {
        text += s_line(count, name);
    }
    return text;
}

Json s_json(std::vector<std::pair<std::string, std::uint64_t>> const& top, char const* key) {
    auto list = Json::array();
    for (auto const& [name, count] : top) {
        list.push_back({{key, toUtf8(name)}, {"messages", count}});
    }
    return list;
}

} // namespace

MessageFigures figuresOf(ScanRecord const& record, DeepHeaderSettings const& settings) {
    MessageFigures figures;
    figures.m_kind = resultKind(record);
    if (!record.isJudged()) {
        figures.m_whyNot = reasonText(record, settings);
    }
    figures.m_decision = record.verdict.decision;
    figures.m_node = record.verdict.node;
    figures.m_relay = relayAddress(record);
    figures.m_relayName = record.receivers.front().reverseName;
    figures.m_senderDomain = record.headerFrom.domain();
    figures.m_isByOwnRelay = possibleOwnRelay(record) != nullptr;
    return figures;
}

std::string failedLookupsText(Resolver::Counters const& lookups) {
    return lookups.m_failed + lookups.m_late == 0
               ? std::string()
               : "DNS: " + groupedText(lookups.m_failed) + " look-ups failed and " +
                     groupedText(lookups.m_late) +
                     " came too late; their names count as not existing\n";
}

Summary::Summary() : m_start(std::chrono::steady_clock::now()) {}

void Summary::add(MessageFigures const& figures) {
    ++m_messages;
    s_count(m_kinds, figures.m_kind);
    s_count(m_whyNot, figures.m_whyNot);
    if (figures.m_node != 0) {
        ++m_rules[{figures.m_decision, figures.m_node}];
    }
    m_byOwnRelay += figures.m_isByOwnRelay ? 1 : 0;
    if (figures.m_kind == "spam") {
        countSpam(figures);
    }
}

void Summary::countSpam(MessageFigures const& figures) {
    s_count(m_spamRelays, {figures.m_relay, figures.m_relayName});
    s_count(m_spamDomains, figures.m_senderDomain);
}

double Summary::seconds() const {
    std::chrono::duration<double> const passed = std::chrono::steady_clock::now() - m_start;
    return passed.count();
}

std::string Summary::text(Run const& run) const {
    auto text = s_messages(m_messages) + ": " + groupedText(s_of(m_kinds, "spam")) + " spam, " +
                groupedText(s_of(m_kinds, "ham")) + " ham, " + groupedText(s_of(m_kinds, "none")) +
                " without a verdict, " +
                groupedText(s_of(m_kinds, "unjudged") + s_of(m_kinds, "error")) + " not judged";
    text += m_problems == 0 ? "\n" : "; " + groupedText(m_problems) + " inputs left out\n";
    text += s_list("Not judged", s_top(m_whyNot));
    std::vector<std::pair<std::string, std::uint64_t>> rules;
    for (auto const& [rule, count] : s_top(m_rules)) {
        rules.emplace_back((rule.first == Decision::elite ? "rule " : "node ") +
                               std::to_string(rule.second) +
                               inBrackets(deciderName(run.m_names, rule.first, rule.second)),
                           count);
    }
    text += s_list("Decided by", rules);
    std::vector<std::pair<std::string, std::uint64_t>> relays;
    for (auto const& [relay, count] : s_top(m_spamRelays)) {
        auto const& [address, name] = relay;
        relays.emplace_back(s_relayText(address, name), count);
    }
    text += s_list("Spam by relay", relays);
    text += s_list("Spam by the domain of the sender", s_top(m_spamDomains));
    text += failedLookupsText(run.m_lookups);
    if (m_byOwnRelay != 0) {
        text += s_messages(m_byOwnRelay) +
                " came from a relay with the domain of the receiving host. If such relays are the "
                "site's own, they should not be judged: qvscan --find-relays proposes settings.\n";
    }
    if (run.m_ruleVersion) {
        text += "Rules of version " + std::to_string(*run.m_ruleVersion) + "; ";
    }
    auto const time = seconds();
    auto const rate = time > 0 ? static_cast<double>(m_messages) / time : 0.0;
    return text + numberText(time, 3) + " s, " +
           groupedText(static_cast<std::uint64_t>(std::llround(rate))) + " messages/s\n";
}

std::string Summary::json(Run const& run) const {
    auto verdicts = Json::object();
    for (auto const* const kind : {"spam", "ham", "none", "unjudged", "error"}) {
        verdicts[kind] = s_of(m_kinds, kind);
    }
    auto rules = Json::array();
    for (auto const& [rule, count] : s_top(m_rules)) {
        rules.push_back(named({{"node", rule.second}, {"messages", count}},
                              deciderName(run.m_names, rule.first, rule.second)));
    }
    auto relays = Json::array();
    for (auto const& [relay, count] : s_top(m_spamRelays)) {
        auto const& [address, name] = relay;
        relays.push_back({{"relay", address},
                          {"reverseName", name.empty() ? Json() : Json(toUtf8(name))},
                          {"messages", count}});
    }
    Json const summary = {
        {"messages", m_messages},
        {"verdicts", verdicts},
        {"notJudged", s_json(s_top(m_whyNot), "reason")},
        {"leftOut", m_problems},
        {"rules", rules},
        {"spamRelays", relays},
        {"spamDomains", s_json(s_top(m_spamDomains), "domain")},
        {"byOwnRelay", m_byOwnRelay},
        {"lookups", {{"failed", run.m_lookups.m_failed}, {"late", run.m_lookups.m_late}}},
        {"ruleVersion", run.m_ruleVersion ? Json(*run.m_ruleVersion) : Json()},
        {"seconds", seconds()},
    };
    return Json({{"summary", summary}}).dump() + "\n";
}

} // namespace Quorvane
