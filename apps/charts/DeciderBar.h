// SPDX-License-Identifier: Apache-2.0
//
// How many messages a rule was there for, as a bar within a list. Pure.
#pragma once

#include "rules/vectors/VectorTable.h"

#include <cstdint>
#include <string>

namespace Quorvane::Charts {

// An SVG element, spam before ham; `most` messages, at least 1, fill it. The numbers stand beside
// it, so screen readers pass it by.
std::string deciderBar(Rules::LabelCounts const& counts, std::uint64_t most);

} // namespace Quorvane::Charts
