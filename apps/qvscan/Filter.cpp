// SPDX-License-Identifier: Apache-2.0
#include "apps/qvscan/Filter.h"

#include "apps/commandline/ProgramError.h"
#include "apps/commandline/ValueNames.h"
#include "apps/headers/ReceivedDate.h"
#include "apps/settings/SettingValue.h"
#include "rules/language/Nearest.h"

#include <boost/algorithm/string/split.hpp>
#include <limits>

namespace Quorvane {

namespace {

constexpr OptionRow onlyRow{"only", "spam|ham|none|unjudged|error",
                            "write these results only; several with commas between them",
                            Takes::repeatable | Takes::anyText};
constexpr OptionRow ruleRow{"rule", "N", "write what this tree node or elite rule decided",
                            Takes::repeatable | Takes::anyText};
constexpr OptionRow sinceRow{"since", "DATE", "judge what was received at this time or later",
                             Takes::anyText};
constexpr OptionRow untilRow{"until", "DATE", "judge what was received at this time or earlier",
                             Takes::anyText};

std::set<std::string> s_kinds(CommandLine const& line) {
    auto const known = literalsOf(onlyRow.m_valueName);
    std::set<std::string> kinds;
    for (auto const& list : line.texts(onlyRow.m_name)) {
        std::vector<std::string> words;
        boost::algorithm::split(words, list, [](char c) { return c == ','; });
        for (auto const& word : words) {
            if (std::find(known.begin(), known.end(), word) == known.end()) {
                throw UsageError("--only: \"" + word + "\" is not one of " +
                                 std::string(onlyRow.m_valueName) +
                                 Rules::didYouMean(word, {known.begin(), known.end()}));
            }
            kinds.insert(word);
        }
    }
    return kinds;
}

std::set<std::int32_t> s_rules(CommandLine const& line) {
    std::set<std::int32_t> rules;
    for (auto const& text : line.texts(ruleRow.m_name)) {
        std::int32_t number = 0;
        try {
            readSetting(text, number);
        } catch (SettingsError const& error) {
            throw UsageError("--rule: " + std::string(error.what()));
        }
        rules.insert(number);
    }
    return rules;
}

std::optional<NamedTime> s_time(CommandLine const& line, OptionRow const& row) {
    if (!line.has(row.m_name)) {
        return std::nullopt;
    }
    auto const text = line.text(row.m_name);
    auto const time = namedTime(text);
    if (!time) {
        throw UsageError(row.dashed() + ": \"" + text +
                         "\" is not a date; write it as in 2026-11-20 or 2026-11-20T15:30");
    }
    return time;
}

} // namespace

std::string resultKind(ScanRecord const& record) {
    if (record.failure) {
        return "error";
    }
    if (!record.isJudged()) {
        return "unjudged";
    }
    return record.verdict.isSpam ? "spam" : record.verdict.isHam ? "ham" : "none";
}

std::vector<OptionRow> filterRows() {
    return {onlyRow, ruleRow, sinceRow, untilRow};
}

Filter::Filter(CommandLine const& line) : m_kinds(s_kinds(line)), m_rules(s_rules(line)) {
    if (auto const since = s_time(line, sinceRow)) {
        m_since = since->m_first;
    }
    if (auto const until = s_time(line, untilRow)) {
        m_end = until->m_after;
    }
    if (m_since && m_end && *m_since >= *m_end) {
        throw UsageError("--since names a later time than --until");
    }
}

bool Filter::isInPeriod(HeaderContainer const& headers) const {
    if (!m_since && !m_end) {
        return true;
    }
    auto const date = receivedDate(headers);
    return date && (!m_since || *date >= *m_since) && (!m_end || *date < *m_end);
}

bool Filter::letsThrough(ScanRecord const& record) const {
    return (m_kinds.empty() || m_kinds.contains(resultKind(record))) &&
           (m_rules.empty() || m_rules.contains(record.verdict.node));
}

} // namespace Quorvane
