// SPDX-License-Identifier: Apache-2.0
//
// What the rules of an engine look at.
#pragma once

#include <cstdint>
#include <vector>

namespace Quorvane {

class DeepHeaderAdapter;

// The attributes that elite rules, or tree nodes that a walk can reach, test; in their order.
std::vector<std::int32_t> testedAttributes(DeepHeaderAdapter const& engine);

} // namespace Quorvane
