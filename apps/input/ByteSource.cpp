// SPDX-License-Identifier: Apache-2.0
#include "apps/input/ByteSource.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace Quorvane {

namespace {

class DescriptorSource : public ByteSource {
  public:
    DescriptorSource(int descriptor, bool isOwner, InputWait const& wait)
        : m_descriptor(descriptor), m_isOwner(isOwner), m_wait(wait) {}
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
            m_wait.waitForInput(m_descriptor);
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
    InputWait const& m_wait;
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

std::unique_ptr<ByteSource> openBytes(std::string const& path, InputWait const& wait) {
    bool const isStandardInput = path == "-";
    // A named pipe without a writer must not block the program where it ignores signals.
    int const descriptor =
        isStandardInput ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) {
        throw InputError(std::strerror(errno));
    }
    return std::make_unique<DescriptorSource>(descriptor, !isStandardInput, wait);
}

} // namespace Quorvane
