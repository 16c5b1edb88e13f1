// SPDX-License-Identifier: Apache-2.0
#include "apps/host/HostSetup.h"
#include "apps/host/RuleLoader.h"
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/Output.h"
#include "apps/story/JsonRecord.h"
#include "apps/story/ScanText.h"
#include "apps/workshop/ExplainInput.h"
#include "apps/workshop/MailVectors.h"
#include "rules/language/LoadRules.h"

namespace Quorvane::RulesApp {

namespace {

class Explainer {
  public:
    Explainer(CommandLine const& line, DeepHeaderEngine const& engine)
        : m_isJson(line.text("format") == "json"), m_facts(messageFacts(line)),
          m_host(setUpHost(hostSettings(line), engine)) {}

    void explain(Workshop::AskedItem const& item) const {
        auto const depth = RecordDepth::alternatives;
        print(item.m_source, item.m_headers ? m_host->scan(*item.m_headers, m_facts, depth)
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

void s_explain(CommandLine const& line, Workshop::ExplainInput& input) {
    auto const engine = engineOf(Rules::loadRules(line.text("RULES")).m_set);
    Explainer const explainer(line, engine);
    input.read([&](Workshop::AskedItem const& item) { explainer.explain(item); });
}

} // namespace

int explain(CommandLine const& line) {
    auto const asked = line.text("INPUT");
    Interrupt interrupt;
    try {
        Workshop::ExplainInput input(asked, interrupt);
        if (input.isVectors() && hasFacts(line)) {
            throw UsageError(asked + ": facts about a message do not apply to vectors; leave out "
                                     "--env-from and the like");
        }
        s_explain(line, input);
    } catch (Interrupted const&) {
        throw Workshop::ScanInterrupted{interrupt.signalNumber()};
    }
    return ExitStatus::ok;
}

} // namespace Quorvane::RulesApp
