// SPDX-License-Identifier: Apache-2.0
//
// AnswerSource: where the answers of scan_many come from. All of it needs the interpreter's lock,
// and gives it back while it waits.
//
// Only the caller's thread runs Python. The threads of a pool know nothing of the interpreter, so
// neither waits for its lock.
#pragma once

#include "python/Answer.h"
#include "python/MessageList.h"
#include "python/Scanner.h"

#include <memory>
#include <optional>
#include <pybind11/pybind11.h>

namespace Quorvane::Python {

class AnswerSource {
  public:
    AnswerSource() = default;
    AnswerSource(AnswerSource const&) = delete;
    AnswerSource& operator=(AnswerSource const&) = delete;
    // Ends its threads; messages that were read ahead are dropped. A thread that cannot take the
    // interpreter's lock back has no way to go on.
    virtual ~AnswerSource() = default;

    // Empty at the end. What the messages threw comes once, after the answers for those before.
    virtual std::optional<Answer> next() = 0;
};

using ScannerPointer = std::shared_ptr<Scanner const>;

// Judged by the caller's thread alone. `messages` is an iterator.
std::unique_ptr<AnswerSource> judgedByCaller(ScannerPointer scanner, pybind11::object messages);
// The caller's thread takes the messages, and `threads` judge.
std::unique_ptr<AnswerSource> judgedByThreads(ScannerPointer scanner, pybind11::object messages,
                                              unsigned int threads);
// Threads read the messages and judge: mail in files needs no Python. `owner` keeps `messages`.
std::unique_ptr<AnswerSource> readByThreads(ScannerPointer scanner, MessageList& messages,
                                            pybind11::object owner, unsigned int threads);

} // namespace Quorvane::Python
