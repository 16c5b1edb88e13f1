// SPDX-License-Identifier: Apache-2.0
//
// qvscan, but with any numbers for thresholds and scores: the library takes what the programs
// refuse, its own defaults among them, and what it makes of them is tested, too.
#include "apps/commandline/Program.h"
#include "apps/qvscan/ScanRun.h"
#include "apps/settings/SettingFiles.h"

#include <algorithm>
#include <csignal>
#include <iterator>
#include <string_view>

namespace Quorvane::Testing {

namespace {

struct Setting {
    std::string_view m_option;
    void (*m_set)(HostSettings& host, std::string const& text);
};

void s_addScore(HostSettings& host, std::string const& text) {
    auto const equals = text.rfind('=');
    host.m_scores.emplace_back(IPPrefix::parse(text.substr(0, equals)),
                               std::stoi(text.substr(equals + 1)));
}

constexpr Setting settings[] = {
    {"--spam-threshold",
     [](auto& host, auto& text) { host.m_judging.spamThreshold = std::stod(text); }},
    {"--ham-threshold",
     [](auto& host, auto& text) { host.m_judging.hamThreshold = std::stod(text); }},
    {"--min-support", [](auto& host, auto& text) { host.m_judging.minSupport = std::stod(text); }},
    {"--max-elite-level",
     [](auto& host, auto& text) { host.m_judging.maxEliteLevel = std::stoi(text); }},
    {"--score-threshold",
     [](auto& host, auto& text) { host.m_judging.scoreThreshold = std::stoi(text); }},
    {"--score", s_addScore},
};

struct Given {
    Setting const* m_setting;
    std::string m_text;
};

std::vector<Given> given;

// Takes these options out of a command line: "--option=N", or "--option" and "N".
std::vector<char const*> s_others(int argc, char const* const* argv) {
    std::vector<char const*> others;
    for (int i = 0; i < argc; ++i) {
        std::string const word = argv[i];
        auto const name = word.substr(0, word.find('='));
        auto const* const setting =
            std::find_if(std::begin(settings), std::end(settings),
                         [&name](Setting const& one) { return one.m_option == name; });
        if (setting == std::end(settings)) {
            others.push_back(argv[i]);
        } else if (name.size() < word.size()) {
            given.push_back({setting, word.substr(name.size() + 1)});
        } else if (++i < argc) {
            given.push_back({setting, argv[i]});
        }
    }
    return others;
}

int s_run(CommandLine const& line) {
    auto const options = scanOptions(line);
    auto host = withFiles(options.m_settings.values());
    for (auto const& one : given) {
        one.m_setting->m_set(host, one.m_text);
    }
    Interrupt interrupt;
    return ScanRun(options, host, interrupt, false).run();
}

} // namespace

} // namespace Quorvane::Testing

int main(int argc, char** argv) {
    using namespace Quorvane;
    std::signal(SIGPIPE, SIG_IGN);
    auto const words = Testing::s_others(argc, argv);
    return runProgram(scanTable(), static_cast<int>(words.size()), words.data(), Testing::s_run);
}
