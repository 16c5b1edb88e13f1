// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/Output.h"
#include "rules/language/AttributePage.h"

namespace Quorvane::RulesApp {

int listAttributes(AttributesOptions const& /*options*/) {
    writeOutput("-", Rules::attributePage());
    return ExitStatus::well;
}

} // namespace Quorvane::RulesApp
