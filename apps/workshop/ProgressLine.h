// SPDX-License-Identifier: Apache-2.0
//
// ProgressLine: tells on standard error how long work goes, once it has taken two seconds and every
// two seconds from then on. One object, one thread.
#pragma once

#include <chrono>
#include <string>

namespace Quorvane::Workshop {

class ProgressLine {
  public:
    // `program` stands before each line.
    explicit ProgressLine(std::string program);

    // Cheap enough to be called for every message.
    template<typename MakeText>
    void tick(MakeText makeText) {
        if (isDue()) {
            print(makeText());
        }
    }

  private:
    bool isDue();
    void print(std::string const& text) const;

    std::string m_program;
    std::chrono::steady_clock::time_point m_next;
};

} // namespace Quorvane::Workshop
