// SPDX-License-Identifier: Apache-2.0
#include "apps/workshop/TemporaryRules.h"

#include "rules/format/RuleFiles.h"
#include "rules/model/RuleError.h"
#include "rules/model/RuleFolder.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace Quorvane::Workshop {

TemporaryRules::TemporaryRules(Rules::RuleSet const& rules)
    : m_root(std::filesystem::temp_directory_path() / "qvrules-XXXXXX") {
    if (::mkdtemp(m_root.data()) == nullptr) {
        throw Rules::RuleError(Rules::RuleError::Kind::cannotWrite,
                               m_root + ": cannot make a temporary folder; set TMPDIR");
    }
    Rules::writeFolder(m_root + ruleDirectory, rules);
}

TemporaryRules::~TemporaryRules() {
    std::error_code ignored;
    std::filesystem::remove_all(m_root, ignored);
}

} // namespace Quorvane::Workshop
