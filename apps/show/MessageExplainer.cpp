// SPDX-License-Identifier: Apache-2.0
#include "apps/show/MessageExplainer.h"

#include "apps/commandline/ExitStatus.h"
#include "apps/host/HostSetup.h"
#include "apps/input/Inputs.h"
#include "apps/story/JsonRecord.h"
#include "platform/HeaderReader.h"
#include "rules/model/RuleError.h"

#include <utility>

namespace Quorvane::Show {

MessageExplainer::MessageExplainer(HostSettings const& settings, DeepHeaderEngine engine,
                                   MessageFacts facts)
    : m_host(setUpHost(settings, std::move(engine))), m_facts(std::move(facts)) {}

std::string MessageExplainer::explain(std::string const& source, std::string_view message) const {
    auto const headers = HeaderReader::read(message);
    if (headers.headers().empty()) {
        throw Rules::RuleError(Rules::RuleError::Kind::badData,
                               source + ": no message: it has no header field");
    }
    auto const record = m_host->scan(headers, m_facts, RecordDepth::alternatives);
    return jsonExplanation(source, record, m_host->settings().m_judging);
}

std::vector<std::string> MessageExplainer::explainFiles(std::vector<std::string> const& paths,
                                                        Interrupt& interrupt) const {
    std::vector<std::string> records;
    if (paths.empty()) {
        return records; // none would mean standard input
    }
    Inputs inputs(paths, interrupt);
    InputItem item;
    while (inputs.next(item)) {
        if (!item.m_problem.empty()) {
            throw Rules::RuleError(item.m_exitStatus == ExitStatus::noInput
                                       ? Rules::RuleError::Kind::noInput
                                       : Rules::RuleError::Kind::badData,
                                   item.m_source + ": " + item.m_problem);
        }
        records.push_back(explain(item.m_source, item.m_headers));
    }
    return records;
}

} // namespace Quorvane::Show
