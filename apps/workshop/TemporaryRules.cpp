// SPDX-License-Identifier: Apache-2.0
#include "apps/workshop/TemporaryRules.h"

#include "rules/format/RuleFiles.h"
#include "rules/model/RuleError.h"
#include "rules/model/RuleFolder.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace Quorvane::Workshop {

TemporaryRules::TemporaryRules(Rules::RuleSet const& rules) {
    std::error_code error;
    m_root = std::filesystem::temp_directory_path(error) / "qvrules-XXXXXX";
    if (error || ::mkdtemp(m_root.data()) == nullptr) {
        throw Rules::RuleError(Rules::RuleError::Kind::cannotWrite,
                               "cannot make a temporary folder; set TMPDIR to one that exists");
    }
    Rules::writeFolder(m_root + ruleDirectory, rules);
}

TemporaryRules::~TemporaryRules() {
    std::error_code ignored;
    std::filesystem::remove_all(m_root, ignored);
}

} // namespace Quorvane::Workshop
