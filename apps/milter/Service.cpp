// SPDX-License-Identifier: Apache-2.0
#include "apps/milter/Service.h"

#include "apps/story/VerdictStory.h"
#include "apps/text/NumberText.h"
#include "platform/Logger.h"
#include "platform/LogMessages.h"
#include "rules/vectors/VectorCsv.h"

#include <algorithm>
#include <optional>

namespace Quorvane::Milter {

namespace {

std::string s_rulesText(Snapshot const& snapshot) {
    auto const version = snapshot.m_host->ruleVersion();
    return version ? "rule version " + std::to_string(*version) : "rules without a version";
}

// " vector=1,0,2,... hop=from a.example (...) by ...". The vector is that of a row of CSV; the hop
// is on one line, and last, since a client may have written some of it.
std::string s_detailsText(Judgement const& judgement) {
    if (!judgement.m_record) {
        return {};
    }
    auto const& record = *judgement.m_record;
    auto const values =
        Rules::csvValues(record.isJudged() ? std::optional(record.attributes) : std::nullopt);
    auto text = " vector=" + values.substr(1);
    if (judgement.m_hop) {
        auto hop = *judgement.m_hop;
        std::erase(hop, '\n');
        std::replace(hop.begin(), hop.end(), '\t', ' ');
        text += " hop=" + hop;
    }
    return text;
}

std::string s_queueText(std::string const& queueId) {
    return "queue=" + (queueId.empty() ? std::string("-") : queueId);
}

// "queue=4VdW3k verdict=spam node=17 rule=\"A consumer line\" action=header time=1.2ms"
std::string s_logText(MessageReport const& report) {
    auto const& judgement = report.m_judgement;
    auto text = s_queueText(report.m_queueId) + " verdict=" + verdictName(judgement.m_verdict);
    if (judgement.m_failure) {
        text += std::string(" error=") + failureWord(*judgement.m_failure);
    } else {
        text += " node=" + std::to_string(judgement.m_verdict.node) + ruleText(judgement);
    }
    return text + " action=" + actionWord(report.m_action) +
           " time=" + numberText(report.m_seconds * 1000, 3) + "ms" +
           (report.m_isDetailed ? s_detailsText(judgement) : "");
}

} // namespace

void logMessage(int messageId, std::string const& text) noexcept {
    try {
        Logger::instance(false)->log(messageId, 0, "%s", text.c_str());
    } catch (...) { // there is nowhere left to report it
    }
}

Service::Service(std::string const& path) : m_snapshot(path) {
    if (m_snapshot.whyNoRules().empty()) {
        noteRules();
    } else {
        logMessage(LogId::noRules, m_snapshot.whyNoRules());
    }
}

void Service::noteRules() {
    auto const snapshot = current();
    m_metrics.rules(snapshot->m_host->ruleVersion().value_or(0), snapshot->m_rulesLoaded);
    if (auto const& problem = snapshot->m_host->namesProblem(); !problem.empty()) {
        logMessage(LogId::namesUnusable, problem);
    }
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

void Service::reportExempted(std::string const& queueId, char const* why) {
    m_metrics.exempted();
    logMessage(LogId::messageJudged, s_queueText(queueId) + " exempt=" + why);
}

void Service::reportError(std::string const& text) {
    logMessage(LogId::messageFailed, text);
}

std::string Service::health() const {
    return current()->m_host == nullptr ? "no rules" : "ok";
}

} // namespace Quorvane::Milter
