// SPDX-License-Identifier: Apache-2.0
#include "DeepHeaderEngine.h"

#include "adapter/RecordedScan.h"
#include "adapter/TestedAttributes.h"
#include "DeepHeaderScanner.h"
#include "platform/NoCancellation.h"

namespace Quorvane {

DeepHeaderEngine::DeepHeaderEngine() = default;

DeepHeaderEngine::DeepHeaderEngine(RefDeepHeaderAdapter const& engine)
    : m_engine(engine.isEmpty() ? nullptr : std::make_shared<RefDeepHeaderAdapter>(engine)) {}

DeepHeaderEngine DeepHeaderEngine::inForce() {
    Synchronized const lock(DeepHeaderScanner::m_Mutex);
    return DeepHeaderEngine(RefDeepHeaderAdapter::instance(nullptr));
}

DeepHeaderEngine DeepHeaderEngine::fromStreams(std::istream& tree, std::istream* elite) {
    auto engine = std::make_unique<DeepHeaderAdapter>(tree, elite);
    RefDeepHeaderAdapter const handle(engine.get());
    static_cast<void>(engine.release()); // the handle's now; before, there may have been no memory
    return DeepHeaderEngine(handle);
}

// An engine is the same for all who hold it, const or not: nothing changes it. The handle keeps it
// alive meanwhile; a reference more would be a count that all threads write to.
ScanRecord DeepHeaderEngine::scan(DeepHeaderQuery& query, RecordDepth depth) const {
    NoCancellation const guard;
    return recordScan(*m_engine->operator->(), query, depth);
}

ScanRecord DeepHeaderEngine::judge(std::array<std::int32_t, 38> const& attributes,
                                   DeepHeaderSettings const& settings, RecordDepth depth) const {
    return recordJudgement(*m_engine->operator->(), attributes, settings, depth);
}

std::vector<std::int32_t> DeepHeaderEngine::testedAttributes() const {
    return Quorvane::testedAttributes(*m_engine->operator->());
}

} // namespace Quorvane
