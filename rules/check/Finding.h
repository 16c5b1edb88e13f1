// SPDX-License-Identifier: Apache-2.0
//
// What the checker found, where, and what to do about it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Quorvane::Rules {

struct Finding {
    enum class Severity {
        error,      // an engine refuses the set, or loses a part of it
        warning,    // the set loads, and does not do what it seems to say
        difference, // the rule files in use differ from the rules
    };
    // Which of the three files, or all of them together.
    enum class File { readme, tree, elite, all };

    Severity m_severity;
    // A short name that scripts can rely on.
    char const* m_id;
    File m_file;
    std::string m_problem;
    std::string m_advice;
    // The node, or the elite rule counted from 1, and the condition in it, also from 1; empty when
    // the finding is about the whole file.
    std::optional<std::int32_t> m_number{};
    std::optional<std::int32_t> m_condition{};
};

using Findings = std::vector<Finding>;

} // namespace Quorvane::Rules
