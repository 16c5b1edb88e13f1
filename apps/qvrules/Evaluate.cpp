// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Evaluate.h"

#include "apps/evaluation/Report.h"
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/Output.h"
#include "apps/qvrules/TrainingMail.h"
#include "apps/workshop/ProgressLine.h"
#include "apps/workshop/VectorJudge.h"
#include "rules/language/LoadRules.h"

#include <iostream>

namespace Quorvane::RulesApp {

namespace {

TrainingMail s_mail(EvaluateArguments const& arguments) {
    TrainingMail mail;
    mail.m_paths = arguments;
    mail.m_copies = arguments.m_augment.empty() ? Copies::none : Copies::apart;
    mail.m_host = hostSettings(arguments.m_settings);
    return mail;
}

using Report = std::string(Rules::Evaluation const&, Reports::EvaluatedRules const&);

Report* s_report(std::string_view format) {
    return format == "json"   ? Reports::reportJson
           : format == "html" ? Reports::reportHtml
                              : Reports::reportText;
}

} // namespace

int evaluate(EvaluateArguments const& arguments) {
    auto const mail = s_mail(arguments);
    if (arguments.isEmpty()) {
        std::cerr << "evaluate: give mail (--ham, --spam) or vectors (--vectors)\n";
        return ExitStatus::usage;
    }
    requireWritable(arguments.m_output);
    auto const rules = Rules::loadRules(arguments.m_rules);
    Workshop::VectorJudge const judge(rules.m_set, mail.m_host.m_judging);
    Workshop::ProgressLine progress("qvrules");
    TrainingMailCounts counts;
    auto const gathered = gatherMessages(mail, progress, counts);
    auto const evaluation = Rules::evaluate(
        gathered.m_sorted,
        [&judge](Rules::AttributeVector const& vector) { return judge.judge(vector); },
        gathered.m_sortedSamples);
    Reports::EvaluatedRules const shown{arguments.m_rules, rules.m_set, mail.m_host.m_judging};
    writeOutput(arguments.m_output, s_report(arguments.m_format)(evaluation, shown));
    return ExitStatus::well;
}

} // namespace Quorvane::RulesApp
