// SPDX-License-Identifier: Apache-2.0
#include "apps/evaluation/Report.h"
#include "apps/host/HostSetup.h"
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/Output.h"
#include "apps/qvrules/TrainingMail.h"
#include "apps/workshop/VectorJudge.h"

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
    TrainingMail mail{mailInputs(line), Copies::none, hostSettings(line)};
    if (mail.m_inputs.empty()) {
        throw UsageError("give mail (--on, --ham, --spam) or vectors (--vectors, --on-vectors)");
    }
    auto const output = outputOf(line, "output", drawnMark);
    requireWritable(output);
    auto const settings = mail.m_host.m_judging;
    auto const before = loadRulesOf(line, "OLD");
    auto const after = loadRulesOf(line, "NEW");
    Workshop::VectorJudge const judgeBefore(before.m_set, settings);
    Workshop::VectorJudge const judgeAfter(after.m_set, settings);
    settleDns(mail.m_host, judgeBefore.needsLookups() || judgeAfter.needsLookups());
    TrainingMailCounts counts;
    auto const gathered = gatherMessages(mail, counts);
    auto const difference = Rules::compare(gathered, judgeBefore, judgeAfter);
    Reports::ComparedSets const sets{
        {line.text("OLD"), before.m_set, before.m_names.m_names, settings},
        {line.text("NEW"), after.m_set, after.m_names.m_names, settings}};
    writeOutput(output, s_report(line.text("format"))(difference, sets));
    return counts.exitStatus(difference.m_groups.empty() ? ExitStatus::ok : ExitStatus::findings);
}

} // namespace Quorvane::RulesApp
