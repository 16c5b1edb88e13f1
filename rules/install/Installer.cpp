// SPDX-License-Identifier: Apache-2.0
#include "rules/install/Installer.h"

#include "rules/install/Previous.h"
#include "rules/model/Binary.h"
#include "rules/model/Files.h"
#include "rules/model/Readme.h"
#include "rules/model/RuleError.h"
#include "rules/model/RuleFolder.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <memory>
#include <sys/file.h>
#include <thread>
#include <unistd.h>

namespace Quorvane::Rules {

namespace {

namespace fs = std::filesystem;

constexpr std::int32_t closedVersion = 0;

std::string s_gateText() {
    return "An installation of rules is under way, or was interrupted: if this text stays, run\n"
           "\"qvrules install\" or \"qvrules install --rollback\" again.\n" +
           std::string(versionKey) + std::to_string(closedVersion) + '\n';
}

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

// Holds back signals that would end the program half-way; they are delivered at the end.
class SignalsHeldBack {
  public:
    SignalsHeldBack() : m_before() {
        sigset_t signals;
        sigemptyset(&signals);
        for (auto const signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
            sigaddset(&signals, signal);
        }
        pthread_sigmask(SIG_BLOCK, &signals, &m_before);
    }
    SignalsHeldBack(SignalsHeldBack const&) = delete;
    SignalsHeldBack& operator=(SignalsHeldBack const&) = delete;
    ~SignalsHeldBack() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }

  private:
    sigset_t m_before;
};

// What is in the folder before an installation.
struct Present {
    std::optional<std::int32_t> m_version;
    // Empty when no host could load it, or when it may be a mix of two sets.
    std::optional<RuleSet> m_set;
    std::optional<RuleSet> m_previous;
};

Present s_lookAt(fs::path const& folder) {
    Present present;
    auto const readme = readFileIfThere(folder / versionFileName);
    present.m_version = readme ? readmeVersion(*readme) : std::nullopt;
    present.m_previous = previousSet(folder);
    auto const isInterrupted = readme == s_gateText();
    if (!isInterrupted && readFileIfThere(folder / treeFileName)) {
        present.m_set = readFolder(folder);
    }
    return present;
}

std::int32_t s_nextVersion(fs::path const& folder, std::optional<std::int32_t> own,
                           Present const& present) {
    auto const before = present.m_previous ? present.m_previous->version() : std::nullopt;
    auto const highest = std::max({0, present.m_version.value_or(0), before.value_or(0)});
    if (own.value_or(0) > highest) {
        return *own;
    }
    if (highest == std::numeric_limits<std::int32_t>::max()) {
        throw RuleError(RuleError::Kind::badRules,
                        (folder / versionFileName).string() +
                            ": the version has reached its limit; empty the folder, restart all "
                            "hosts and install with a small version");
    }
    return highest + 1;
}

// The files of a set, written beside those in use.
class StagedSet {
  public:
    StagedSet(fs::path const& folder, RuleSet const& set)
        : m_folder(folder), m_tree(folder / treeFileName, writeTree(set)),
          m_readme(folder / versionFileName, *set.m_readme) {
        if (set.m_elite) {
            m_elite =
                std::make_unique<StagedFile>(folder / eliteFileName, writeElite(*set.m_elite));
        }
    }

    void putInPlace() {
        if (m_elite) {
            m_elite->putInPlace();
        } else {
            removeFile(m_folder / eliteFileName);
        }
        m_tree.putInPlace();
        syncFolder(m_folder);
        m_readme.putInPlace();
        syncFolder(m_folder);
    }

  private:
    fs::path const& m_folder;
    StagedFile m_tree;
    StagedFile m_readme;
    std::unique_ptr<StagedFile> m_elite;
};

// Hosts that run without a version load whenever they look, and would read a closed gate as a
// version. For them there is no gate.
bool s_hasGate(Present const& present) {
    return present.m_set && present.m_version.value_or(closedVersion) > closedVersion;
}

void s_replace(fs::path const& folder, RuleSet const& set, Present const& present,
               std::chrono::milliseconds settle) {
    StagedSet staged(folder, set);
    if (present.m_set) {
        keepAsPrevious(folder, *present.m_set);
    }
    SignalsHeldBack const signals;
    try {
        if (s_hasGate(present)) {
            replaceFile(folder / versionFileName, s_gateText());
            std::this_thread::sleep_for(settle);
        }
        staged.putInPlace();
    } catch (RuleError const&) {
        if (present.m_set) {
            writeFolder(folder, *present.m_set);
        }
        throw;
    }
}

Installation s_install(fs::path const& folder, RuleSet set, Present const& present,
                       std::chrono::milliseconds settle) {
    set.setVersion(s_nextVersion(folder, set.version(), present));
    s_replace(folder, set, present, settle);
    return {*set.version(), present.m_set ? present.m_set->version() : std::nullopt};
}

} // namespace

Installation installRules(fs::path const& folder, RuleSet set, std::chrono::milliseconds settle) {
    makeFolder(folder);
    FolderLock const lock(folder);
    return s_install(folder, std::move(set), s_lookAt(folder), settle);
}

Installation rollBack(fs::path const& folder, std::chrono::milliseconds settle) {
    if (!fs::is_directory(folder)) {
        throw RuleError(RuleError::Kind::noInput, folder.string() + ": is not a folder");
    }
    FolderLock const lock(folder);
    auto const present = s_lookAt(folder);
    if (!present.m_previous) {
        throw RuleError(RuleError::Kind::noInput,
                        folder.string() + ": holds no previous rules to bring back");
    }
    return s_install(folder, *present.m_previous, present, settle);
}

} // namespace Quorvane::Rules
