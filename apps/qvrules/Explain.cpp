// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Explain.h"

#include "apps/qvrules/Commands.h"
#include "apps/qvrules/Output.h"
#include "apps/story/TextExplain.h"
#include "apps/story/TextRecord.h"
#include "apps/workshop/ExplainInput.h"
#include "apps/workshop/MailVectors.h"
#include "apps/workshop/RuleEngine.h"
#include "platform/HeaderReader.h"
#include "rules/language/LoadRules.h"

namespace Quorvane::RulesApp {

namespace {

class Explainer {
  public:
    Explainer(CommandLine const& line, RefDeepHeaderAdapter const& engine)
        : m_isJson(line.text("format") == "json"), m_facts(messageFacts(line)),
          m_host(hostSettings(line), engine) {}

    void explain(Workshop::AskedItem const& item) const {
        if (!item.m_headers) {
            print(item.m_source, m_host.judge(item.m_vector), {});
            return;
        }
        auto const headers = HeaderReader::read(*item.m_headers);
        print(item.m_source, m_host.scan(headers, m_facts), tellTrail(m_host, headers, m_facts));
    }

  private:
    void print(std::string const& source, ScanOutcome outcome,
               std::vector<StoryHop> const& trail) const {
        m_host.trace(outcome);
        writeOutput("-", m_isJson ? explanationJson(source, m_host, outcome, trail)
                                  : textRecord(source, outcome, false) +
                                        textExplain(m_host, outcome, trail));
    }

    bool m_isJson;
    MessageFacts m_facts;
    ScanHost m_host;
};

void s_explain(CommandLine const& line, Workshop::ExplainInput& input) {
    auto const engine = Workshop::loadEngine(Rules::loadRules(line.text("RULES")).m_set);
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
            throw UsageError(asked +
                             " holds vectors, and what is known of a message changes none: leave "
                             "out --env-from and the like");
        }
        s_explain(line, input);
    } catch (Interrupted const&) {
        throw Workshop::ScanInterrupted{interrupt.signalNumber()};
    }
    return ExitStatus::ok;
}

} // namespace Quorvane::RulesApp
