// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Commands.h"
#include "rules/language/LoadRules.h"
#include "rules/model/RuleError.h"
#include "rules/model/RuleFolder.h"

namespace Quorvane::RulesApp {

int compile(CommandLine const& line) {
    auto const source = line.text("SRC");
    std::error_code error; // loadRules says what is wrong with a path
    if (std::filesystem::is_directory(source, error)) {
        throw Rules::RuleError(Rules::RuleError::Kind::noInput,
                               source + ": is a folder; compile takes a rule text, "
                                        "\"qvrules decompile\" makes one of a folder\n");
    }
    auto const rules = Rules::loadRules(source);
    Rules::writeFolder(line.text("output"), rules.m_set);
    return ExitStatus::ok;
}

} // namespace Quorvane::RulesApp
