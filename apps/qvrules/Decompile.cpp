// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Commands.h"
#include "rules/language/RuleText.h"
#include "rules/model/Files.h"
#include "rules/model/RuleFolder.h"

#include <iostream>

namespace Quorvane::RulesApp {

int decompile(DecompileOptions const& options) {
    auto const text = Rules::ruleText(Rules::readFolder(options.m_folder));
    if (options.m_source == "-") {
        std::cout << text;
    } else {
        Rules::replaceFile(options.m_source, text);
    }
    return ExitStatus::well;
}

} // namespace Quorvane::RulesApp
