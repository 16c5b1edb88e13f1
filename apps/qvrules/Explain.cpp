// SPDX-License-Identifier: Apache-2.0
#include "apps/commandline/Program.h"
#include "apps/commandline/Terminal.h"
#include "apps/host/HostSetup.h"
#include "apps/host/LookupEnd.h"
#include "apps/host/RuleLoader.h"
#include "apps/qvrules/Commands.h"
#include "apps/story/JsonRecord.h"
#include "apps/story/ScanText.h"
#include "apps/text/Utf8.h"
#include "apps/workshop/ExplainInput.h"
#include "apps/workshop/MailVectors.h"

#include <iostream>
#include <optional>
#include <unistd.h>
#include <utility>

namespace Quorvane::RulesApp {

namespace {

struct ExplainArguments {
    std::string m_asked;
    bool m_isJson = false;
    ExplainLength m_length = ExplainLength::brief;
    bool m_hasColour = false;
    std::optional<std::size_t> m_width; // of the terminal
    bool m_wantsPager = false;
    bool m_hasFacts = false;
    MessageFacts m_facts;
    HostSettings m_settings;
};

ExplainArguments s_arguments(CommandLine const& line) {
    ExplainArguments arguments;
    arguments.m_asked = line.text("INPUT");
    arguments.m_isJson = line.text("format") == "json";
    arguments.m_length = line.has("all") ? ExplainLength::full : ExplainLength::brief;
    arguments.m_hasColour = wantsColour(line);
    arguments.m_width = terminalWidth();
    // A person who types the message needs the terminal.
    bool const isTyped = arguments.m_asked == "-" && ::isatty(STDIN_FILENO) == 1;
    arguments.m_wantsPager = !arguments.m_isJson && !isTyped && !line.has(noPagerRow.m_name);
    arguments.m_hasFacts = hasFacts(line);
    arguments.m_facts = messageFacts(line);
    arguments.m_settings = hostSettings(line);
    // The answers of DNS are shown, whether or not the rules test them.
    settleDns(arguments.m_settings, true);
    return arguments;
}

class Explainer {
  public:
    Explainer(ExplainArguments const& arguments, LoadedRules rules, Interrupt const& interrupt)
        : m_arguments(arguments), m_interrupt(interrupt),
          m_host(setUpHost(arguments.m_settings, std::move(rules))) {}

    void explain(Workshop::AskedItem const& item) {
        if (!item.m_problem.empty()) {
            std::cerr << toPrintable(item.m_source + ": " + item.m_problem) << '\n';
            m_status = m_status == ExitStatus::ok ? item.m_exitStatus : m_status;
            return;
        }
        auto const depth = RecordDepth::alternatives;
        auto const record = item.m_headers
                                ? m_host->scan(*item.m_headers, m_arguments.m_facts, depth)
                                : m_host->judge(item.m_vector, depth);
        if (m_interrupt.signalNumber() != 0) {
            throw Interrupted();
        }
        print(item, record);
    }

    int exitStatus() const { return m_status; }

  private:
    void print(Workshop::AskedItem const& item, ScanRecord const& record) const {
        auto const& settings = m_host->settings().m_judging;
        auto const& names = m_host->ruleNames();
        auto const headers = item.m_headers.value_or(HeaderContainer());
        printOutput(m_arguments.m_isJson
                        ? jsonExplanation(item.m_source, headers, record, settings, names)
                        : forTerminal(textExplain({item.m_source, headers, record, settings, names},
                                                  m_arguments.m_length, m_arguments.m_hasColour),
                                      m_arguments.m_width));
    }

    ExplainArguments const& m_arguments;
    Interrupt const& m_interrupt;
    std::shared_ptr<ScanHost const> m_host;
    int m_status = ExitStatus::ok; // for the first problem
};

int s_explain(ExplainArguments const& arguments, LoadedRules rules, Interrupt& interrupt) {
    Workshop::ExplainInput input(arguments.m_asked, arguments.m_settings.m_limits, interrupt);
    if (input.isVectors() && arguments.m_hasFacts) {
        throw UsageError(arguments.m_asked + ": facts about a message do not apply to vectors; "
                                             "leave out --env-from and the like");
    }
    LookupEnd const lookupEnd(interrupt.token());
    Explainer explainer(arguments, std::move(rules), interrupt);
    input.read([&](Workshop::AskedItem const& item) { explainer.explain(item); });
    return explainer.exitStatus();
}

} // namespace

int explain(CommandLine const& line) {
    auto const arguments = s_arguments(line);
    auto rules = loadedRules(loadRulesOf(line, "RULES").m_set);
    Pager const pager(arguments.m_wantsPager);
    Interrupt interrupt; // after what may come from pipes
    try {
        return s_explain(arguments, std::move(rules), interrupt);
    } catch (Interrupted const&) {
        throw Workshop::ScanInterrupted{interrupt.signalNumber()};
    }
}

} // namespace Quorvane::RulesApp
