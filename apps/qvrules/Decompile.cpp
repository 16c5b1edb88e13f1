// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/Output.h"
#include "apps/text/Utf8.h"
#include "rules/check/Checker.h"
#include "rules/language/RuleText.h"
#include "rules/model/RuleFolder.h"

#include <iostream>

namespace Quorvane::RulesApp {

int decompile(CommandLine const& line) {
    auto const folder = line.text("DIR");
    auto const set = Rules::readFolder(folder);
    writeOutput(line.text("output", "-"), Rules::ruleText(set));
    if (auto const problem = Rules::loadProblem(set)) {
        std::cerr << toPrintable(folder)
                  << ": engines refuse these rules, and compile refuses the text "
                  << "until it is mended: " << *problem << '\n';
        return ExitStatus::findings;
    }
    return ExitStatus::ok;
}

} // namespace Quorvane::RulesApp
