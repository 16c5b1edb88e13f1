// SPDX-License-Identifier: Apache-2.0
//
// TemporaryRules: a root folder with rules in it, for an engine of our own. Owns the folder and
// removes it. A RuleError when the temporary folder cannot be used.
#pragma once

#include "rules/model/RuleSet.h"

#include <string>

namespace Quorvane::Workshop {

class TemporaryRules {
  public:
    explicit TemporaryRules(Rules::RuleSet const& rules);
    TemporaryRules(TemporaryRules const&) = delete;
    TemporaryRules& operator=(TemporaryRules const&) = delete;
    ~TemporaryRules();

    std::string const& root() const { return m_root; }

  private:
    std::string m_root;
};

} // namespace Quorvane::Workshop
