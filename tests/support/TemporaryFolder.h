// SPDX-License-Identifier: Apache-2.0
//
// A folder for one test, gone with the object.
#pragma once

#include "support/ReadFile.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Quorvane::Testing {

class TemporaryFolder {
  public:
    TemporaryFolder() {
        auto pattern = (std::filesystem::temp_directory_path() / "qvtest-XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("mkdtemp");
        }
        m_path = pattern;
    }
    TemporaryFolder(TemporaryFolder const&) = delete;
    TemporaryFolder& operator=(TemporaryFolder const&) = delete;
    ~TemporaryFolder() {
        std::error_code error;
        std::filesystem::remove_all(m_path, error);
    }

    std::filesystem::path const& path() const { return m_path; }

    // Writes a file, with the folders on the way; its path.
    std::string write(std::string const& name, std::string_view text) const {
        auto const path = m_path / name;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary)
            .write(text.data(), static_cast<std::streamsize>(text.size()));
        return path.string();
    }

    // The path of what may or may not be there.
    std::string path(std::string const& name) const { return (m_path / name).string(); }
    std::string read(std::string const& name) const { return readFile(m_path / name); }

  private:
    std::filesystem::path m_path;
};

} // namespace Quorvane::Testing
