// SPDX-License-Identifier: Apache-2.0
//
// EmptyRules: a root folder whose rules decide nothing, for programs that want the attributes of
// messages and no verdict: the engine will not start without a tree. Owns the folder and removes
// it. A RuleError when the temporary folder cannot be used.
#pragma once

#include <string>

namespace Quorvane::Workshop {

class EmptyRules {
  public:
    EmptyRules();
    EmptyRules(EmptyRules const&) = delete;
    EmptyRules& operator=(EmptyRules const&) = delete;
    ~EmptyRules();

    std::string const& root() const { return m_root; }

  private:
    std::string m_root;
};

} // namespace Quorvane::Workshop
