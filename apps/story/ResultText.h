// SPDX-License-Identifier: Apache-2.0
//
// What lists and titles say of one result. Pure functions. Texts are empty where there is nothing
// to say, and hold names of the message unchanged: convert them with toPrintable before showing
// them.
#pragma once

#include "rules/model/RuleNames.h"
#include "ScanRecord.h"

#include <string>
#include <vector>

namespace Quorvane {

// "spam 99.9 %", with the probability of spam that the deciding rule gives; "none" when none
// decided.
std::string verdictText(RecordedVerdict const& verdict);

// `text` in the colour of the verdict, with the escape sequences of terminals (ECMA-48).
std::string inColourOf(RecordedVerdict const& verdict, std::string const& text);

// "9001 (A consumer line)": what decided.
std::string ruleText(RecordedVerdict const& verdict, Rules::RuleNames const& names);

// Of the newest public relay: its address, and its reverse name or else the name that it announced.
std::string relayAddress(ScanRecord const& record);
std::string relayName(ScanRecord const& record);

// The addresses that it is about, the newest first.
std::vector<std::string> judgedAddresses(RecordedVerdict const& verdict);

} // namespace Quorvane
