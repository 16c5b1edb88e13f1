// SPDX-License-Identifier: Apache-2.0
//
// What a case of rule tests expects. Errors are SettingsErrors with file, line and column.
#pragma once

#include "apps/settings/Toml.h"
#include "apps/workshop/CaseFile.h"

#include <array>
#include <string>
#include <string_view>

namespace Quorvane::Workshop {

inline constexpr std::array<std::string_view, 4> expectationKeys{"verdict", "node", "confidence",
                                                                 "reasons"};

// Reads one of these keys; false when `name` is none of them.
bool readExpectation(std::string_view name, toml::node const& node, std::string const& path,
                     CaseExpectation& expected);

// For all keys of a case: an error at a value, and a value that must be a text.
[[noreturn]] void failCase(std::string const& path, toml::node const& node,
                           std::string const& what);
std::string caseText(std::string const& path, std::string_view name, toml::node const& node);

} // namespace Quorvane::Workshop
