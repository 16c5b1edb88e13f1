// SPDX-License-Identifier: Apache-2.0
//
// Compares what an engine and the second opinion (PlainRules.h) say of a vector.
#pragma once

#include "DeepHeaderEngine.h"
#include "include2/DeepHeaderException.h"
#include "support/PlainRules.h"

#include <bit>
#include <cstdint>
#include <optional>
#include <sstream>
#include <string>

namespace Quorvane::Testing {

// Empty when the tree cannot be loaded.
inline std::optional<DeepHeaderEngine> engineOf(std::string const& tree, std::string const& elite) {
    std::istringstream treeStream(tree);
    std::istringstream eliteStream(elite);
    try {
        return DeepHeaderEngine::fromStreams(treeStream, &eliteStream);
    } catch (DeepHeaderException const&) {
        return std::nullopt;
    }
}

inline DeepHeaderSettings engineSettings(PlainSettings const& plain) {
    DeepHeaderSettings settings;
    settings.walkToLeaf = plain.m_isWalkToLeaf ? 1 : 0;
    settings.spamThreshold = plain.m_spamThreshold;
    settings.hamThreshold = plain.m_hamThreshold;
    settings.minSupport = plain.m_minSupport;
    settings.maxEliteLevel = plain.m_maxEliteLevel;
    return settings;
}

// As text, in which numbers keep every bit and a NaN equals itself.
inline std::string picture(PlainVerdict const& verdict) {
    std::ostringstream text;
    text << verdict.m_node;
    for (auto const number : {verdict.m_confidence, verdict.m_support, verdict.m_adjust}) {
        text << ' ';
        if (number != number) {
            text << "NaN";
        } else {
            text << std::hex << std::bit_cast<std::uint64_t>(number) << std::dec;
        }
    }
    text << " \"" << verdict.m_adjustReason << '"' << (verdict.m_isSpam ? " spam" : "")
         << (verdict.m_isHam ? " ham" : "");
    return text.str();
}

inline std::string picture(ScanRecord const& record) {
    auto const& verdict = record.verdict;
    return picture(PlainVerdict{verdict.node, verdict.confidence, verdict.support, verdict.adjust,
                                verdict.adjustReason, verdict.isSpam, verdict.isHam}) +
           (record.failure ? " failed: " + *record.failure : "");
}

} // namespace Quorvane::Testing
