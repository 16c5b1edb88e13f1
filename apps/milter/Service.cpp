// SPDX-License-Identifier: Apache-2.0
#include "apps/milter/Service.h"

#include "apps/story/VerdictStory.h"
#include "apps/text/NumberText.h"
#include "platform/Logger.h"
#include "platform/LogMessages.h"

namespace Quorvane::Milter {

namespace {

std::string s_rulesText(Snapshot const& snapshot) {
    auto const version = snapshot.m_host->ruleVersion();
    return version ? "rule version " + std::to_string(*version) : "rules without a version";
}

// "queue=4VdW3k verdict=spam node=17 action=header time=1.2ms"
std::string s_logText(MessageReport const& report) {
    auto const& judgement = report.m_judgement;
    auto text = "queue=" + (report.m_queueId.empty() ? std::string("-") : report.m_queueId) +
                " verdict=" + verdictName(judgement.m_verdict);
    if (judgement.m_failure) {
        text += std::string(" error=") + failureWord(*judgement.m_failure);
    } else {
        text += " node=" + std::to_string(judgement.m_verdict.node);
    }
    return text + " action=" + actionWord(report.m_action) +
           " time=" + numberText(report.m_seconds * 1000, 3) + "ms";
}

} // namespace

void logMessage(int messageId, std::string const& text) noexcept {
    try {
        Logger::instance(false)->log(messageId, 0, "%s", text.c_str());
    } catch (...) { // there is nowhere left to report it
    }
}

Service::Service(CommandLine const& line) : m_snapshot(line) {
    if (m_snapshot.whyNoRules().empty()) {
        noteRules();
    } else {
        logMessage(LogId::noRules, m_snapshot.whyNoRules());
    }
}

void Service::noteRules() {
    auto const snapshot = current();
    m_metrics.rules(snapshot->m_host->ruleVersion().value_or(0), snapshot->m_rulesLoaded);
}

void Service::reload() {
    try {
        m_snapshot.reload();
        noteRules();
        m_metrics.reloaded(true);
        logMessage(LogId::reloaded, s_rulesText(*current()));
    } catch (std::exception const& error) {
        m_metrics.reloaded(false);
        logMessage(LogId::reloadRefused, error.what());
    }
}

void Service::lookForRules() {
    try {
        if (m_snapshot.loadNewerRules()) {
            noteRules();
            logMessage(LogId::rulesLoaded, s_rulesText(*current()));
        }
    } catch (std::exception const& error) {
        bool const hasRules = current()->m_host != nullptr;
        logMessage(hasRules ? LogId::rulesRefused : LogId::noRules, error.what());
    }
}

void Service::report(MessageReport const& report) {
    m_metrics.message(report.m_judgement, report.m_action, report.m_seconds);
    logMessage(LogId::messageJudged, s_logText(report));
}

void Service::reportError(std::string const& text) {
    logMessage(LogId::messageFailed, text);
}

std::string Service::health() const {
    return current()->m_host == nullptr ? "no rules" : "ok";
}

} // namespace Quorvane::Milter
