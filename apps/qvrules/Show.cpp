// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Show.h"

#include "apps/common/HostSettings.h"
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/Output.h"
#include "apps/show/Page.h"
#include "rules/language/LoadRules.h"

namespace Quorvane::RulesApp {

namespace {

std::string s_drawn(ShowArguments const& arguments, Show::Drawing const& drawing) {
    if (arguments.m_format == "dot") {
        return Show::dotDrawing(drawing);
    }
    if (arguments.m_format == "svg") {
        return Show::svgDrawing(drawing);
    }
    if (arguments.m_format == "html") {
        return Show::htmlDrawing(drawing, {programDefaults(), {}, false});
    }
    return Show::textDrawing(drawing, Show::terminalStyle(arguments.m_output == "-"));
}

} // namespace

int show(ShowArguments const& arguments) {
    auto const loaded = Rules::loadRules(arguments.m_rules);
    auto const rules = Show::shownRules(arguments.m_rules, loaded.m_set);
    writeOutput(arguments.m_output, s_drawn(arguments, {rules}));
    return ExitStatus::well;
}

} // namespace Quorvane::RulesApp
