// SPDX-License-Identifier: Apache-2.0
#include "apps/milter/Judgement.h"

#include "apps/milter/MilterTable.h"
#include "apps/story/FailedLookups.h"
#include "apps/story/RuleNaming.h"
#include "apps/story/VerdictStory.h"
#include "apps/text/NumberText.h"

#include <utility>

namespace Quorvane::Milter {

namespace {

FailureAction s_actionOn(Failure failure, MilterSettings const& settings) {
    switch (failure) {
    case Failure::noRules:
        return settings.m_onNoRules;
    case Failure::scanFailed:
        return settings.m_onScanFailure;
    case Failure::dnsFailed:
        return settings.m_onDnsFailure;
    case Failure::oddMessage:
        return settings.m_onOddMessage;
    case Failure::overload:
        break;
    }
    return settings.m_onOverload;
}

} // namespace

Judgement judgementOf(ScanRecord record, MilterSettings const& settings,
                      Rules::RuleNames const& names) {
    Judgement judgement;
    if (record.failure) {
        judgement.m_failure = Failure::scanFailed;
    } else if (settings.m_trustFailedLookups == 0 && hasFailedLookup(record)) {
        judgement.m_failure = Failure::dnsFailed;
    } else {
        judgement.m_verdict = record.verdict;
        judgement.m_ruleName = nameText(deciderName(names, record.verdict));
    }
    judgement.m_record = std::move(record);
    return judgement;
}

Judgement failureOf(Failure failure) {
    Judgement judgement;
    judgement.m_failure = failure;
    return judgement;
}

Action actionOn(Judgement const& judgement, MilterSettings const& settings) {
    if (judgement.m_failure) {
        auto const action = s_actionOn(*judgement.m_failure, settings);
        return {action == FailureAction::reject ? VerdictAction::reject : VerdictAction::header,
                action == FailureAction::tempfail};
    }
    auto const& verdict = judgement.m_verdict;
    return {verdict.isSpam  ? settings.m_onSpam
            : verdict.isHam ? settings.m_onHam
                            : settings.m_onNone,
            false};
}

char const* failureWord(Failure failure) {
    switch (failure) {
    case Failure::noRules:
        return "no-rules";
    case Failure::scanFailed:
        return "scan-failure";
    case Failure::dnsFailed:
        return "dns-failure";
    case Failure::oddMessage:
        return "odd-message";
    case Failure::overload:
        break;
    }
    return "overload";
}

std::string actionWord(Action const& action) {
    return (action.m_isTemporary ? settingTexts(FailureAction::tempfail)
                                 : settingTexts(action.m_action))
        .front();
}

std::string ruleText(Judgement const& judgement) {
    auto const& name = judgement.m_ruleName;
    return name.empty() ? name : " rule=\"" + name + '"';
}

std::string resultText(Judgement const& judgement) {
    auto const& verdict = judgement.m_verdict;
    std::string text = verdictName(verdict);
    if (judgement.m_failure) {
        return text + "; error=" + failureWord(*judgement.m_failure);
    }
    text += "; node=" + std::to_string(verdict.node);
    if (auto const rule = ruleText(judgement); !rule.empty()) {
        text += ';' + rule;
    }
    if (verdict.node != 0) {
        text += "; confidence=" + numberText(verdict.confidence) +
                "; support=" + numberText(verdict.support);
    }
    return verdict.ips.empty() ? text : text + "; ips=" + verdict.ips;
}

} // namespace Quorvane::Milter
