// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Show.h"

#include "apps/host/RuleLoader.h"
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/Output.h"
#include "apps/qvrules/TrainingMail.h"
#include "apps/show/MessageExplainer.h"
#include "apps/show/Page.h"
#include "apps/show/PageServer.h"
#include "apps/show/TrafficMeter.h"
#include "apps/text/Utf8.h"
#include "apps/workshop/MailVectors.h"
#include "rules/language/LoadRules.h"
#include "rules/model/RuleError.h"

#include <charconv>
#include <iostream>

namespace Quorvane::RulesApp {

namespace {

// Any corpus will do: nothing tells them apart here.
std::vector<std::string> s_asCorpus(std::vector<std::string> const& paths) {
    std::vector<std::string> named;
    named.reserve(paths.size());
    for (auto const& path : paths) {
        named.push_back("mail=" + path);
    }
    return named;
}

Rules::VectorTable s_mail(ShowArguments const& arguments, HostSettings const& host,
                          TrainingMailCounts& counts) {
    TrainingMail mail;
    mail.m_paths.m_unsorted = s_asCorpus(arguments.m_on);
    mail.m_paths.m_unsortedVectors = s_asCorpus(arguments.m_vectors);
    mail.m_host = host;
    Workshop::ProgressLine progress("qvrules");
    return gatherMessages(mail, progress, counts).m_unsorted;
}

Show::Traffic s_traffic(DeepHeaderEngine const& engine, DeepHeaderSettings const& settings,
                        Rules::VectorTable const& table, TrainingMailCounts const& counts) {
    Show::TrafficMeter meter(engine, settings);
    for (auto const& row : table.all()) {
        meter.add(row.m_vector, row.m_counts.total());
    }
    meter.addNotJudgeable(counts.m_notJudgeable);
    return meter.traffic();
}

// Empty: any port that is free. Nothing for what is no port.
std::optional<int> s_port(std::string const& text) {
    constexpr int highest = 65535;
    int port = 0;
    auto const* const last = text.data() + text.size();
    auto const [end, error] = std::from_chars(text.data(), last, port);
    bool const isNumber = error == std::errc() && end == last && port > 0 && port <= highest;
    return text.empty() || isNumber ? std::optional(port) : std::nullopt;
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
    return Show::textDrawing(drawing, Show::terminalStyle(arguments.m_output == "-"));
}

Show::PageExtras s_extras(ShowArguments const& arguments, HostSettings const& settings,
                          Show::MessageExplainer const& explainer, Interrupt& interrupt) {
    Show::PageExtras extras;
    if (arguments.m_serve) {
        extras.m_served = settings;
    }
    Show::readMessages(arguments.m_messages, interrupt, [&](Show::PageMessage message) {
        // A page in a file cannot ask later.
        if (!arguments.m_serve) {
            message.m_record = explainer.explain(message.m_source, message.m_headers);
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
    std::cout << "The page is at " << server.address() << " until Ctrl-C." << std::endl;
    server.run(interrupt);
}

bool s_takesMessages(ShowArguments const& arguments) {
    return !arguments.m_messages.empty() || arguments.m_serve;
}

// Whether the rules have to run, and not only to be drawn.
bool s_needsEngine(ShowArguments const& arguments) {
    return !arguments.m_on.empty() || !arguments.m_vectors.empty() || s_takesMessages(arguments);
}

void s_showRunning(ShowArguments const& arguments, int port, Rules::RuleSet const& set,
                   HostSettings const& settings) {
    auto const rules = Show::shownRules(arguments.m_rules, set);
    bool const isMeasured = !arguments.m_on.empty() || !arguments.m_vectors.empty();
    TrainingMailCounts counts;
    auto const table = isMeasured ? s_mail(arguments, settings, counts) : Rules::VectorTable();
    Interrupt interrupt; // behind the measuring, which reads signals of its own
    try {
        auto const engine = engineOf(set);
        auto const traffic = s_traffic(engine, settings.m_judging, table, counts);
        Show::MessageExplainer const explainer(settings, engine,
                                               messageFacts(arguments.m_settings));
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
}

} // namespace

int show(ShowArguments const& arguments) {
    if (!arguments.m_messages.empty() && arguments.m_format != "html" && !arguments.m_serve) {
        std::cerr << "show: --message is for a page: add --format html or --serve\n";
        return ExitStatus::usage;
    }
    bool const wantsFile =
        arguments.m_format == "dot" || arguments.m_format == "svg" || arguments.m_output != "-";
    if (arguments.m_serve && wantsFile) {
        std::cerr << "show: --serve shows the page in a browser: leave out --format and -o\n";
        return ExitStatus::usage;
    }
    if (hasFacts(arguments.m_settings) && !s_takesMessages(arguments)) {
        std::cerr << "show: --env-from and the like tell about messages that a page explains: add "
                     "--message or --serve\n";
        return ExitStatus::usage;
    }
    auto const port = s_port(arguments.m_serve.value_or(""));
    if (!port) {
        std::cerr << "show: --serve takes a port from 1 to 65535, or nothing, not \""
                  << toPrintable(*arguments.m_serve) << "\"; give the rules before it\n";
        return ExitStatus::usage;
    }
    requireWritable(arguments.m_output);
    auto const settings = hostSettings(arguments.m_settings);
    auto const set = Rules::loadRules(arguments.m_rules).m_set;
    if (s_needsEngine(arguments)) {
        s_showRunning(arguments, *port, set, settings);
    } else {
        auto const rules = Show::shownRules(arguments.m_rules, set);
        writeOutput(arguments.m_output, s_drawn(arguments, {rules}, {}));
    }
    return ExitStatus::well;
}

} // namespace Quorvane::RulesApp
