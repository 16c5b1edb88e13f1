// SPDX-License-Identifier: Apache-2.0
#include "apps/commandline/Program.h"
#include "apps/commandline/Terminal.h"
#include "apps/host/HostSetup.h"
#include "apps/host/LookupEnd.h"
#include "apps/host/RuleLoader.h"
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/Output.h"
#include "apps/qvrules/TrainingMail.h"
#include "apps/settings/SettingValue.h"
#include "apps/show/MessageExplainer.h"
#include "apps/show/Page.h"
#include "apps/show/PageServer.h"
#include "apps/show/Traffic.h"
#include "apps/workshop/MailVectors.h"
#include "rules/model/RuleError.h"

#include <optional>

namespace Quorvane::RulesApp {

namespace {

struct ShowArguments {
    std::string m_rules; // text or folder
    std::string m_format;
    Output m_output;
    // Mail and tables of vectors to measure the traffic on.
    std::vector<std::string> m_on;
    std::vector<std::string> m_vectors;
    // Messages that the page offers.
    std::vector<std::string> m_messages;
    // If given, serve the page; empty: on any free port.
    std::optional<std::string> m_serve;
    HostSettings m_settings;
    MessageFacts m_facts; // of those messages
    bool m_hasColour = false;
};

ShowArguments s_arguments(CommandLine const& line) {
    return {line.text("RULES"),
            line.text("format", "text"),
            outputOf(line, "output", drawnMark),
            line.texts("on"),
            line.texts("vectors"),
            line.texts("message"),
            line.has("serve") ? std::optional(line.text("serve")) : std::nullopt,
            hostSettings(line),
            messageFacts(line),
            wantsColour(line) && (!line.has("output") || line.text(colorRow.m_name) == "always")};
}

// Any corpus name will do: it is not used here.
std::vector<std::string> s_asCorpus(std::vector<std::string> const& paths) {
    std::vector<std::string> named;
    named.reserve(paths.size());
    for (auto const& path : paths) {
        named.push_back("mail=" + path);
    }
    return named;
}

Rules::VectorTable s_mail(ShowArguments const& arguments, DeepHeaderEngine const& engine,
                          TrainingMailCounts& counts) {
    TrainingMail mail;
    if (!arguments.m_on.empty()) {
        mail.m_inputs.push_back({s_asCorpus(arguments.m_on)});
    }
    mail.m_inputs.push_back({s_asCorpus(arguments.m_vectors), true});
    mail.m_host = arguments.m_settings;
    settleDns(mail.m_host, needsLookups(engine));
    return gatherMessages(mail, counts).m_unsorted;
}

Show::Traffic s_traffic(DeepHeaderEngine const& engine, DeepHeaderSettings const& settings,
                        Rules::VectorTable const& table, TrainingMailCounts const& counts) {
    Show::Traffic traffic;
    for (auto const& row : table.all()) {
        traffic.add(engine, settings, row.m_vector, row.m_counts.total());
    }
    traffic.m_notJudgeable = counts.m_notJudgeable;
    return traffic;
}

// Empty: any free port.
int s_port(std::string const& text) {
    constexpr int highest = 65535;
    try {
        return text.empty() ? 0 : static_cast<int>(readInteger(text, 1, highest));
    } catch (SettingsError const&) {
        throw UsageError("--serve: \"" + text +
                         "\" is not a port from 1 to 65535; give the rules before this option");
    }
}

std::string s_drawn(ShowArguments const& arguments, Show::Drawing const& drawing,
                    Show::PageExtras const& extras) {
    if (arguments.m_format == "dot") {
        return Show::dotDrawing(drawing);
    }
    if (arguments.m_format == "svg") {
        return Show::svgDrawing(drawing);
    }
    if (arguments.m_format == "html") {
        return Show::htmlDrawing(drawing, extras);
    }
    return Show::textDrawing(
        drawing, Show::terminalStyle(arguments.m_output.m_path == "-", arguments.m_hasColour));
}

Show::PageExtras s_extras(ShowArguments const& arguments, HostSettings const& settings,
                          Show::MessageExplainer const& explainer, Interrupt& interrupt) {
    Show::PageExtras extras;
    if (arguments.m_serve) {
        extras.m_served = settings;
    }
    Show::readMessages(
        arguments.m_messages, settings.m_limits, interrupt, [&](Show::PageMessage message) {
            // A page in a file cannot ask later.
            if (!arguments.m_serve) {
                message.m_record = explainer.explain(message.m_source, message.m_headers);
            }
            if (interrupt.signalNumber() != 0) {
                throw Interrupted();
            }
            extras.m_messages.push_back(std::move(message));
        });
    return extras;
}

void s_serve(std::string const& page, Show::MessageExplainer const& explainer, int port,
             Interrupt& interrupt) {
    Show::PageServer server(
        page,
        [&explainer](Show::PageQuestion const& question) { return explainer.answer(question); },
        port);
    printOutput("The page is at " + server.address() + " until Ctrl-C.\n");
    server.run(interrupt);
}

bool s_takesMessages(ShowArguments const& arguments) {
    return !arguments.m_messages.empty() || arguments.m_serve;
}

// Whether the rules are not only drawn, but run.
bool s_needsEngine(ShowArguments const& arguments) {
    return !arguments.m_on.empty() || !arguments.m_vectors.empty() || s_takesMessages(arguments);
}

// The exit status.
int s_showRunning(ShowArguments const& arguments, int port, Rules::RuleSet const& set) {
    auto settings = arguments.m_settings;
    settleDns(settings, true); // the page shows the answers of DNS
    auto const rules = Show::shownRules(arguments.m_rules, set);
    bool const isMeasured = !arguments.m_on.empty() || !arguments.m_vectors.empty();
    TrainingMailCounts counts;
    auto const loaded = loadedRules(set);
    auto const table =
        isMeasured ? s_mail(arguments, loaded.m_engine, counts) : Rules::VectorTable();
    Interrupt interrupt; // after the measuring, which reads signals of its own
    LookupEnd const lookupEnd(interrupt.token());
    try {
        auto const traffic = s_traffic(loaded.m_engine, settings.m_judging, table, counts);
        Show::MessageExplainer const explainer(settings, loaded, arguments.m_facts);
        Show::Drawing const drawing{rules, isMeasured ? &traffic : nullptr};
        auto const extras = s_extras(arguments, settings, explainer, interrupt);
        if (arguments.m_serve) {
            s_serve(Show::htmlDrawing(drawing, extras), explainer, port, interrupt);
        } else {
            writeOutput(arguments.m_output, s_drawn(arguments, drawing, extras));
        }
    } catch (Interrupted const&) {
        throw Workshop::ScanInterrupted{interrupt.signalNumber()};
    }
    return counts.exitStatus(ExitStatus::ok);
}

// Throws a UsageError for options that exclude each other.
void s_check(ShowArguments const& arguments, bool areFactsGiven) {
    if (!arguments.m_messages.empty() && arguments.m_format != "html" && !arguments.m_serve) {
        throw UsageError("--message is for a page: add --format html or --serve");
    }
    bool const wantsFile = arguments.m_format == "dot" || arguments.m_format == "svg" ||
                           arguments.m_output.m_path != "-";
    if (arguments.m_serve && wantsFile) {
        throw UsageError("--serve shows the page in a browser: leave out --format and -o");
    }
    if (areFactsGiven && !s_takesMessages(arguments)) {
        throw UsageError("--env-from and the like describe messages that a page explains: add "
                         "--message or --serve");
    }
}

} // namespace

int show(CommandLine const& line) {
    auto const arguments = s_arguments(line);
    s_check(arguments, hasFacts(line));
    auto const port = s_port(arguments.m_serve.value_or(""));
    requireWritable(arguments.m_output);
    auto const set = loadRulesOf(line, "RULES").m_set;
    if (s_needsEngine(arguments)) {
        return s_showRunning(arguments, port, set);
    }
    auto const rules = Show::shownRules(arguments.m_rules, set);
    writeOutput(arguments.m_output, s_drawn(arguments, {rules}, {}));
    return ExitStatus::ok;
}

} // namespace Quorvane::RulesApp
