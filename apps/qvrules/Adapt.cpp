// SPDX-License-Identifier: Apache-2.0
#include "apps/commandline/Progress.h"
#include "apps/host/HostSetup.h"
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/Output.h"
#include "apps/qvrules/TrainingMail.h"
#include "apps/workshop/VectorJudge.h"
#include "rules/adapt/AdaptedText.h"
#include "rules/language/RuleText.h"
#include "rules/vectors/LearnError.h"

#include <iostream>
#include <memory>

namespace Quorvane::RulesApp {

namespace {

// Fewer cannot be divided into mail to learn from and mail to judge.
constexpr std::uint64_t leastMessages = 12;

Rules::JudgeMaker s_judgeMaker(DeepHeaderSettings const& settings) {
    return [settings](Rules::RuleSet const& rules) -> Rules::Judge {
        auto const judge = std::make_shared<Workshop::VectorJudge const>(rules, settings);
        return [judge](Rules::AttributeVector const& vector) { return (*judge)(vector); };
    };
}

Rules::AdaptOutcome s_adapt(Rules::RuleSet const& rules, Rules::CountedVectors const& mail,
                            DeepHeaderSettings const& settings) {
    Progress progress("qvrules");
    progress.begin("adapting");
    auto const report = [&progress](std::size_t plan, std::size_t plans) {
        progress.begin("adapting, plan " + std::to_string(plan + 1) + " of " +
                       std::to_string(plans));
    };
    return Rules::adaptToSite(rules, mail, {settings.spamThreshold, settings.minSupport},
                              s_judgeMaker(settings), report);
}

void s_requireEnough(Rules::LabelCounts const& mail) {
    if (mail.m_spam < leastMessages || mail.m_ham < leastMessages) {
        throw Rules::LearnError(
            "rules are adapted to at least " + std::to_string(leastMessages) + " spam and " +
            std::to_string(leastMessages) + " ham messages that can be judged; here are " +
            std::to_string(mail.m_spam) + " spam and " + std::to_string(mail.m_ham) + " ham");
    }
}

} // namespace

int adapt(CommandLine const& line) {
    TrainingMail mail{mailInputs(line), Copies::none, hostSettings(line)};
    if (mail.m_inputs.empty()) {
        throw UsageError("give the mail of your site (--ham, --spam) or its vectors (--vectors)");
    }
    auto const output = outputOf(line, "output", learnedMark);
    requireWritable(output);
    auto const rules = loadRulesOf(line, "RULES");
    settleDns(mail.m_host,
              Workshop::VectorJudge(rules.m_set, mail.m_host.m_judging).needsLookups());
    TrainingMailCounts counts;
    auto const vectors = gatherMessages(mail, counts).m_sorted.all();
    s_requireEnough(Rules::sumOf(vectors));
    auto const outcome = s_adapt(rules.m_set, vectors, mail.m_host.m_judging);
    std::cerr << "qvrules: of the third of the mail that was kept aside\n"
              << Rules::adaptedFigures(outcome);
    if (!outcome.isBetter()) {
        std::cerr << "qvrules: the adapted rules are no better on it, so nothing was written; "
                     "keep the present ones, or give more mail\n";
        return counts.exitStatus(ExitStatus::findings);
    }
    writeOutput(output,
                Rules::adaptedComment(vectors, outcome) + Rules::ruleText(outcome.m_rules.m_set));
    return counts.exitStatus(ExitStatus::ok);
}

} // namespace Quorvane::RulesApp
