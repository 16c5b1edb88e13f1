// SPDX-License-Identifier: Apache-2.0
//
// RuleStory: attributes and rules in words. Pure functions.
#pragma once

#include "adapter/DeepHeaderAdapter.h"
#include "apps/common/ScanHost.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Quorvane {

// "first_reverse_dynamic is yes", "is not yes" for a test other than 0; an index that is no
// attribute is shown as a number.
std::string testText(std::int32_t attribute, std::int32_t test, std::int32_t value);

// A number for people: four significant digits.
std::string numberText(double value);

struct AttributeLine {
    std::string m_name;
    std::string m_value; // in words
    std::string m_meaning;
};

// The attributes that differ from what they are before a scan.
std::vector<AttributeLine> tellAttributes(DeepHeaderAdapter::MsgProperties const& record);

// One line for each elite rule that fired: what it does, and its conditions.
std::vector<std::string> tellElite(DeepHeaderAdapter const& engine, ScanOutcome const& outcome,
                                   DeepHeaderSettings const& settings);

// One line for each node that the walk through the tree stood on, then why it ended there.
std::vector<std::string> tellPath(DeepHeaderAdapter const& engine, ScanOutcome const& outcome,
                                  DeepHeaderSettings const& settings);

} // namespace Quorvane
