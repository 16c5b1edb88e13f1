// SPDX-License-Identifier: Apache-2.0
#include "apps/evaluation/Report.h"
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/Output.h"
#include "apps/qvrules/TrainingMail.h"
#include "apps/workshop/VectorJudge.h"
#include "rules/language/LoadRules.h"

namespace Quorvane::RulesApp {

namespace {

using Report = std::string(Rules::Evaluation const&, Reports::EvaluatedRules const&);

Report* s_report(std::string_view format) {
    return format == "json"   ? Reports::reportJson
           : format == "html" ? Reports::reportHtml
                              : Reports::reportText;
}

} // namespace

int evaluate(CommandLine const& line) {
    TrainingMail const mail{mailInputs(line), line.has("augment") ? Copies::apart : Copies::none,
                            hostSettings(line)};
    if (mail.m_inputs.empty()) {
        throw UsageError("give mail (--ham, --spam) or vectors (--vectors)");
    }
    auto const output = line.text("output", "-");
    requireWritable(output);
    auto const rules = Rules::loadRules(line.text("RULES"));
    Workshop::VectorJudge const judge(rules.m_set, mail.m_host.m_judging);
    TrainingMailCounts counts;
    auto const gathered = gatherMessages(mail, counts);
    auto const evaluation = Rules::evaluate(gathered.m_sorted, judge, gathered.m_sortedSamples);
    Reports::EvaluatedRules const shown{line.text("RULES"), rules.m_set, mail.m_host.m_judging};
    writeOutput(output, s_report(line.text("format"))(evaluation, shown));
    return ExitStatus::ok;
}

} // namespace Quorvane::RulesApp
