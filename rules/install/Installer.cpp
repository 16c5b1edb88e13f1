// SPDX-License-Identifier: Apache-2.0
#include "rules/install/Installer.h"

#include "rules/install/SetFolders.h"
#include "rules/model/Files.h"
#include "rules/model/RuleError.h"
#include "rules/model/RuleFolder.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <sys/file.h>
#include <unistd.h>
#include <utility>

namespace Quorvane::Rules {

namespace {

namespace fs = std::filesystem;

// Waits until no other installation works in a folder, and holds its lock.
class FolderLock {
  public:
    explicit FolderLock(fs::path const& folder)
        : m_fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        int result = m_fd;
        while (result >= 0 && (result = ::flock(m_fd, LOCK_EX)) < 0 && errno == EINTR) {
            result = m_fd;
        }
        if (result < 0) {
            auto const error = errno;
            if (m_fd >= 0) {
                ::close(m_fd);
            }
            throw RuleError(RuleError::Kind::cannotWrite,
                            folder.string() + ": cannot be locked: " + std::strerror(error));
        }
    }
    FolderLock(FolderLock const&) = delete;
    FolderLock& operator=(FolderLock const&) = delete;
    ~FolderLock() { ::close(m_fd); }

  private:
    int m_fd;
};

using SetFolders = std::vector<SetFolder>;

SetFolders::const_iterator s_named(SetFolders const& sets, std::string const& name) {
    return std::find_if(sets.begin(), sets.end(),
                        [&name](SetFolder const& set) { return set.m_name == name; });
}

SetFolders::const_iterator s_ofVersion(SetFolders const& sets, std::int32_t version) {
    return std::find_if(sets.begin(), sets.end(),
                        [version](SetFolder const& set) { return set.m_set.m_version == version; });
}

std::vector<InstalledSet> s_install(fs::path const& folder, RuleSet set, Origin const& origin) {
    set.setVersion(versionFor(folder, set));
    putInForce(folder, set, origin);
    return installedSets(folder);
}

// The set that a rollback brings back.
SetFolder s_wanted(fs::path const& folder, SetFolders const& sets,
                   std::optional<std::int32_t> version) {
    auto const before = sets.empty() ? std::string() : sets.front().m_before;
    auto const found = version          ? s_ofVersion(sets, *version)
                       : before.empty() ? sets.end()
                                        : s_named(sets, before);
    if (found != sets.end()) {
        return *found;
    }
    auto const problem = version ? ": holds no rules of version " + std::to_string(*version) +
                                       "; \"qvrules status\" lists what is kept"
                                 : std::string(": holds no previous rules to bring back");
    throw RuleError(RuleError::Kind::noInput, folder.string() + problem);
}

} // namespace

std::vector<InstalledSet> installedSets(fs::path const& folder) {
    auto const folders = setFolders(folder);
    std::vector<InstalledSet> sets;
    for (auto const& one : folders) {
        sets.push_back(one.m_set);
        auto const before = s_named(folders, one.m_before);
        if (before != folders.end()) {
            sets.back().m_before = before->m_set.m_version;
        }
    }
    return sets;
}

std::int32_t versionFor(fs::path const& folder, RuleSet const& set) {
    auto const readme = readFileIfThere(folder / versionFileName);
    auto highest = std::max(0, readme ? readmeVersion(*readme).value_or(0) : 0);
    for (auto const& one : installedSets(folder)) {
        highest = std::max(highest, one.m_version);
    }
    auto const own = set.version().value_or(0);
    if (own <= highest && highest == std::numeric_limits<std::int32_t>::max()) {
        throw RuleError(RuleError::Kind::badRules,
                        (folder / versionFileName).string() +
                            ": the version has reached its limit; empty the folder, restart all "
                            "hosts and install with a small version");
    }
    return own > highest ? own : highest + 1;
}

std::vector<InstalledSet> installRules(fs::path const& folder, RuleSet set,
                                       std::string const& source) {
    makeFolder(folder);
    FolderLock const lock(folder);
    adoptFiles(folder);
    sweepSets(folder);
    auto const sets = setFolders(folder);
    return s_install(folder, std::move(set),
                     {source, std::nullopt, sets.empty() ? std::string() : sets.front().m_name});
}

std::vector<InstalledSet> rollBack(fs::path const& folder, std::optional<std::int32_t> version) {
    if (!fs::is_directory(folder)) {
        throw RuleError(RuleError::Kind::noInput, folder.string() + ": is not a folder");
    }
    FolderLock const lock(folder);
    adoptFiles(folder);
    auto const sets = setFolders(folder);
    auto const wanted = s_wanted(folder, sets, version);
    auto const rules = readFolder(wanted.m_set.m_folder);
    sweepSets(folder);
    return s_install(folder, rules,
                     {wanted.m_set.m_source,
                      wanted.m_set.m_restored.value_or(wanted.m_set.m_version),
                      version ? sets.front().m_name : wanted.m_before});
}

} // namespace Quorvane::Rules
