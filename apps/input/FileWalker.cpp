// SPDX-License-Identifier: Apache-2.0
#include "apps/input/FileWalker.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <system_error>

namespace Quorvane {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view indexPrefixes[] = {"dovecot", "courierimap", "maildirsize",
                                              "maildirfolder", "subscriptions"};

// One of the three may be missing: copies and archives leave empty folders out.
bool s_isMaildir(fs::path const& folder) {
    std::error_code error;
    int count = 0;
    for (auto const* const name : {"cur", "new", "tmp"}) {
        count += fs::is_directory(folder / name, error) ? 1 : 0;
    }
    return count >= 2;
}

// Folders of a Maildir begin with a dot (".Sent"), hidden files of other folders do too.
bool s_isWanted(fs::directory_entry const& entry, bool isMaildir) {
    std::error_code error;
    auto const name = entry.path().filename().string();
    bool const isFolder = entry.is_directory(error) && !entry.is_symlink(error);
    if (isMaildir) {
        return isFolder && name != "tmp" && (name == "cur" || name == "new" || name[0] == '.');
    }
    return isFolder ? name[0] != '.' : entry.is_regular_file(error) && isMailFileName(name);
}

std::vector<fs::path> s_list(fs::path const& folder, std::error_code& error) {
    bool const isMaildir = s_isMaildir(folder);
    std::vector<fs::path> paths;
    for (fs::directory_iterator entries(folder, error); !error && entries != fs::end(entries);
         entries.increment(error)) {
        if (s_isWanted(*entries, isMaildir)) {
            paths.push_back(entries->path());
        }
    }
    std::sort(paths.begin(), paths.end(),
              [](fs::path const& a, fs::path const& b) { return a.native() < b.native(); });
    return paths;
}

} // namespace

bool isMailFileName(std::string_view name) {
    return !name.empty() && name[0] != '.' &&
           std::none_of(std::begin(indexPrefixes), std::end(indexPrefixes),
                        [name](std::string_view prefix) { return name.starts_with(prefix); });
}

FileWalker::FileWalker(std::vector<std::string> const& paths) {
    std::transform(paths.rbegin(), paths.rend(), std::back_inserter(m_pending), inputName);
}

bool FileWalker::next(Entry& entry) {
    while (!m_pending.empty()) {
        entry = {std::move(m_pending.back()), {}};
        m_pending.pop_back();
        std::error_code error;
        auto const& path = entry.m_name.m_path;
        if (path == "-" || !fs::is_directory(path, error)) {
            return true;
        }
        entry.m_error = openFolder(path);
        if (!entry.m_error.empty()) {
            return true;
        }
    }
    return false;
}

// The error; empty: none.
std::string FileWalker::openFolder(fs::path const& folder) {
    std::error_code error;
    auto const paths = s_list(folder, error);
    if (error) {
        return error.message();
    }
    for (auto path = paths.rbegin(); path != paths.rend(); ++path) {
        m_pending.push_back({path->string(), {}, 0});
    }
    return {};
}

} // namespace Quorvane
