// SPDX-License-Identifier: Apache-2.0
#include "apps/host/RuleLoader.h"

#include "DeepHeaderScanner.h"
#include "include2/Exception.h"
#include "platform/File.h"
#include "platform/Logger.h"
#include "rules/format/RulePlace.h"
#include "rules/model/Binary.h"
#include "rules/model/Files.h"
#include "rules/model/Readme.h"
#include "rules/model/RuleError.h"
#include "rules/model/RuleFolder.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <sstream>
#include <thread>
#include <utility>

namespace Quorvane {

namespace {

// Installed while rules are loaded: keeps the messages of the library for our own error, and passes
// on those of other threads.
class LoadLogger : public Logger {
  public:
    explicit LoadLogger(std::shared_ptr<Logger> next) : m_next(std::move(next)) {}

    void log(int messageId, int reserved, char const* format, ...) override
        __attribute__((format(printf, 4, 5)));

    // Of the thread that made the object.
    std::string const& text() const { return m_text; }

  private:
    std::shared_ptr<Logger> m_next;
    std::thread::id const m_loading = std::this_thread::get_id();
    std::string m_text;
};

void LoadLogger::log(int messageId, int reserved, char const* format, ...) {
    std::array<char, 4096> line{};
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line.data(), line.size(), format, arguments);
    va_end(arguments);
    if (std::this_thread::get_id() == m_loading) {
        m_text = line.data();
    } else {
        m_next->log(messageId, reserved, "%s", line.data());
    }
}

Rules::NamesRead s_namesIn(std::filesystem::path const& folder) {
    auto names = Rules::readNames(Rules::readNamesFile(folder));
    if (!names.m_problem.empty()) {
        names.m_problem = (folder / namesFileName).string() + ": " + names.m_problem;
    }
    return names;
}

// Rules that are installed while others load bring names for themselves, not for those.
Rules::NamesRead s_namesOf(std::string const& root, std::optional<std::int32_t> version) {
    auto names = s_namesIn(ruleFolderBelow(root));
    return installedVersion(root) == version ? names : Rules::NamesRead();
}

// A version that is not a number above 0 is never newer than "nothing loaded", and the library then
// has nothing to log.
std::string s_whyNotLoaded(std::string const& logged) {
    return logged.empty() ? std::string("the version in README must be above 0") : logged;
}

LoadedRules s_belowRoot(std::string const& root) {
    auto const version = installedVersion(root);
    std::shared_ptr<Logger> before = Logger::instance(false);
    auto const logger = std::make_shared<LoadLogger>(before);
    Logger::install(logger);
    // However the load ends.
    std::shared_ptr<void> const restore(nullptr, [&](void*) { Logger::install(before); });
    DeepHeaderScanner().init();
    auto engine = DeepHeaderEngine::inForce();
    if (engine.isEmpty() || !logger->text().empty()) {
        throw NoRulesError("no usable rules in " + File::root() + ruleDirectory + ": " +
                           s_whyNotLoaded(logger->text()));
    }
    return {engine, version, s_namesOf(root, version)};
}

LoadedRules s_inFolder(std::string const& folder) {
    try {
        auto loaded = loadedRules(Rules::readFolder(folder));
        loaded.m_names = s_namesIn(folder);
        return loaded;
    } catch (Rules::RuleError const& error) {
        throw NoRulesError("no usable rules in " + folder + ": " + error.what());
    }
}

} // namespace

void useRoot(std::string const& folder) {
    static std::optional<std::string> inUse;
    if (inUse && *inUse != folder) {
        throw SettingsError("root: it is " + *inUse + " and cannot change to " + folder +
                            " while the program runs; restart it");
    }
    if (!inUse) {
        try {
            File::setRoot(folder);
        } catch (Exception const& error) {
            throw SettingsError(error.stringParameter());
        }
        inUse = folder;
    }
}

void useOwnRulesIfNoneAreInstalled(SettingsSection& settings) {
    std::error_code error;
    auto const program = std::filesystem::read_symlink("/proc/self/exe", error);
    useOwnRulesIfNoneAreInstalled(settings, program.parent_path().parent_path());
}

void useOwnRulesIfNoneAreInstalled(SettingsSection& settings, std::filesystem::path const& prefix) {
    namespace fs = std::filesystem;
    constexpr std::string_view root = "root";
    auto const hasRules = [](fs::path const& folder) {
        return holdsRules(ruleFolderBelow(folder));
    };
    if (settings.origin(root) != defaultOrigin || hasRules("/")) {
        return;
    }
    auto const own = prefix / "share/qvdeepheader/root";
    if (hasRules(own)) {
        settings.set(root, {own.string()}, "came with the program, as none are installed");
    }
}

std::optional<std::int32_t> installedVersion(std::string const& root) {
    auto const path = ruleFolderOfRoot(root) / versionFileName;
    std::error_code error;
    auto const readme =
        std::filesystem::is_regular_file(path, error) ? Rules::readFileIfThere(path) : std::nullopt;
    return readme ? Rules::readmeVersion(*readme) : std::nullopt;
}

LoadedRules loadRules(std::string const& root) {
    return holdsRules(root) ? s_inFolder(root) : s_belowRoot(root);
}

DeepHeaderEngine engineOf(Rules::RuleSet const& rules) {
    std::istringstream tree(Rules::writeTree(rules));
    std::istringstream elite(rules.m_elite ? Rules::writeElite(*rules.m_elite) : std::string());
    try {
        return DeepHeaderEngine::fromStreams(tree, rules.m_elite ? &elite : nullptr);
    } catch (Exception const& error) {
        throw Rules::RuleError(Rules::RuleError::Kind::badRules,
                               "no host can load these rules: " + error.asString());
    }
}

LoadedRules loadedRules(Rules::RuleSet const& rules) {
    return {engineOf(rules), rules.version(), Rules::readNames(rules.m_names)};
}

} // namespace Quorvane
