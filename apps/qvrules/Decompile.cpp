// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/Output.h"
#include "apps/text/Utf8.h"
#include "rules/check/Checker.h"
#include "rules/language/RuleText.h"
#include "rules/model/RuleFolder.h"

#include <iostream>

namespace Quorvane::RulesApp {

int decompile(DecompileOptions const& options) {
    auto const set = Rules::readFolder(options.m_folder);
    writeOutput(options.m_source, Rules::ruleText(set));
    if (auto const problem = Rules::loadProblem(set)) {
        std::cerr << toPrintable(options.m_folder)
                  << ": engines refuse these rules, and compile refuses the text "
                  << "until it is mended: " << *problem << '\n';
        return ExitStatus::findings;
    }
    return ExitStatus::well;
}

} // namespace Quorvane::RulesApp
