// SPDX-License-Identifier: Apache-2.0
//
// A folder that lives as long as the object.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace Quorvane::Testing {

class TemporaryFolder {
  public:
    TemporaryFolder() {
        auto pattern = (std::filesystem::temp_directory_path() / "qvrulesXXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("no temporary folder: " + pattern);
        }
        m_path = pattern;
    }
    TemporaryFolder(TemporaryFolder const&) = delete;
    TemporaryFolder& operator=(TemporaryFolder const&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    std::filesystem::path const& path() const { return m_path; }

  private:
    std::filesystem::path m_path;
};

} // namespace Quorvane::Testing
