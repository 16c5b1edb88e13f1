// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Show.h"

#include "apps/common/HostSettings.h"
#include "apps/qvrules/Commands.h"
#include "apps/show/Page.h"
#include "rules/language/LoadRules.h"
#include "rules/model/Files.h"

#include <iostream>

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
    auto const text = s_drawn(arguments, {rules});
    if (arguments.m_output == "-") {
        std::cout << text;
    } else {
        Rules::replaceFile(arguments.m_output, text);
    }
    return ExitStatus::well;
}

} // namespace Quorvane::RulesApp
