// SPDX-License-Identifier: Apache-2.0
//
// SideBySide: runs alternatives turn by turn in one process and reports each as a multiple of the
// first. Absolute times drift with the machine and the hour; ratios taken within one run do not.
// One thread.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace Quorvane::Bench {

class SideBySide {
  public:
    // `unit` names what one call of an alternative does `unitsPerCall` times.
    SideBySide(std::string title, std::string unit, double unitsPerCall);

    // The first alternative is what the others are compared with. A call should take some
    // milliseconds.
    void add(std::string name, std::function<void()> work);

    // Runs all alternatives in turn and prints a table: the median of the ratios to the first taken
    // round by round, nanoseconds and heap allocations a unit.
    void run() const;

  private:
    struct Alternative {
        std::string m_name;
        std::function<void()> m_work;
    };

    std::string m_title;
    std::string m_unit;
    double m_unitsPerCall;
    std::vector<Alternative> m_alternatives;
};

// Keeps the compiler from dropping work whose result nobody reads.
template<typename T>
void keep(T const& value) {
    asm volatile("" : : "r,m"(value) : "memory");
}

// Heap allocations of the process so far.
unsigned long allocations();

} // namespace Quorvane::Bench
