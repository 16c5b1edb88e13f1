// SPDX-License-Identifier: Apache-2.0
//
// NamePrinter: prints names at the rules and nodes that they belong to, each once. One object
// prints one text. `names` outlive it.
#pragma once

#include "rules/model/RuleNames.h"

#include <cstddef>
#include <set>
#include <string>

namespace Quorvane::Rules {

class NamePrinter {
  public:
    explicit NamePrinter(RuleNames const& names) : m_names(names) {}

    // The name and the sentence on lines of their own, each with a line break before it; empty when
    // there is no name, or when it has been printed.
    std::string lines(RuleKey const& key, std::size_t indent);

    // A name of a rule that is not in the text cannot be printed.
    bool hasPrintedAll() const { return m_printed.size() == m_names.size(); }

  private:
    RuleNames const& m_names;
    std::set<RuleKey> m_printed;
};

} // namespace Quorvane::Rules
