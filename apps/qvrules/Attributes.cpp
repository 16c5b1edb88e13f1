// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/Output.h"
#include "rules/language/AttributePage.h"

namespace Quorvane::RulesApp {

int listAttributes(CommandLine const& /*line*/) {
    writeOutput("-", Rules::attributePage());
    return ExitStatus::ok;
}

} // namespace Quorvane::RulesApp
