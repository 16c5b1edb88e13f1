// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Diff.h"

#include "apps/evaluation/DifferenceReport.h"
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/Output.h"
#include "apps/qvrules/TrainingMail.h"
#include "apps/workshop/ProgressLine.h"
#include "apps/workshop/VectorJudge.h"
#include "rules/language/LoadRules.h"

#include <iostream>

namespace Quorvane::RulesApp {

namespace {

Rules::Judge s_judge(Workshop::VectorJudge const& judge) {
    return [&judge](Rules::AttributeVector const& vector) { return judge.judge(vector); };
}

using Report = std::string(Rules::Difference const&, Reports::ComparedSets const&);

Report* s_report(std::string_view format) {
    return format == "json"   ? Reports::differenceJson
           : format == "html" ? Reports::differenceHtml
                              : Reports::differenceText;
}

} // namespace

int diff(DiffArguments const& arguments) {
    TrainingMail const mail{arguments, Copies::none, hostSettings(arguments.m_settings)};
    if (arguments.isEmpty()) {
        std::cerr << "diff: give mail (--on, --ham, --spam) or vectors (--vectors, --on-vectors)\n";
        return ExitStatus::usage;
    }
    requireWritable(arguments.m_output);
    auto const& settings = mail.m_host.m_judging;
    auto const before = Rules::loadRules(arguments.m_old);
    auto const after = Rules::loadRules(arguments.m_new);
    Workshop::VectorJudge const judgeBefore(before.m_set, settings);
    Workshop::VectorJudge const judgeAfter(after.m_set, settings);
    Workshop::ProgressLine progress("qvrules");
    TrainingMailCounts counts;
    auto const gathered = gatherMessages(mail, progress, counts);
    auto const difference = Rules::compare(gathered, s_judge(judgeBefore), s_judge(judgeAfter));
    Reports::ComparedSets const sets{
        {arguments.m_old, before.m_set}, {arguments.m_new, after.m_set}, settings};
    writeOutput(arguments.m_output, s_report(arguments.m_format)(difference, sets));
    return difference.m_groups.empty() ? ExitStatus::well : ExitStatus::findings;
}

} // namespace Quorvane::RulesApp
