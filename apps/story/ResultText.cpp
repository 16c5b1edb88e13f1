// SPDX-License-Identifier: Apache-2.0
#include "apps/story/ResultText.h"

#include "apps/story/RuleNaming.h"
#include "apps/story/RuleStory.h"
#include "apps/story/VerdictStory.h"
#include "apps/text/NumberText.h"

#include <boost/algorithm/string/split.hpp>
#include <string_view>

namespace Quorvane {

namespace {

namespace Name = Rules::SentenceName;

std::string s_named(ScanRecord const& record, std::string_view name) {
    auto const names = sentenceNames(record);
    auto const found = names.find(name);
    return found == names.end() ? std::string() : found->second;
}

std::string_view s_colour(RecordedVerdict const& verdict) {
    if (verdict.isSpam) {
        return "\x1B[31m";
    }
    return verdict.isHam ? "\x1B[32m" : "\x1B[2m";
}

} // namespace

std::string verdictText(RecordedVerdict const& verdict) {
    std::string const name = verdictName(verdict);
    return verdict.node == 0 ? name : name + " " + probabilityText(verdict.confidence);
}

std::string inColourOf(RecordedVerdict const& verdict, std::string const& text) {
    return std::string(s_colour(verdict)) + text + "\x1B[0m";
}

std::string ruleText(RecordedVerdict const& verdict, Rules::RuleNames const& names) {
    return verdict.node == 0
               ? std::string()
               : std::to_string(verdict.node) + inBrackets(deciderName(names, verdict));
}

std::string relayAddress(ScanRecord const& record) {
    return s_named(record, Name::firstAddress);
}

std::string relayName(ScanRecord const& record) {
    auto const reverse = s_named(record, Name::firstReverse);
    return reverse.empty() ? s_named(record, Name::firstHelo) : reverse;
}

std::vector<std::string> judgedAddresses(RecordedVerdict const& verdict) {
    std::vector<std::string> addresses;
    if (!verdict.ips.empty()) {
        boost::algorithm::split(addresses, verdict.ips, [](char c) { return c == ','; });
    }
    return addresses;
}

} // namespace Quorvane
