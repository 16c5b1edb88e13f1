// SPDX-License-Identifier: Apache-2.0
#include "apps/qvrules/Commands.h"
#include "rules/language/LoadRules.h"
#include "rules/model/RuleError.h"
#include "rules/model/RuleFolder.h"

namespace Quorvane::RulesApp {

int compile(CompileOptions const& options) {
    std::error_code error; // loadRules says what is wrong with a path
    if (std::filesystem::is_directory(options.m_source, error)) {
        throw Rules::RuleError(Rules::RuleError::Kind::noInput,
                               options.m_source + ": is a folder; compile takes a rule text, "
                                                  "\"qvrules decompile\" makes one of a folder\n");
    }
    auto const rules = Rules::loadRules(options.m_source);
    Rules::writeFolder(options.m_folder, rules.m_set);
    return ExitStatus::well;
}

} // namespace Quorvane::RulesApp
