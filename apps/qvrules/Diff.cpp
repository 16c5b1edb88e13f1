// SPDX-License-Identifier: Apache-2.0
#include "apps/evaluation/Report.h"
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/Output.h"
#include "apps/qvrules/TrainingMail.h"
#include "apps/workshop/VectorJudge.h"
#include "rules/language/LoadRules.h"

namespace Quorvane::RulesApp {

namespace {

using Report = std::string(Rules::Difference const&, Reports::ComparedSets const&);

Report* s_report(std::string_view format) {
    return format == "json"   ? Reports::differenceJson
           : format == "html" ? Reports::differenceHtml
                              : Reports::differenceText;
}

} // namespace

int diff(CommandLine const& line) {
    TrainingMail const mail{mailInputs(line), Copies::none, hostSettings(line)};
    if (mail.m_inputs.empty()) {
        throw UsageError("give mail (--on, --ham, --spam) or vectors (--vectors, --on-vectors)");
    }
    auto const output = line.text("output", "-");
    requireWritable(output);
    auto const& settings = mail.m_host.m_judging;
    auto const before = Rules::loadRules(line.text("OLD"));
    auto const after = Rules::loadRules(line.text("NEW"));
    Workshop::VectorJudge const judgeBefore(before.m_set, settings);
    Workshop::VectorJudge const judgeAfter(after.m_set, settings);
    TrainingMailCounts counts;
    auto const gathered = gatherMessages(mail, counts);
    auto const difference = Rules::compare(gathered, judgeBefore, judgeAfter);
    Reports::ComparedSets const sets{{line.text("OLD"), before.m_set, settings},
                                     {line.text("NEW"), after.m_set, settings}};
    writeOutput(output, s_report(line.text("format"))(difference, sets));
    return difference.m_groups.empty() ? ExitStatus::ok : ExitStatus::findings;
}

} // namespace Quorvane::RulesApp
