// SPDX-License-Identifier: Apache-2.0
//
// Alternatives: the fewest attributes that would have had to differ for another verdict. Each is
// tried on the engine. Pure; safe to call from many threads.
#pragma once

#include "adapter/DeepHeaderAdapter.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

namespace Quorvane {

struct Alternative {
    bool m_isSpam = false; // else ham
    int m_node = 0;        // what would decide
    // Attribute index and the value it would need.
    std::map<std::size_t, std::int32_t> m_changes;
};

// More changes than this are another message.
inline constexpr std::size_t maxChanges = 3;

// The best one for spam and the best one for ham, as far as there is one and `record` does not have
// that verdict already.
std::vector<Alternative> findAlternatives(RefDeepHeaderAdapter const& engine,
                                          DeepHeaderSettings const& settings,
                                          DeepHeaderAdapter::MsgProperties const& record);

} // namespace Quorvane
