// SPDX-License-Identifier: Apache-2.0
//
// Terminal: what programs do for people who look at their output: colours, lines that fit, and a
// pager.
#pragma once

#include "apps/commandline/CommandLine.h"

#include <cstddef>
#include <optional>
#include <string>
#include <sys/types.h>

namespace Quorvane {

inline constexpr OptionRow colorRow{"color", "auto|always|never",
                                    "coloured text (auto: on a terminal)"};
inline constexpr OptionRow noPagerRow{"no-pager", "",
                                      "write explanations to the terminal, not to a pager"};

// What --color says. By default a terminal gets colours unless NO_COLOR is set and not empty
// (no-color.org), or TERM says that it shows none ("dumb").
bool wantsColour(CommandLine const& line);

// The columns of the terminal that standard output is; empty when it is none, or does not tell.
std::optional<std::size_t> terminalWidth();
// Narrower than this nothing can be laid out.
inline constexpr std::size_t narrowestText = 40;
// `text` with lines broken to that width, or to the narrowest; as it is when there is none.
std::string forTerminal(std::string const& text, std::optional<std::size_t> width);

// Whether standard output and standard error are the same terminal: what one of them draws stands
// in the way of the other.
bool outputsShareTerminal();

// While it lives, a pager shows what the program writes to its terminal: the one that PAGER names,
// or else less. At its end it waits until the person has seen enough. One object per process, made
// before threads and signal handling.
class Pager {
  public:
    // No pager with `isWanted` false, when standard output is no terminal, when PAGER is empty or
    // "cat", and when there is no less.
    explicit Pager(bool isWanted);
    Pager(Pager const&) = delete;
    Pager& operator=(Pager const&) = delete;
    ~Pager();

    bool isRunning() const { return m_process > 0; }

  private:
    void start(std::string const& command);

    pid_t m_process = 0;
};

} // namespace Quorvane
