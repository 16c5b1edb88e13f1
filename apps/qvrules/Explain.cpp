// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Explain.h"

#include "apps/host/HostSetup.h"
#include "apps/host/RuleLoader.h"
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/Output.h"
#include "apps/story/JsonRecord.h"
#include "apps/story/TextExplain.h"
#include "apps/story/TextRecord.h"
#include "apps/text/Utf8.h"
#include "apps/workshop/ExplainInput.h"
#include "apps/workshop/MailVectors.h"
#include "platform/HeaderReader.h"
#include "rules/language/LoadRules.h"

#include <iostream>

namespace Quorvane::RulesApp {

namespace {

class Explainer {
  public:
    Explainer(ExplainArguments const& arguments, DeepHeaderEngine const& engine)
        : m_isJson(arguments.m_format == "json"), m_facts(messageFacts(arguments.m_settings)),
          m_host(setUpHost(hostSettings(arguments.m_settings), engine)) {}

    void explain(Workshop::AskedItem const& item) const {
        auto const depth = RecordDepth::alternatives;
        print(item.m_source, item.m_headers
                                 ? m_host->scan(HeaderReader::read(*item.m_headers), m_facts, depth)
                                 : m_host->judge(item.m_vector, depth));
    }

  private:
    void print(std::string const& source, ScanRecord const& record) const {
        auto const& settings = m_host->settings().m_judging;
        writeOutput("-", m_isJson
                             ? jsonExplanation(source, record, settings)
                             : textRecord(source, record, false) + textExplain(record, settings));
    }

    bool m_isJson;
    MessageFacts m_facts;
    std::shared_ptr<ScanHost const> m_host;
};

void s_explain(ExplainArguments const& arguments, Workshop::ExplainInput& input) {
    auto const engine = engineOf(Rules::loadRules(arguments.m_rules).m_set);
    Explainer const explainer(arguments, engine);
    input.read([&](Workshop::AskedItem const& item) { explainer.explain(item); });
}

} // namespace

int explain(ExplainArguments const& arguments) {
    Interrupt interrupt;
    try {
        Workshop::ExplainInput input(arguments.m_input, interrupt);
        if (input.isVectors() && hasFacts(arguments.m_settings)) {
            std::cerr << "explain: " << toPrintable(arguments.m_input)
                      << " holds vectors, and what is known of a message changes none: leave out "
                         "--env-from and the like\n";
            return ExitStatus::usage;
        }
        s_explain(arguments, input);
    } catch (Interrupted const&) {
        throw Workshop::ScanInterrupted{interrupt.signalNumber()};
    }
    return ExitStatus::well;
}

} // namespace Quorvane::RulesApp
