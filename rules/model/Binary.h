// SPDX-License-Identifier: Apache-2.0
//
// The two binary rule files to and from memory. Reading cuts a file into records exactly where the
// loader does and keeps every byte, so writing what was read gives the same bytes. Nothing is
// rejected here: rules/check reports whether a set can be loaded.
#pragma once

#include "rules/model/RuleSet.h"

#include <string_view>

namespace Quorvane::Rules {

// Fills m_nodes and m_treeTail of `set` from the bytes of qv.dt.
void readTree(std::string_view bytes, RuleSet& set);
Bytes writeTree(RuleSet const& set);

EliteFile readElite(std::string_view bytes);
Bytes writeElite(EliteFile const& elite);

} // namespace Quorvane::Rules
