// SPDX-License-Identifier: Apache-2.0
//
// Scanner.scan_many: judges the messages of an iterator, and yields the answers in its order.
//
// Only the caller's thread runs Python: it takes messages from the iterator and gives answers away.
// The threads of the pool know nothing of the interpreter, so neither waits for its lock.
#pragma once

#include "apps/input/OrderedPool.h"
#include "python/Scanner.h"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <pybind11/pybind11.h>
#include <stop_token>
#include <sys/types.h>
#include <variant>
#include <vector>

namespace Quorvane::Python {

class ScanMany {
  public:
    // `threads`: 1 for none besides the caller's.
    ScanMany(std::shared_ptr<Scanner const> scanner, pybind11::object messages,
             unsigned int threads);
    ScanMany(ScanMany const&) = delete;
    ScanMany& operator=(ScanMany const&) = delete;
    // What has been read ahead is dropped. A thread that cannot take the interpreter's lock back
    // has no way to go on.
    ~ScanMany(); // NOLINT(bugprone-exception-escape)

    // Throws pybind11::stop_iteration at the end; what the iterator threw comes after the answers
    // for the messages before.
    Answer next();

    // Ends the threads; next then finds no more messages.
    void stop();
    // The same at the end of the interpreter, unless a thread that it does not wait for is in next.
    void stopAtExit();

  private:
    using Result = std::variant<Answer, std::exception_ptr>;

    bool take(Message& message);
    Answer nextAlone();
    void readAhead();
    void add(Message message);
    Result resultOf(InputItem const& item) const;
    bool deliver(Result result);
    bool hasResult();
    void waitForResults();
    Result takeResult();

    std::shared_ptr<Scanner const> m_scanner;
    pybind11::object m_messages; // an iterator
    std::exception_ptr m_thrown; // by the iterator
    bool m_isAtEnd = false;
    bool m_isBusy = false;      // under the interpreter's lock
    pid_t m_process;            // has the threads; its children have none of them
    std::size_t m_underWay = 0; // taken from the iterator, answers not given away
    std::vector<InputItem> m_toSubmit;
    std::deque<Result> m_taken; // from m_results
    std::mutex m_mutex;
    std::condition_variable m_hasResults;
    std::deque<Result> m_results;
    bool m_isOutOfMemory = false;
    std::stop_source m_stop;
    std::unique_ptr<OrderedPool> m_pool; // null: the caller's thread does all
};

std::unique_ptr<ScanMany> scanMany(std::shared_ptr<Scanner const> const& scanner,
                                   pybind11::iterable const& messages, unsigned int threads);

void bindScanMany(pybind11::module_& module);

} // namespace Quorvane::Python
