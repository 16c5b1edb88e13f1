// SPDX-License-Identifier: Apache-2.0
//
// What every engine promises of its rules, whatever bytes they were read from: checked with vectors
// that pass the tests of the rules, and with one that is all zero.
#pragma once

#include "Check.h"
#include "DeepHeaderEngine.h"
#include "include2/DeepHeaderException.h"
#include "rules/format/RuleTests.h"

#include <cstddef>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace Quorvane {

// Empty when the tree cannot be loaded.
inline std::optional<DeepHeaderEngine> loadEngine(std::string const& tree,
                                                  std::string const* elite) {
    std::istringstream treeStream(tree);
    std::istringstream eliteStream(elite == nullptr ? std::string() : *elite);
    try {
        return DeepHeaderEngine::fromStreams(treeStream, elite == nullptr ? nullptr : &eliteStream);
    } catch (DeepHeaderException const&) {
        return std::nullopt;
    }
}

// Changes `vector` so that it passes the test, if one of its values can.
inline void pass(EliteCondition const& test, AttributeVector& vector) {
    if (isAttribute(test.attribute)) {
        auto& value = vector[static_cast<std::size_t>(test.attribute)];
        if (isEqualityTest(test.test)) {
            value = test.value;
        } else if (value == test.value) {
            value = test.value == 0 ? 1 : 0;
        }
    }
}

inline void checkWalk(RecordedWalk const& walk) {
    check((walk.use == TreeUse::walked) == (walk.end != WalkEnd::notWalked),
          "a walk that began has an end");
    for (auto const& node : walk.path) {
        check(isChildIndex(node.number), "the walk stays in the table");
    }
    check(walk.path.size() <= treeTableSize + 1U, "the walk ends");
}

inline void checkVerdict(ScanRecord const& record) {
    auto const& verdict = record.verdict;
    check(!record.failure, "a judgement does not fail");
    check(!(verdict.isSpam && verdict.isHam), "nothing is spam and ham at once");
    check(record.isJudged(), "attributes are always judged");
    if (verdict.decision == Decision::none) {
        check(verdict.node == 0 && !verdict.isSpam && !verdict.isHam, "no rule, no verdict");
    }
    checkWalk(record.tree);
}

// The verdict is what the alternative says once its changes are made.
inline void checkAlternative(DeepHeaderEngine const& engine, AttributeVector vector,
                             DeepHeaderSettings const& settings, Alternative const& alternative) {
    for (auto const& change : alternative.changes) {
        check(isAttribute(change.attribute), "an alternative changes attributes");
        vector[static_cast<std::size_t>(change.attribute)] = change.value;
    }
    auto const verdict = engine.judge(vector, settings, RecordDepth::result).verdict;
    check(verdict.isSpam == alternative.isSpam && verdict.isHam == alternative.isHam &&
              verdict.node == alternative.node && verdict.decision == alternative.decision,
          "an alternative leads where it says");
}

inline ScanRecord checkJudgement(DeepHeaderEngine const& engine, AttributeVector const& vector,
                                 DeepHeaderSettings const& settings) {
    auto record = engine.judge(vector, settings, RecordDepth::alternatives);
    checkVerdict(record);
    auto const brief = engine.judge(vector, settings, RecordDepth::result);
    check(brief.verdict.node == record.verdict.node &&
              brief.answer.getReasons() == record.answer.getReasons(),
          "a record changes no verdict");
    for (auto const& alternative : record.alternatives) {
        checkAlternative(engine, vector, settings, alternative);
    }
    if (record.singleChanges) {
        for (auto const& change : record.singleChanges->list) {
            checkAlternative(engine, vector, settings, change);
        }
    }
    return record;
}

// Each vector with a walk to the leaf and one that stops when it is sure.
inline void checkEngine(DeepHeaderEngine const& engine,
                        std::vector<AttributeVector> const& vectors) {
    for (auto const attribute : engine.testedAttributes()) {
        check(isAttribute(attribute), "the tested attributes exist");
    }
    DeepHeaderSettings settings;
    settings.spamThreshold = settings.hamThreshold = 0.9;
    for (auto const& vector : vectors) {
        settings.walkToLeaf = 1;
        checkJudgement(engine, vector, settings);
        settings.walkToLeaf = 0;
        checkJudgement(engine, vector, settings);
    }
}

} // namespace Quorvane
