// SPDX-License-Identifier: Apache-2.0
//
// Output: writes to a file descriptor at once, without a buffer of its own, so that results
// are complete however the program ends. One object, one thread at a time.
#pragma once

#include <string_view>

namespace Quorvane {

class Output {
  public:
    // The descriptor stays the caller's. REQUIRES: SIGPIPE is ignored.
    explicit Output(int descriptor) : m_descriptor(descriptor) {}

    // False when the reader has gone, or nothing can be written.
    bool write(std::string_view text);

    // The errno of the write that failed; 0: none failed, or the reader has gone, which is not an
    // error.
    int error() const { return m_error; }

  private:
    int m_descriptor;
    bool m_isClosed = false;
    int m_error = 0;
};

} // namespace Quorvane
