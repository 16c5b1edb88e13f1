// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Output.h"

#include "rules/model/Files.h"
#include "rules/model/RuleError.h"

#include <iostream>

namespace Quorvane::RulesApp {

void writeOutput(std::string const& path, std::string const& text) {
    if (path != "-") {
        Rules::replaceFile(path, text);
        return;
    }
    std::cout << text << std::flush;
    if (!std::cout) {
        throw Rules::RuleError(Rules::RuleError::Kind::cannotWrite,
                               "standard output: cannot be written");
    }
}

} // namespace Quorvane::RulesApp
