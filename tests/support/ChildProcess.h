// SPDX-License-Identifier: Apache-2.0
//
// A program that runs while the test looks on: its input is written and its output read piece by
// piece, signals reach it, and what it used of the machine is known at its end.
#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace Quorvane::Testing {

class ChildProcess {
  public:
    // How the program finds its standard output.
    enum class Output { blocking, nonBlocking };

    ChildProcess(std::string const& program, std::vector<std::string> const& arguments,
                 Output output = Output::blocking);
    ChildProcess(ChildProcess const&) = delete;
    ChildProcess& operator=(ChildProcess const&) = delete;
    // Ends the program if it still runs.
    ~ChildProcess();

    void write(std::string const& text) const;
    void closeInput();
    // Up to and with the line break.
    std::string readLine() const;
    // What is there, at least one byte; empty at the end.
    std::string readSome() const;
    std::string readAll() const;
    std::string readErrors() const;
    std::string readErrorLine() const;
    void closeOutput();
    // Waits until what the program has written fills its output. False when the program ends
    // before.
    bool fillOutput();

    void signal(int number) const;
    // Until the program ends, which wait then tells.
    void signalUntilEnd(int number) const;
    // The exit status; 128 and the signal's number when one ended it. The program's input stays
    // open meanwhile.
    int wait();
    // So far, of the program alone.
    long peakKilobytesNow() const;

  private:
    bool hasEnded() const;

    pid_t m_child = -1;
    int m_input = -1;
    int m_output = -1;
    int m_errors = -1;
};

} // namespace Quorvane::Testing
