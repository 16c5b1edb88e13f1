// SPDX-License-Identifier: Apache-2.0
//
// Output: writes to a file descriptor at once, without a buffer of its own, so that what was done
// is there whatever ends the program. One object, one thread at a time.
#pragma once

#include <string_view>

namespace Quorvane {

class Output {
  public:
    // The descriptor stays the caller's. REQUIRES: SIGPIPE is ignored.
    explicit Output(int descriptor) : m_descriptor(descriptor) {}

    // False when nobody reads any more, or nothing can be written.
    bool write(std::string_view text);

    // The errno of the write that failed; 0: none did, or the reader went away, which is no error.
    int error() const { return m_error; }

  private:
    int m_descriptor;
    bool m_isClosed = false;
    int m_error = 0;
};

} // namespace Quorvane
