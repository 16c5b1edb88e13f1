// SPDX-License-Identifier: Apache-2.0
#include "DeepHeaderScanner.h"

#include "adapter/DeepHeaderAdapter.h"
#include "include2/Exception.h"
#include "platform/Logger.h"
#include "platform/NoCancellation.h"
#include "scanner/RuleVersion.h"

#include <memory>

namespace Quorvane {

namespace {

// Numbers of the log records; hosts filter on them, so never renumber.
constexpr int noEngine = 50332195;
constexpr int scanFailed = 50332196;
constexpr int engineFailed = 50332198;
constexpr int engineFailedOtherwise = 50332199;
constexpr int initFailed = 50332201;

// Throws nothing, whatever a host's logger throws: a message that cannot be logged is lost, and the
// scan or the load goes on. Without a reason the text is blank.
void s_log(int messageId, Exception const* reason) {
    try {
        std::string const text = reason == nullptr ? " " : reason->asString();
        Logger::instance(false)->log(messageId, 0, "%s", text.c_str());
    } catch (...) { // there is nowhere left to report it
    }
}

// Null when the rules cannot be loaded; the reason is logged.
std::unique_ptr<DeepHeaderAdapter> s_buildEngine() {
    try {
        return std::make_unique<DeepHeaderAdapter>();
    } catch (Exception const& exception) {
        s_log(engineFailed, &exception);
    } catch (...) {
        s_log(engineFailedOtherwise, nullptr);
    }
    return nullptr;
}

RefDeepHeaderAdapter s_engineInForce() {
    Synchronized const lock(DeepHeaderScanner::m_Mutex);
    return RefDeepHeaderAdapter::instance(nullptr);
}

} // namespace

Mutex DeepHeaderScanner::m_Mutex;
std::atomic<std::int32_t> DeepHeaderScanner::m_version;

DeepHeaderScanner::DeepHeaderScanner() = default;

DeepHeaderScanner::~DeepHeaderScanner() = default;

// The slow part, reading the rules, runs without the lock: scans never wait for it.
void DeepHeaderScanner::init() {
    NoCancellation const guard;
    try {
        auto const version = readRuleVersion();
        if (version != noRuleVersion && version <= m_version.load(std::memory_order_relaxed)) {
            return;
        }
        auto engine = s_buildEngine();
        if (engine == nullptr) {
            return;
        }
        // What takes long to destroy ends after the lock, or with the last scan that holds it.
        RefDeepHeaderAdapter superseded;
        Synchronized const lock(m_Mutex);
        superseded = RefDeepHeaderAdapter::instance(nullptr);
        RefDeepHeaderAdapter::instance(engine.release());
        m_version.store(version, std::memory_order_relaxed);
    } catch (Exception const& exception) {
        s_log(initFailed, &exception);
    }
}

bool DeepHeaderScanner::ready() {
    return m_version.load(std::memory_order_relaxed) != 0;
}

DeepHeaderAnswer DeepHeaderScanner::postQuery(DeepHeaderQuery& query) {
    NoCancellation const guard;
    try {
        auto engine = s_engineInForce();
        if (!engine.isEmpty()) {
            return engine->scanMessage(query);
        }
        s_log(noEngine, nullptr);
    } catch (Exception const& exception) {
        s_log(scanFailed, &exception);
    }
    return DeepHeaderAnswer();
}

} // namespace Quorvane
