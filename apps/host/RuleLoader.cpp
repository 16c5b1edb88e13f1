// SPDX-License-Identifier: Apache-2.0
#include "apps/host/RuleLoader.h"

#include "DeepHeaderScanner.h"
#include "include2/Exception.h"
#include "platform/File.h"
#include "platform/Logger.h"
#include "rules/format/RuleFiles.h"
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

// Rules that are installed while others load bring names for themselves, not for those.
Rules::NamesRead s_namesOf(std::optional<std::int32_t> version) {
    auto const folder = File::root() + ruleDirectory;
    auto names = Rules::readNames(Rules::readNamesFile(folder));
    if (installedVersion() != version) {
        return {};
    }
    if (!names.m_problem.empty()) {
        names.m_problem = folder + '/' + namesFileName + ": " + names.m_problem;
    }
    return names;
}

// A version that is not a number above 0 is never newer than "nothing loaded", and the library then
// has nothing to log.
std::string s_whyNotLoaded(std::string const& logged) {
    return logged.empty() ? std::string("the version in README must be above 0") : logged;
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
        std::error_code error;
        return fs::exists(folder / (ruleDirectory + 1) / treeFileName, error);
    };
    if (settings.origin(root) != defaultOrigin || hasRules("/")) {
        return;
    }
    auto const own = prefix / "share/qvdeepheader/root";
    if (hasRules(own)) {
        settings.set(root, {own.string()}, "came with the program, as none are installed");
    }
}

std::optional<std::int32_t> installedVersion() {
    File::Path const path(ruleDirectory, versionFileName);
    auto const readme = path.isRegularFile()
                            ? Rules::readFileIfThere(static_cast<char const*>(path))
                            : std::nullopt;
    return readme ? Rules::readmeVersion(*readme) : std::nullopt;
}

LoadedRules loadRules() {
    auto const version = installedVersion();
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
    return {engine, version, s_namesOf(version)};
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
