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
    ChildProcess(std::string const& program, std::vector<std::string> const& arguments);
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

    void signal(int number) const;
    // The exit status; 128 and the signal's number when one ended it. The program's input stays
    // open meanwhile.
    int wait();
    // REQUIRES: wait was called.
    long peakKilobytes() const { return m_peakKilobytes; }

  private:
    pid_t m_child = -1;
    int m_input = -1;
    int m_output = -1;
    int m_errors = -1;
    long m_peakKilobytes = 0;
};

} // namespace Quorvane::Testing
