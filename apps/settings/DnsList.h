// SPDX-License-Identifier: Apache-2.0
//
// DnsList: a list of relays that is asked by DNS (RFC 5782), and what its answers mean. A plain
// value.
#pragma once

#include "apps/settings/SettingValue.h"

#include <string>
#include <vector>

namespace Quorvane {

struct DnsList {
    std::string m_zone; // as in "list.example"
    // Scores of answers, which are addresses in 127.0.0.0/8 (RFC 5782 section 2.1); the longest
    // prefix wins. Other answers say nothing.
    std::vector<ReputationTable::Entry> m_answers;
};

// "list.example 127.0.0.2=0 127.0.10.0/24=8".
void readSetting(std::string const& text, DnsList& field);
SettingTexts settingTexts(DnsList const& value);

} // namespace Quorvane
