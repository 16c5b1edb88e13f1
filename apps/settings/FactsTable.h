// SPDX-License-Identifier: Apache-2.0
//
// The one table of what a host can know about a message besides its text: the name of each fact
// behind "--" on the command line and in the files of rule tests, and how its text is read. Plain
// functions without state.
#pragma once

#include "apps/settings/MessageFacts.h"

#include <span>
#include <string>
#include <string_view>

namespace Quorvane {

struct FactKey {
    std::string_view m_name;
    std::string_view m_valueName;
    std::string_view m_help;
    // Throws a SettingsError. A text without an address leaves the address null, as an empty
    // envelope sender is.
    void (*m_assign)(MessageFacts& facts, std::string const& text);
};

// In the order of the help.
std::span<FactKey const> factKeys();
// Null when there is none.
FactKey const* findFact(std::string_view name);

} // namespace Quorvane
