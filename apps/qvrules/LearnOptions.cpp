// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/Learn.h"
#include "apps/settings/SettingValue.h"
#include "rules/vectors/LearnError.h"

#include <charconv>

namespace Quorvane::RulesApp {

namespace {

// Old mail cannot be looked up any more: the names are gone, which would be learned.
void s_turnLookupsOff(CommandLine const& line, HostSettings& host) {
    if (line.text("dns", "off") != "off" || line.has("dns-data")) {
        throw UsageError("names are looked up with --lookups only; add it to --dns and --dns-data");
    }
    host.m_dns = "off";
}

// Leaves the default where nothing is given.
template<typename Number>
void s_readNumber(CommandLine const& line, std::string const& name, Number& number) {
    try {
        if (line.has(name)) {
            readSetting(line.text(name), number);
        }
    } catch (SettingsError const& error) {
        throw UsageError("--" + name + ": " + error.what());
    }
}

} // namespace

Rules::LearnSettings learnSettings(CommandLine const& line) {
    Rules::LearnSettings settings;
    settings.m_impurity =
        line.text("impurity") == "gini" ? Rules::ImpurityKind::gini : Rules::ImpurityKind::entropy;
    s_readNumber(line, "min-node-support", settings.m_minSupport);
    s_readNumber(line, "min-gain", settings.m_minGain);
    s_readNumber(line, "max-nodes", settings.m_maxNodes);
    if (line.has("lookups")) {
        settings.m_attributes.fill(true);
    }
    try {
        for (auto const& name : line.texts("exclude")) {
            Rules::selectAttribute(settings.m_attributes, name, false);
        }
        Rules::checkSettings(settings);
    } catch (Rules::LearnError const& error) {
        throw UsageError(error.what()); // here it is the command line that is wrong
    }
    return settings;
}

Rules::PruningPlan pruningPlan(CommandLine const& line) {
    auto const text = line.text("prune", "minimum");
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

TrainingMail trainingMail(CommandLine const& line) {
    TrainingMail mail{mailPaths(line), line.has("augment") ? Copies::together : Copies::none,
                      hostSettings(line)};
    if (!line.has("lookups")) {
        s_turnLookupsOff(line, mail.m_host);
    }
    return mail;
}

} // namespace Quorvane::RulesApp
