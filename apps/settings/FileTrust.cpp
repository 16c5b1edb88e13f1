// SPDX-License-Identifier: Apache-2.0
#include "apps/settings/FileTrust.h"

#include "apps/settings/SettingValue.h"
#include "rules/format/RulePlace.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace Quorvane {

namespace {

namespace fs = std::filesystem;

bool s_isStartedByRoot() {
    static bool const isRoot = ::geteuid() == 0;
    return isRoot;
}

[[noreturn]] void s_refuse(fs::path const& path, fs::path const& place, std::string const& what,
                           std::string const& remedy) {
    throw SettingsError(path.string() + ": " + (place == path ? "it" : place.string()) + ' ' +
                        what + "; what a program of root reads must not be others' to change: " +
                        remedy + ' ' + place.string());
}

std::string s_octal(mode_t mode) {
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "%04o", mode & 07777U);
    return text.data();
}

// `place`: the file at `path`, or a folder above it.
void s_require(fs::path const& path, fs::path const& place) {
    struct stat facts {};
    if (::stat(place.c_str(), &facts) != 0) {
        return;
    }
    if (facts.st_uid != 0 && facts.st_uid != ::geteuid()) {
        s_refuse(path, place, "belongs to the user " + std::to_string(facts.st_uid), "chown root");
    }
    bool const isSticky = S_ISDIR(facts.st_mode) && (facts.st_mode & S_ISVTX) != 0;
    if ((facts.st_mode & (S_IWGRP | S_IWOTH)) != 0 && !isSticky) {
        s_refuse(path, place, "can be written by others (mode " + s_octal(facts.st_mode) + ')',
                 "chmod go-w");
    }
}

void s_requireWithFolders(fs::path const& path, fs::path place) {
    for (; place.has_relative_path(); place = place.parent_path()) {
        s_require(path, place);
    }
    s_require(path, place); // the root folder
}

} // namespace

void requireOwnFile(std::string const& path) {
    std::error_code error;
    auto const target = fs::canonical(path, error);
    if (!s_isStartedByRoot() || error) {
        return;
    }
    s_requireWithFolders(path, target);
    s_requireWithFolders(path, fs::absolute(path).lexically_normal());
}

void requireOwnRules(std::string const& root) {
    auto const folder = ruleFolderOfRoot(root);
    for (auto const* const name : ruleFileNames) {
        requireOwnFile(folder / name);
    }
}

void requireOwnFiles(HostSettings const& settings) {
    requireOwnRules(settings.m_root);
    for (auto const& path : {settings.m_dynamicPatterns, settings.m_dnsData}) {
        if (!path.empty()) {
            requireOwnFile(path);
        }
    }
}

} // namespace Quorvane
