// SPDX-License-Identifier: Apache-2.0
#include "apps/commandline/Terminal.h"

#include "apps/text/LineWrap.h"

#include <algorithm>
#include <array>
#include <boost/algorithm/string/split.hpp>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <string_view>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace Quorvane {

namespace {

// Empty: it is no terminal.
std::optional<dev_t> s_terminal(int descriptor) {
    struct stat facts {};
    bool const isTerminal = ::isatty(descriptor) == 1 && ::fstat(descriptor, &facts) == 0;
    return isTerminal ? std::optional(facts.st_rdev) : std::nullopt;
}

bool s_isOnPath(std::string const& program) {
    auto const* const path = std::getenv("PATH");
    std::string const list = path == nullptr ? "" : path;
    std::vector<std::string> folders;
    boost::algorithm::split(folders, list, [](char c) { return c == ':'; });
    return std::any_of(folders.begin(), folders.end(), [&program](std::string const& folder) {
        auto const file = std::filesystem::path(folder) / program;
        return !folder.empty() && ::access(file.c_str(), X_OK) == 0;
    });
}

// What the environment says of the terminal, and of the person at it.
bool s_mayColour() {
    auto const* const noColour = std::getenv("NO_COLOR");
    auto const* const kind = std::getenv("TERM");
    return (noColour == nullptr || *noColour == '\0') &&
           (kind == nullptr || std::string_view(kind) != "dumb");
}

// Empty: none is to be started.
std::string s_pagerCommand() {
    if (auto const* const pager = std::getenv("PAGER"); pager != nullptr) {
        std::string const command = pager;
        return command == "cat" ? std::string() : command;
    }
    return s_isOnPath("less") ? "less" : "";
}

// Our signal handling is not the pager's. Unless they say otherwise, less ends by itself when all
// fits the screen (F), shows colours (R) and leaves the text on the screen (X).
[[noreturn]] void s_becomePager(std::string const& command, int input) {
    ::dup2(input, STDIN_FILENO);
    std::signal(SIGPIPE, SIG_DFL);
    ::setenv("LESS", "FRX", 0);
    ::execl("/bin/sh", "sh", "-c", command.c_str(), static_cast<char*>(nullptr));
    ::_exit(127);
}

} // namespace

bool outputsShareTerminal() {
    auto const output = s_terminal(STDOUT_FILENO);
    return output && output == s_terminal(STDERR_FILENO);
}

bool wantsColour(CommandLine const& line) {
    auto const choice = line.text(colorRow.m_name, "auto");
    return choice == "always" ||
           (choice == "auto" && s_mayColour() && ::isatty(STDOUT_FILENO) == 1);
}

std::optional<std::size_t> terminalWidth() {
    winsize size{};
    bool const isKnown = ::isatty(STDOUT_FILENO) == 1 &&
                         ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return isKnown ? std::optional<std::size_t>(size.ws_col) : std::nullopt;
}

std::string forTerminal(std::string const& text, std::optional<std::size_t> width) {
    return width ? wrappedLines(text, std::max(*width, narrowestText)) : text;
}

Pager::Pager(bool isWanted) {
    if (isWanted && ::isatty(STDOUT_FILENO) == 1) {
        if (auto const command = s_pagerCommand(); !command.empty()) {
            start(command);
        }
    }
}

void Pager::start(std::string const& command) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        return; // the terminal shows it, too
    }
    m_process = ::fork();
    if (m_process == 0) {
        s_becomePager(command, ends[0]);
    }
    if (m_process > 0) {
        ::dup2(ends[1], STDOUT_FILENO);
        // Errors among the results, not across the pager's screen.
        if (::isatty(STDERR_FILENO) == 1) {
            ::dup2(ends[1], STDERR_FILENO);
        }
    }
    ::close(ends[0]);
    ::close(ends[1]);
}

// The pager ends at the end of its input, and takes Ctrl-C for itself.
Pager::~Pager() {
    if (!isRunning()) {
        return;
    }
    std::signal(SIGINT, SIG_IGN);
    int const nothing = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    for (int const output : {STDOUT_FILENO, STDERR_FILENO}) {
        ::dup2(nothing, output);
    }
    while (::waitpid(m_process, nullptr, 0) < 0 && errno == EINTR) {
    }
}

} // namespace Quorvane
