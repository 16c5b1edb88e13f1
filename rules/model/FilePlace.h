// SPDX-License-Identifier: Apache-2.0
//
// FilePlace: where in a file something is wrong. A plain value.
#pragma once

#include <cstddef>
#include <string>

namespace Quorvane::Rules {

struct FilePlace {
    std::string m_file;
    // Both count from 1; 0: not known.
    std::size_t m_line = 0;
    std::size_t m_column = 0;

    // "FILE:LINE:COLUMN: ", as far as it is known.
    std::string text() const {
        auto const part = [](std::size_t number) {
            return number == 0 ? "" : ':' + std::to_string(number);
        };
        return m_file.empty() ? "" : m_file + part(m_line) + part(m_column) + ": ";
    }
};

} // namespace Quorvane::Rules
