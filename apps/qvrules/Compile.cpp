// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Commands.h"
#include "apps/qvrules/Output.h"
#include "apps/text/Utf8.h"
#include "rules/check/Checker.h"
#include "rules/language/LoadRules.h"
#include "rules/language/RuleText.h"
#include "rules/model/RuleError.h"
#include "rules/model/RuleFolder.h"

#include <iostream>

namespace Quorvane::RulesApp {

int compile(CommandLine const& line) {
    auto const source = line.text("SRC");
    std::error_code error; // loadRules says what is wrong with a path
    if (std::filesystem::is_directory(source, error)) {
        throw Rules::RuleError(Rules::RuleError::Kind::noInput,
                               source + ": is a folder; compile takes a rule text, "
                                        "which \"qvrules decompile\" makes from a folder\n");
    }
    auto const rules = Rules::loadRules(source);
    Rules::writeFolder(line.text("output"), rules.m_set);
    return ExitStatus::ok;
}

int decompile(CommandLine const& line) {
    auto const folder = line.text("DIR");
    auto const set = Rules::readFolder(folder);
    writeOutput(line.text("output", "-"), Rules::ruleText(set));
    if (auto const problem = Rules::loadProblem(set)) {
        std::cerr << toPrintable(folder)
                  << ": engines refuse these rules, and compile refuses the text "
                  << "until it is corrected: " << *problem << '\n';
        return ExitStatus::findings;
    }
    return ExitStatus::ok;
}

} // namespace Quorvane::RulesApp
