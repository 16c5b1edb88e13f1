// SPDX-License-Identifier: Apache-2.0
#include "apps/input/InputSize.h"

#include "apps/input/FileWalker.h"

#include <sys/stat.h>
#include <utility>

namespace Quorvane {

namespace {

// False for what is not a file.
bool s_addSize(std::string const& path, std::uint64_t& bytes) {
    struct stat facts {};
    // What cannot be opened takes no time.
    if (::stat(path == "-" ? "/dev/stdin" : path.c_str(), &facts) != 0) {
        return true;
    }
    bytes += static_cast<std::uint64_t>(facts.st_size);
    return S_ISREG(facts.st_mode);
}

} // namespace

InputSize::InputSize(std::vector<std::string> paths)
    : m_thread(
          [this, held = std::move(paths)](std::stop_token const& stop) { count(stop, held); }) {}

void InputSize::count(std::stop_token const& stop, std::vector<std::string> const& paths) {
    FileWalker files(paths);
    std::uint64_t bytes = 0;
    for (FileWalker::Entry entry; files.next(entry);) {
        if (stop.stop_requested() ||
            (entry.m_error.empty() && !s_addSize(entry.m_name.m_path, bytes))) {
            return;
        }
    }
    m_bytes = bytes;
    m_isKnown = true;
}

std::optional<std::uint64_t> InputSize::bytes() const {
    return m_isKnown ? std::optional(m_bytes.load()) : std::nullopt;
}

} // namespace Quorvane
