// SPDX-License-Identifier: Apache-2.0
#include "rules/language/LoadRules.h"

#include "rules/format/RulePlace.h"
#include "rules/model/Files.h"
#include "rules/model/RuleError.h"
#include "rules/model/RuleFolder.h"

#include <utility>

namespace Quorvane::Rules {

LoadedRules loadRules(std::filesystem::path const& path) {
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) {
        auto set = readFolder(ruleFolderOf(path));
        auto names = readNames(set.m_names);
        return {std::move(set), false, {}, std::move(names)};
    }
    auto const text = readFile(path);
    auto compiled = compileRules(text);
    if (!compiled.m_errors.empty()) {
        auto const& first = compiled.m_errors.front().m_position;
        throw RuleError(RuleError::Kind::badData,
                        showErrors(path.string(), text, compiled.m_errors),
                        {path.string(), first.m_line, first.m_column});
    }
    auto names = readNames(compiled.m_set.m_names);
    return {std::move(compiled.m_set), true, std::move(compiled.m_places), std::move(names)};
}

} // namespace Quorvane::Rules
