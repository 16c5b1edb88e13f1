// SPDX-License-Identifier: Apache-2.0
//
// ExplainInput: what is to be explained, from one argument of a command line:
//
//   -             standard input
//   a file        that exists, or an archive (tar, zip), packed (gzip, bzip2, xz, zstd) or not; or
//   a
//                 part of it, as reports name it (InputName.h)
//   NAME=VALUE,…  any other argument with a "=": an attribute vector (VectorText.h)
//
// Standard input or file is a table of vectors when it begins with "source,", as the tables of
// `qvscan --format csv` do; otherwise it is a message or an mbox. One object, one thread.
#pragma once

#include "apps/input/Archive.h"
#include "apps/input/InputName.h"
#include "apps/input/Interrupt.h"
#include "platform/HeaderReader.h"
#include "rules/vectors/VectorTable.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace Quorvane::Workshop {

struct AskedItem {
    std::string m_source; // as qvscan names it; "vector" for one from the command line
    // Not empty: it is no message or cannot be read; with the exit status for that.
    std::string m_problem = {};
    int m_exitStatus = 0;
    // Of a message; empty when the item is a vector.
    std::optional<HeaderContainer> m_headers = {};
    // Empty for the row of a message that could not be judged.
    std::optional<Rules::AttributeVector> m_vector = {};
};

class ExplainInput {
  public:
    // A RuleError for what cannot be opened, or is not a vector. `interrupt` outlives the object.
    ExplainInput(std::string argument, HeaderLimits const& limits, Interrupt& interrupt);

    // Whether it holds vectors, not messages.
    bool isVectors() const { return m_kind != Kind::messages; }

    // Passes all items to `sink`, in order. Call it once. A RuleError for a table that is damaged;
    // Interrupted.
    void read(std::function<void(AskedItem const&)> const& sink);

  private:
    enum class Kind { messages, table, vector };

    void readMessages(std::function<void(AskedItem const&)> const& sink);

    std::string m_argument;
    HeaderLimits m_limits;
    Interrupt& m_interrupt;
    Kind m_kind = Kind::messages;
    OpenInput m_opened; // unless it is a vector, or a part of a file
    Rules::AttributeVector m_vector{};
};

} // namespace Quorvane::Workshop
