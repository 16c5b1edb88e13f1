// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/Learn.h"
#include "rules/vectors/LearnError.h"

#include <charconv>

namespace Quorvane::RulesApp {

namespace {

// Old mail cannot be looked up any more: the names are gone, which would be learned.
GivenSettings s_withoutLookups(GivenSettings given) {
    auto const dns = given.find("dns");
    bool const asksServer = dns != given.end() && dns->second != std::vector<std::string>{"off"};
    if (asksServer || given.count("dns-data") != 0) {
        throw UsageError("names are looked up with --lookups only; add it to --dns and --dns-data");
    }
    given["dns"] = {"off"};
    return given;
}

} // namespace

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
    auto const given =
        arguments.m_lookups ? arguments.m_settings : s_withoutLookups(arguments.m_settings);
    TrainingMail mail;
    mail.m_paths = arguments;
    mail.m_copies = arguments.m_augment.empty() ? Copies::none : Copies::together;
    mail.m_host = hostSettings(given);
    return mail;
}

} // namespace Quorvane::RulesApp
