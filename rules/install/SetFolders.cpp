// SPDX-License-Identifier: Apache-2.0
#include "rules/install/SetFolders.h"

#include "rules/model/Files.h"
#include "rules/model/RuleError.h"
#include "rules/model/RuleFolder.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <tuple>

namespace Quorvane::Rules {

namespace {

namespace fs = std::filesystem;

constexpr char setsName[] = "sets";
constexpr char currentName[] = "current";
constexpr char originName[] = "origin";
// Below "sets": a set that is not complete yet, and one that is going away.
constexpr char stagingName[] = ".new";
constexpr char leavingName[] = ".old";
// Beside a link: the one that replaces it.
constexpr char stagedLinkSuffix[] = ".new";

[[noreturn]] void s_fail(fs::path const& path, char const* what, std::error_code const& error) {
    throw RuleError(RuleError::Kind::cannotWrite,
                    path.string() + ": " + what + ": " + error.message());
}

void s_removeAll(fs::path const& path) {
    std::error_code error;
    fs::remove_all(path, error);
    if (error) {
        s_fail(path, "cannot be removed", error);
    }
}

void s_rename(fs::path const& from, fs::path const& to) {
    std::error_code error;
    fs::rename(from, to, error);
    if (error) {
        s_fail(to, "cannot be replaced", error);
    }
}

// Replaced in one step if there is one.
void s_putLink(fs::path const& link, fs::path const& target) {
    auto const staged = link.parent_path() / ("." + link.filename().string() + stagedLinkSuffix);
    s_removeAll(staged); // of an installation that was killed
    std::error_code error;
    fs::create_symlink(target, staged, error);
    if (error) {
        s_fail(staged, "cannot be made", error);
    }
    s_rename(staged, link);
}

// Empty when `link` is none.
fs::path s_target(fs::path const& link) {
    std::error_code error;
    auto target = fs::read_symlink(link, error);
    return error ? fs::path() : target;
}

bool s_isOurLink(fs::path const& folder, char const* name) {
    return s_target(folder / name) == fs::path(currentName) / name;
}

// --- origin -------------------------------------------------------------------------------------

constexpr std::string_view sourceKey = "source=";
constexpr std::string_view restoredKey = "restored=";
constexpr std::string_view beforeKey = "before=";

std::string s_originText(Origin const& origin) {
    auto source = origin.m_source;
    std::replace_if(
        source.begin(), source.end(), [](char c) { return c == '\n' || c == '\r'; }, '?');
    std::string text(sourceKey);
    text += source + '\n';
    if (origin.m_restored) {
        text += std::string(restoredKey) + std::to_string(*origin.m_restored) + '\n';
    }
    return text + std::string(beforeKey) + origin.m_before + '\n';
}

Origin s_readOrigin(fs::path const& set) {
    Origin origin;
    std::string_view rest;
    auto const text = readFileIfThere(set / originName).value_or(Bytes());
    for (rest = text; !rest.empty();) {
        auto const line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        if (line.substr(0, sourceKey.size()) == sourceKey) {
            origin.m_source = line.substr(sourceKey.size());
        } else if (line.substr(0, beforeKey.size()) == beforeKey) {
            origin.m_before = line.substr(beforeKey.size());
        } else if (line.substr(0, restoredKey.size()) == restoredKey) {
            origin.m_restored = static_cast<std::int32_t>(
                std::strtol(std::string(line.substr(restoredKey.size())).c_str(), nullptr, 10));
        }
    }
    return origin;
}

// --- sets ---------------------------------------------------------------------------------------

SetFolder s_readSet(fs::path const& path, std::string const& name) {
    auto const origin = s_readOrigin(path);
    auto const readme = readFileIfThere(path / versionFileName);
    SetFolder set{name, {}, origin.m_before};
    set.m_set.m_version = readme ? readmeVersion(*readme).value_or(0) : 0;
    std::error_code error;
    set.m_set.m_installed = fs::last_write_time(path / treeFileName, error);
    set.m_set.m_source = origin.m_source;
    set.m_set.m_restored = origin.m_restored;
    set.m_set.m_folder = path;
    return set;
}

std::string s_inForce(fs::path const& folder) {
    return s_target(folder / currentName).filename();
}

// Whether files stand where the links belong.
bool s_hasForeignFiles(fs::path const& folder) {
    return std::any_of(ruleFileNames.begin(), ruleFileNames.end(), [&folder](char const* name) {
        std::error_code error;
        return fs::exists(folder / name, error) && !s_isOurLink(folder, name);
    });
}

// A name below "sets" that no other set has.
std::string s_freeName(fs::path const& folder, std::int32_t version) {
    auto const sets = folder / setsName;
    auto name = std::to_string(version);
    std::error_code error;
    for (int number = 2; fs::exists(sets / name, error); ++number) {
        name = std::to_string(version) + '-' + std::to_string(number);
    }
    return name;
}

void s_removeSet(fs::path const& folder, std::string const& name) {
    auto const leaving = folder / setsName / leavingName;
    s_rename(folder / setsName / name, leaving);
    s_removeAll(leaving);
}

// A new set, filled by `fill`, under a name of its own; complete and synced when it gets that.
template<typename Fill>
std::string s_addSet(fs::path const& folder, std::int32_t version, Origin const& origin,
                     Fill const& fill) {
    auto const staging = folder / setsName / stagingName;
    s_removeAll(staging); // of an installation that was killed
    makeFolder(staging);
    fill(staging);
    replaceFile(staging / originName, s_originText(origin));
    auto name = s_freeName(folder, version);
    s_rename(staging, folder / setsName / name);
    syncFolder(folder / setsName);
    return name;
}

void s_makeCurrent(fs::path const& folder, std::string const& name) {
    s_putLink(folder / currentName, fs::path(setsName) / name);
    syncFolder(folder);
}

void s_putFileLinks(fs::path const& folder) {
    for (auto const* const name : ruleFileNames) {
        if (!s_isOurLink(folder, name)) {
            s_putLink(folder / name, fs::path(currentName) / name);
        }
    }
    syncFolder(folder);
}

void s_copyFiles(fs::path const& from, fs::path const& to) {
    for (auto const* const name : ruleFileNames) {
        if (auto const content = readFileIfThere(from / name)) {
            replaceFile(to / name, *content);
            std::error_code error; // without its time the copy counts as made now
            fs::last_write_time(to / name, fs::last_write_time(from / name, error), error);
        }
    }
}

// What StagedFile and s_putLink leave when they are killed: ".NAME.XXXXXX" and ".NAME.new".
bool s_isLeftOver(std::string_view fileName) {
    auto const isOf = [fileName](std::string_view name, std::size_t suffix) {
        return fileName.size() == name.size() + 2 + suffix && fileName[0] == '.' &&
               fileName.substr(1, name.size()) == name && fileName[name.size() + 1] == '.';
    };
    auto const isAny = [&isOf](std::string_view name) {
        return isOf(name, std::strlen(stagedLinkSuffix) - 1) || isOf(name, 6);
    };
    return isAny(currentName) || std::any_of(ruleFileNames.begin(), ruleFileNames.end(), isAny);
}

} // namespace

std::vector<SetFolder> setFolders(fs::path const& folder) {
    std::vector<SetFolder> sets;
    std::error_code error;
    for (auto const& entry : fs::directory_iterator(folder / setsName, error)) {
        if (entry.path().filename().string().front() != '.') {
            sets.push_back(s_readSet(entry.path(), entry.path().filename()));
        }
    }
    auto current = s_inForce(folder);
    if (s_hasForeignFiles(folder)) {
        sets.push_back(s_readSet(folder, ""));
        current = "";
    }
    auto const rank = [&current](SetFolder const& set) {
        return std::make_tuple(set.m_name == current, set.m_set.m_version, set.m_name);
    };
    std::sort(sets.begin(), sets.end(), [&rank](SetFolder const& left, SetFolder const& right) {
        return rank(left) > rank(right);
    });
    return sets;
}

void sweepSets(fs::path const& folder) {
    s_removeAll(folder / setsName / stagingName);
    s_removeAll(folder / setsName / leavingName);
    std::error_code error;
    for (auto const& entry : fs::directory_iterator(folder, error)) {
        if (s_isLeftOver(entry.path().filename().string())) {
            s_removeAll(entry.path());
        }
    }
    auto const sets = setFolders(folder);
    for (auto i = keptSets - 1; i < sets.size(); ++i) {
        s_removeSet(folder, sets[i].m_name);
    }
}

void adoptFiles(fs::path const& folder) {
    if (s_hasForeignFiles(folder)) {
        auto const readme = readFileIfThere(folder / versionFileName);
        auto const version = readme ? readmeVersion(*readme) : std::nullopt;
        auto const name =
            s_addSet(folder, version.value_or(0), {"files that were in the folder", {}, {}},
                     [&folder](fs::path const& to) { s_copyFiles(folder, to); });
        s_makeCurrent(folder, name);
        s_putFileLinks(folder);
    }
}

void putInForce(fs::path const& folder, RuleSet const& set, Origin const& origin) {
    auto const name = s_addSet(folder, set.version().value_or(0), origin,
                               [&set](fs::path const& to) { writeFolder(to, set); });
    s_makeCurrent(folder, name);
    s_putFileLinks(folder);
}

} // namespace Quorvane::Rules
