// SPDX-License-Identifier: Apache-2.0
#include "support/Terminal.h"

#include "support/Program.h"

#include <chrono>
#include <gtest/gtest.h>

namespace Quorvane::Testing {

namespace {

// Far longer than anything takes on a loaded machine.
constexpr std::chrono::seconds patience{120};

} // namespace

std::string plainText(std::string const& screen) {
    std::string plain;
    for (std::size_t at = 0; at < screen.size(); ++at) {
        if (screen[at] == '\x1B') {
            at = screen.find('m', at);
        } else {
            plain += screen[at];
        }
    }
    return plain;
}

Terminal::~Terminal() {
    tmux({"kill-server"});
}

void Terminal::start(std::string const& command) {
    // A server of its own: one that was asked to end may still answer.
    ++m_runs;
    auto const script =
        m_folder.write("run.sh", "trap : INT; " + command + "; echo \"status $?\"; exec cat\n");
    tmux({"-f", "/dev/null", "new-session", "-d", "-x", std::to_string(m_columns), "-y", "40",
          "sh " + script});
}

void Terminal::type(std::vector<std::string> const& keys) const {
    std::vector<std::string> arguments{"send-keys"};
    arguments.insert(arguments.end(), keys.begin(), keys.end());
    tmux(arguments);
}

std::string Terminal::captureWith(std::string const& text) const {
    auto const deadline = std::chrono::steady_clock::now() + patience;
    for (;;) {
        auto shown = tmux({"capture-pane", "-p", "-e", "-S", "-"});
        if (plainText(shown).find(text) != std::string::npos) {
            return shown;
        }
        if (std::chrono::steady_clock::now() > deadline) {
            ADD_FAILURE() << "the terminal never shows \"" << text << "\" but\n" << shown;
            return shown;
        }
    }
}

void Terminal::record(std::string const& path) const {
    std::vector<std::string> arguments{"pipe-pane"};
    if (!path.empty()) {
        arguments.push_back("cat >> " + path);
    }
    tmux(arguments);
}

std::string Terminal::finish() const {
    auto const shown = captureWith("status ");
    tmux({"kill-server"});
    return shown;
}

std::string Terminal::screen(std::string const& command) {
    start(command);
    return finish();
}

std::string Terminal::tmux(std::vector<std::string> const& arguments) const {
    std::vector<std::string> all{"-S", m_folder.path("tmux" + std::to_string(m_runs))};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return runProgram(QV_TMUX_PROGRAM, all).m_output;
}

} // namespace Quorvane::Testing
