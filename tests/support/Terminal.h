// SPDX-License-Identifier: Apache-2.0
//
// A real terminal, played by tmux: a shell command runs in it, keys are typed, and the screen is
// read. One command after another; each has a terminal of its own.
#pragma once

#include "support/TemporaryFolder.h"

#include <string>
#include <vector>

namespace Quorvane::Testing {

// The text of a screen without escape sequences.
std::string plainText(std::string const& screen);

class Terminal {
  public:
    // `folder` outlives the terminal, which keeps files there.
    explicit Terminal(TemporaryFolder const& folder, int columns = 120)
        : m_folder(folder), m_columns(columns) {}
    Terminal(Terminal const&) = delete;
    Terminal& operator=(Terminal const&) = delete;
    ~Terminal();

    // Runs a shell command.
    void start(std::string const& command);
    // Key names of tmux; other words are typed as they are.
    void type(std::vector<std::string> const& keys) const;
    // The screen with its escape sequences and what has scrolled off it, once there is `text`; the
    // test has failed when it never comes.
    std::string captureWith(std::string const& text) const;
    // From now on all that the terminal gets is appended to this file; an empty name ends that.
    void record(std::string const& path) const;
    // Waits for the end of the command. The last screen: it ends with "status " and the exit
    // status.
    std::string finish() const;
    // The last screen of a command.
    std::string screen(std::string const& command);

  private:
    std::string tmux(std::vector<std::string> const& arguments) const;

    TemporaryFolder const& m_folder;
    int m_columns;
    int m_runs = 0;
};

} // namespace Quorvane::Testing
