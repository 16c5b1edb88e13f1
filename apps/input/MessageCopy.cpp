// SPDX-License-Identifier: Apache-2.0
#include "apps/input/MessageCopy.h"

#include "apps/commandline/Output.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <unistd.h>

namespace Quorvane {

namespace {

constexpr std::size_t mostInMemory = std::size_t{1} << 20;

// An errno; 0: all is written.
int s_write(int file, std::string_view bytes) {
    Output output(file);
    output.write(bytes);
    return output.error();
}

int s_copy(int from, int to) {
    std::array<char, 65536> buffer{};
    for (off_t at = 0;;) {
        auto const count = ::pread(from, buffer.data(), buffer.size(), at);
        if (count < 0 && errno != EINTR) {
            return errno;
        }
        if (count == 0) {
            return 0;
        }
        if (count > 0) {
            at += count;
            if (int const error = s_write(to, {buffer.data(), static_cast<std::size_t>(count)})) {
                return error;
            }
        }
    }
}

} // namespace

MessageCopy::~MessageCopy() {
    if (m_file >= 0) {
        ::close(m_file);
    }
}

void MessageCopy::append(std::string_view bytes) noexcept {
    try {
        if (m_error == 0 && m_file < 0 && m_bytes.size() + bytes.size() > mostInMemory) {
            moveToFile();
        }
        if (m_error == 0 && m_file < 0) {
            m_bytes.append(bytes);
        } else if (m_error == 0) {
            m_error = s_write(m_file, bytes);
        }
    } catch (std::exception const&) {
        m_error = ENOMEM;
    }
}

void MessageCopy::moveToFile() {
    auto name = (m_folder / ".qvscan-XXXXXX").string();
    m_file = ::mkostemp(name.data(), O_CLOEXEC);
    if (m_file < 0) {
        m_error = errno;
        return;
    }
    ::unlink(name.c_str());
    m_error = s_write(m_file, m_bytes);
    m_bytes = std::string();
}

int MessageCopy::writeTo(std::filesystem::path const& path) const {
    if (m_error != 0) {
        return m_error;
    }
    int const file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file < 0) {
        return errno;
    }
    int error = m_file < 0 ? s_write(file, m_bytes) : s_copy(m_file, file);
    if (::close(file) != 0 && error == 0) {
        error = errno;
    }
    if (error != 0) {
        ::unlink(path.c_str());
    }
    return error;
}

std::size_t MessageCopy::cost() const {
    return m_file < 0 ? m_bytes.capacity() : mostInMemory;
}

} // namespace Quorvane
