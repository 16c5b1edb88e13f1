// SPDX-License-Identifier: Apache-2.0
//
// The page about the 38 attributes for people who write rules, made from the attribute table.
#pragma once

#include <string>

namespace Quorvane::Rules {

// Markdown; docs/attributes.md is this text.
std::string attributePage();

} // namespace Quorvane::Rules
