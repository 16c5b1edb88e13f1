// SPDX-License-Identifier: Apache-2.0
#include "DeepHeaderEngine.h"

#include "adapter/RecordedScan.h"
#include "adapter/TestedAttributes.h"
#include "DeepHeaderScanner.h"
#include "platform/NoCancellation.h"

namespace Quorvane {

DeepHeaderEngine::DeepHeaderEngine() = default;

DeepHeaderEngine::DeepHeaderEngine(RefDeepHeaderAdapter const& engine)
    : m_engine(engine.isEmpty() ? nullptr : std::make_shared<RefDeepHeaderAdapter const>(engine)) {}

DeepHeaderEngine DeepHeaderEngine::inForce() {
    Synchronized const lock(DeepHeaderScanner::m_Mutex);
    return DeepHeaderEngine(RefDeepHeaderAdapter::instance(nullptr));
}

DeepHeaderEngine DeepHeaderEngine::fromStreams(std::istream& tree, std::istream* elite) {
    return DeepHeaderEngine(RefDeepHeaderAdapter(new DeepHeaderAdapter(tree, elite)));
}

// An engine is the same for all who hold it, const or not: nothing changes it.
ScanRecord DeepHeaderEngine::scan(DeepHeaderQuery& query, RecordDepth depth) const {
    NoCancellation const guard;
    RefDeepHeaderAdapter engine(*m_engine);
    return recordScan(*engine.operator->(), query, depth);
}

ScanRecord DeepHeaderEngine::judge(std::array<std::int32_t, 38> const& attributes,
                                   DeepHeaderSettings const& settings, RecordDepth depth) const {
    RefDeepHeaderAdapter engine(*m_engine);
    return recordJudgement(*engine.operator->(), attributes, settings, depth);
}

std::vector<std::int32_t> DeepHeaderEngine::testedAttributes() const {
    RefDeepHeaderAdapter engine(*m_engine);
    return Quorvane::testedAttributes(*engine.operator->());
}

} // namespace Quorvane
