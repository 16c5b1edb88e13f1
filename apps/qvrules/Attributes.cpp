// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Commands.h"
#include "rules/language/AttributePage.h"

#include <iostream>

namespace Quorvane::RulesApp {

int listAttributes(AttributesOptions const& /*options*/) {
    std::cout << Rules::attributePage();
    return ExitStatus::well;
}

} // namespace Quorvane::RulesApp
