// SPDX-License-Identifier: Apache-2.0
//
// Whole files, read with a limit and replaced in one step. Errors are RuleErrors with the path.
#pragma once

#include "rules/model/RuleSet.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string_view>

namespace Quorvane::Rules {

// Far above any rule set (5,001 elite rules of 100 conditions are 6.2 MB). A larger file is not a
// rule file, and reading it would only fill the memory.
inline constexpr std::size_t maxRuleFileSize = 64U << 20U;

// The content of `path`; empty when there is no such file.
std::optional<Bytes> readFileIfThere(std::filesystem::path const& path);
// The same; no such file is an error.
Bytes readFile(std::filesystem::path const& path);

// A new file written and synced beside the old one, mode 644, waiting to replace it.
class StagedFile {
  public:
    StagedFile(std::filesystem::path path, std::string_view content);
    StagedFile(StagedFile const&) = delete;
    StagedFile& operator=(StagedFile const&) = delete;
    // Removes the new file unless it was put in place.
    ~StagedFile();

    // Renames the new file over the old one. The folder is not synced.
    void putInPlace();

  private:
    std::filesystem::path m_path;
    std::string m_temporary;
};

// Puts `content` at `path` in one step, mode 644: a reader finds the old file or the whole new one,
// also after a power cut.
void replaceFile(std::filesystem::path const& path, std::string_view content);
// Removes a file, if there is one.
void removeFile(std::filesystem::path const& path);
// Makes renames and removals in `folder` survive a power cut.
void syncFolder(std::filesystem::path const& folder);
// Creates `folder` with all its parents.
void makeFolder(std::filesystem::path const& folder);

} // namespace Quorvane::Rules
