// SPDX-License-Identifier: Apache-2.0
//
// A file in memory, for what reads files by their path: writing a real one for each input would
// take most of the time.
#pragma once

#include "Check.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>

namespace Quorvane {

class MemoryFile {
  public:
    MemoryFile() : m_descriptor(::memfd_create("input", MFD_CLOEXEC)) {
        check(m_descriptor >= 0, "there is memory for the input");
    }
    MemoryFile(MemoryFile const&) = delete;
    MemoryFile& operator=(MemoryFile const&) = delete;
    ~MemoryFile() { ::close(m_descriptor); }

    // Replaces the content; the path of the file.
    std::string hold(std::string_view bytes) const {
        bool const isHeld = ::ftruncate(m_descriptor, 0) == 0 &&
                            ::pwrite(m_descriptor, bytes.data(), bytes.size(), 0) ==
                                static_cast<ssize_t>(bytes.size());
        check(isHeld, "there is memory for the input");
        return "/proc/self/fd/" + std::to_string(m_descriptor);
    }

  private:
    int m_descriptor;
};

} // namespace Quorvane
