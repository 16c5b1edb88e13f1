// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/Learn.h"
#include "apps/settings/SettingValue.h"
#include "rules/vectors/LearnError.h"

#include <charconv>
#include <limits>

namespace Quorvane::RulesApp {

namespace {

// Old mail cannot be looked up any more: the names are gone, which would be learned.
void s_turnLookupsOff(CommandLine const& line, HostSettings& host) {
    if (line.text("dns", "off") != "off" || line.has("dns-data")) {
        throw UsageError("names are looked up with --lookups only; add it to --dns and --dns-data");
    }
    host.m_dns = "off";
}

template<typename Value, typename Read>
void s_readNumber(CommandLine const& line, std::string const& name, Value& value, Read read) {
    try {
        if (line.has(name)) {
            value = static_cast<Value>(read(line.text(name)));
        }
    } catch (SettingsError const& error) {
        throw UsageError("--" + name + ": " + error.what());
    }
}

} // namespace

LearnArguments learnArguments(CommandLine const& line) {
    LearnArguments arguments;
    static_cast<MailPaths&>(arguments) = mailPaths(line);
    arguments.m_output = line.text("output");
    arguments.m_table = line.text("table");
    arguments.m_with = line.text("with");
    arguments.m_augment = line.text("augment");
    arguments.m_impurity = line.text("impurity", arguments.m_impurity);
    s_readNumber(line, "min-node-support", arguments.m_minSupport, readNumber);
    s_readNumber(line, "min-gain", arguments.m_minGain, readNumber);
    s_readNumber(line, "max-nodes", arguments.m_maxNodes, [](std::string const& text) {
        using Limits = std::numeric_limits<int>;
        return readInteger(text, Limits::min(), Limits::max());
    });
    arguments.m_prune = line.text("prune", arguments.m_prune);
    arguments.m_exclude = line.texts("exclude");
    arguments.m_lookups = line.has("lookups");
    arguments.m_host = hostSettings(line);
    if (!arguments.m_lookups) {
        s_turnLookupsOff(line, arguments.m_host);
    }
    return arguments;
}

Rules::LearnSettings learnSettings(LearnArguments const& arguments) {
    Rules::LearnSettings settings;
    settings.m_impurity =
        arguments.m_impurity == "gini" ? Rules::ImpurityKind::gini : Rules::ImpurityKind::entropy;
    settings.m_minSupport = arguments.m_minSupport;
    settings.m_minGain = arguments.m_minGain;
    settings.m_maxNodes = arguments.m_maxNodes;
    if (arguments.m_lookups) {
        settings.m_attributes.fill(true);
    }
    try {
        for (auto const& name : arguments.m_exclude) {
            Rules::selectAttribute(settings.m_attributes, name, false);
        }
        Rules::checkSettings(settings);
    } catch (Rules::LearnError const& error) {
        throw UsageError(error.what()); // here it is the command line that is wrong
    }
    return settings;
}

Rules::PruningPlan pruningPlan(LearnArguments const& arguments) {
    auto const& text = arguments.m_prune;
    if (text == "minimum") {
        return Rules::PruningRule::minimum;
    }
    if (text == "one-se") {
        return Rules::PruningRule::oneStandard;
    }
    if (text == "none") {
        return 0.0;
    }
    double alpha = 0.0;
    auto const* const end = text.data() + text.size();
    auto const result = std::from_chars(text.data(), end, alpha);
    if (result.ec != std::errc() || result.ptr != end || !(alpha >= 0.0)) {
        throw UsageError("--prune takes minimum, one-se, none or a number from 0 on, not '" + text +
                         "'");
    }
    return alpha;
}

TrainingMail trainingMail(LearnArguments const& arguments) {
    TrainingMail mail;
    mail.m_paths = arguments;
    mail.m_copies = arguments.m_augment.empty() ? Copies::none : Copies::together;
    mail.m_host = arguments.m_host;
    return mail;
}

} // namespace Quorvane::RulesApp
