// SPDX-License-Identifier: Apache-2.0
//
// What is in a file.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace Quorvane::Testing {

// Byte for byte. Throws std::runtime_error when it cannot be opened.
inline std::string readFile(std::filesystem::path const& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error(path.string() + " cannot be opened");
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace Quorvane::Testing
