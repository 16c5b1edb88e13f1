// SPDX-License-Identifier: Apache-2.0
#include "apps/input/ByteSource.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace Quorvane {

namespace {

class DescriptorSource : public ByteSource {
  public:
    DescriptorSource(int descriptor, bool isOwner, Interrupt& interrupt)
        : m_descriptor(descriptor), m_isOwner(isOwner), m_interrupt(interrupt) {}
    DescriptorSource(DescriptorSource const&) = delete;
    DescriptorSource& operator=(DescriptorSource const&) = delete;
    ~DescriptorSource() override {
        if (m_isOwner) {
            ::close(m_descriptor);
        }
    }

    // A terminal can be read again after Ctrl-D; whoever typed it means the end.
    std::size_t read(char* buffer, std::size_t size) override {
        while (!m_isAtEnd) {
            m_interrupt.waitForInput(m_descriptor);
            auto const count = ::read(m_descriptor, buffer, size);
            if (count >= 0) {
                m_isAtEnd = count == 0;
                m_position += static_cast<std::uint64_t>(count);
                return static_cast<std::size_t>(count);
            }
            if (errno != EINTR && errno != EAGAIN) {
                throw InputError(std::strerror(errno));
            }
        }
        return 0;
    }

    std::uint64_t position() const override { return m_position; }

  private:
    int m_descriptor;
    bool m_isOwner;
    bool m_isAtEnd = false;
    Interrupt& m_interrupt;
    std::uint64_t m_position = 0;
};

// Returns first what was read ahead.
class ReplayedSource : public ByteSource {
  public:
    ReplayedSource(std::string start, std::unique_ptr<ByteSource> rest)
        : m_start(std::move(start)), m_rest(std::move(rest)) {}

    std::size_t read(char* buffer, std::size_t size) override {
        if (m_start.empty()) {
            return m_rest->read(buffer, size);
        }
        auto const count = m_start.copy(buffer, size);
        m_start.erase(0, count);
        return count;
    }

    std::uint64_t position() const override { return m_rest->position(); }

  private:
    std::string m_start;
    std::unique_ptr<ByteSource> m_rest;
};

// First bytes of the packed formats (RFC 1952, RFC 8878, the .xz file format 1.1.0).
constexpr std::string_view s_magics[] = {{"\x1F\x8B", 2},
                                         {"\xFD"
                                          "7zXZ\0",
                                          6},
                                         {"\x28\xB5\x2F\xFD", 4}};
constexpr std::size_t longestMagic = 6;

bool s_isPacked(std::string_view start) {
    return std::any_of(std::begin(s_magics), std::end(s_magics),
                       [&](std::string_view magic) { return start.starts_with(magic); });
}

std::unique_ptr<ByteSource> s_unpacked(std::unique_ptr<ByteSource> source) {
    bool const isPacked = s_isPacked(peekStart(source, longestMagic));
    return isPacked ? unpack(std::move(source)) : std::move(source);
}

} // namespace

std::string peekStart(std::unique_ptr<ByteSource>& source, std::size_t size) {
    std::string start(size, '\0');
    std::size_t length = 0;
    for (std::size_t count = 1; length < size && count != 0; length += count) {
        count = source->read(start.data() + length, size - length);
    }
    start.resize(length);
    source = std::make_unique<ReplayedSource>(start, std::move(source));
    return start;
}

std::unique_ptr<ByteSource> openInput(std::string const& path, Interrupt& interrupt) {
    bool const isStandardInput = path == "-";
    // A named pipe without a writer must not block the program where it ignores signals.
    int const descriptor =
        isStandardInput ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) {
        throw InputError(std::strerror(errno));
    }
    return s_unpacked(std::make_unique<DescriptorSource>(descriptor, !isStandardInput, interrupt));
}

} // namespace Quorvane
