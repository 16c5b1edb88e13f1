// SPDX-License-Identifier: Apache-2.0
//
// Scanner.scan_many: judges messages, and yields the answers in their order.
#pragma once

#include "python/AnswerSource.h"

#include <memory>
#include <pybind11/pybind11.h>

namespace Quorvane::Python {

// Under the interpreter's lock.
class ScanMany {
  public:
    // `threads`: 1 for none besides the caller's. Threads begin with the first call of next.
    ScanMany(ScannerPointer scanner, pybind11::object messages, unsigned int threads);
    ScanMany(ScanMany const&) = delete;
    ScanMany& operator=(ScanMany const&) = delete;
    ~ScanMany();

    // Throws pybind11::stop_iteration at the end.
    Answer next();

    // Ends the threads at the end of the interpreter, unless a thread that it does not wait for is
    // in next.
    void stopAtExit();

  private:
    void begin();
    void stop();

    ScannerPointer m_scanner;
    pybind11::object m_messages; // an iterator
    unsigned int m_threads;
    unsigned int m_forks; // before: children of a fork have none of the threads
    bool m_isBusy = false;
    bool m_isEnded = false;
    std::unique_ptr<AnswerSource> m_answers; // null before the first call of next, and at the end
};

std::unique_ptr<ScanMany> scanMany(ScannerPointer const& scanner,
                                   pybind11::iterable const& messages, unsigned int threads);

void bindScanMany(pybind11::module_& module);

} // namespace Quorvane::Python
