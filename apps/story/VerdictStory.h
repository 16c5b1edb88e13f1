// SPDX-License-Identifier: Apache-2.0
//
// Why a message got its verdict, in one sentence, and what another verdict would have needed. Pure
// functions over the record of a scan and the settings that it was made with.
#pragma once

#include "platform/DeepHeaderSettings.h"
#include "rules/model/RuleNames.h"
#include "ScanRecord.h"

#include <string>
#include <vector>

namespace Quorvane {

// "spam", "ham" or "none".
char const* verdictName(RecordedVerdict const& verdict);
char const* verdictName(Alternative const& alternative);

// One sentence without a full stop: "the newest hop came by IPv6", "no public address", "no rule
// decided", "thresholds switch the tree off", "0.99 spam reaches the threshold 0.95".
std::string reasonText(ScanRecord const& record, DeepHeaderSettings const& settings);

// One way to another verdict.
struct Requirement {
    std::string m_verdict; // "spam", "ham", "none", or "any" when the message was not judged
    std::string m_text;
    std::vector<std::string> m_words; // the same changes as sentences, one each
};

// When the scan did not reach the rules: what the host could change so that it does. What depends
// on attributes requires RecordDepth::alternatives.
std::vector<Requirement> requirements(ScanRecord const& record, DeepHeaderSettings const& settings,
                                      Rules::RuleNames const& names);

// Of a verdict of spam: that nothing but several changes at once would have led to another one, or
// that this is not known; one sentence without a full stop. Empty when `requirements` lists all
// single changes, and for other verdicts.
std::string singleChangeNote(ScanRecord const& record);

} // namespace Quorvane
