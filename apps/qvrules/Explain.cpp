// SPDX-License-Identifier: Apache-2.0
#include "apps/commandline/Program.h"
#include "apps/host/HostSetup.h"
#include "apps/host/LookupEnd.h"
#include "apps/host/RuleLoader.h"
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/NamedRules.h"
#include "apps/story/JsonRecord.h"
#include "apps/story/ScanText.h"
#include "apps/workshop/ExplainInput.h"
#include "apps/workshop/MailVectors.h"

#include <utility>

namespace Quorvane::RulesApp {

namespace {

// The answers of DNS are shown, whether or not the rules test them.
HostSettings s_settings(CommandLine const& line) {
    auto settings = hostSettings(line);
    settleDns(settings, true);
    return settings;
}

class Explainer {
  public:
    Explainer(CommandLine const& line, LoadedRules rules, Interrupt const& interrupt)
        : m_interrupt(interrupt), m_isJson(line.text("format") == "json"),
          m_facts(messageFacts(line)), m_host(setUpHost(s_settings(line), std::move(rules))) {}

    void explain(Workshop::AskedItem const& item) const {
        auto const depth = RecordDepth::alternatives;
        auto const record = item.m_headers ? m_host->scan(*item.m_headers, m_facts, depth)
                                           : m_host->judge(item.m_vector, depth);
        if (m_interrupt.signalNumber() != 0) {
            throw Interrupted();
        }
        print(item.m_source, record);
    }

  private:
    void print(std::string const& source, ScanRecord const& record) const {
        auto const& settings = m_host->settings().m_judging;
        auto const& names = m_host->ruleNames();
        printOutput(m_isJson ? jsonExplanation(source, record, settings, names)
                             : textRecord(source, record, names, false) +
                                   textExplain(record, settings, names));
    }

    Interrupt const& m_interrupt;
    bool m_isJson;
    MessageFacts m_facts;
    std::shared_ptr<ScanHost const> m_host;
};

void s_explain(CommandLine const& line, Workshop::ExplainInput& input, Interrupt const& interrupt) {
    auto const rules = loadNamedRules(line.text("RULES"));
    LookupEnd const lookupEnd(interrupt.token());
    Explainer const explainer(line, loadedRules(rules.m_set), interrupt);
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
        s_explain(line, input, interrupt);
    } catch (Interrupted const&) {
        throw Workshop::ScanInterrupted{interrupt.signalNumber()};
    }
    return ExitStatus::ok;
}

} // namespace Quorvane::RulesApp
