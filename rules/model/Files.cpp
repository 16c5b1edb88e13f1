// SPDX-License-Identifier: Apache-2.0
#include "rules/model/Files.h"

#include "rules/model/RuleError.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace Quorvane::Rules {

namespace {

namespace fs = std::filesystem;
using Kind = RuleError::Kind;

[[noreturn]] void s_fail(Kind kind, fs::path const& path, char const* what, int error) {
    throw RuleError(kind, path.string() + ": " + what + ": " + std::strerror(error));
}

class Descriptor {
  public:
    explicit Descriptor(int fd) : m_fd(fd) {}
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;
    ~Descriptor() { close(); }

    int get() const { return m_fd; }
    bool isOpen() const { return m_fd >= 0; }
    // False when closing reports that data was lost.
    bool close() {
        auto const fd = m_fd;
        m_fd = -1;
        return fd < 0 || ::close(fd) == 0;
    }

  private:
    int m_fd;
};

Bytes s_readAll(Descriptor const& file, fs::path const& path) {
    Bytes content;
    std::array<char, 65536> block{};
    for (;;) {
        auto const got = ::read(file.get(), block.data(), block.size());
        if (got < 0 && errno != EINTR) {
            s_fail(Kind::noInput, path, "cannot be read", errno);
        }
        if (got == 0) {
            return content;
        }
        if (got > 0) {
            content.append(block.data(), static_cast<std::size_t>(got));
        }
        if (content.size() > maxRuleFileSize) {
            throw RuleError(Kind::badData, path.string() + ": larger than any rule file can be");
        }
    }
}

bool s_writeAll(int fd, std::string_view content) {
    while (!content.empty()) {
        auto const put = ::write(fd, content.data(), content.size());
        if (put < 0 && errno != EINTR) {
            return false;
        }
        content.remove_prefix(put > 0 ? static_cast<std::size_t>(put) : 0);
    }
    return true;
}

bool s_fill(int fd, std::string_view content) {
    Descriptor file(fd);
    return s_writeAll(file.get(), content) && ::fchmod(file.get(), 0644) == 0 &&
           ::fsync(file.get()) == 0 && file.close();
}

fs::path s_folderOf(fs::path const& path) {
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

} // namespace

std::optional<Bytes> readFileIfThere(fs::path const& path) {
    Descriptor const file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.isOpen()) {
        if (errno == ENOENT) {
            return std::nullopt;
        }
        s_fail(Kind::noInput, path, "cannot be opened", errno);
    }
    return s_readAll(file, path);
}

Bytes readFile(fs::path const& path) {
    if (auto content = readFileIfThere(path)) {
        return std::move(*content);
    }
    s_fail(Kind::noInput, path, "cannot be opened", ENOENT);
}

StagedFile::StagedFile(fs::path path, std::string_view content)
    : m_path(std::move(path)),
      m_temporary((s_folderOf(m_path) / ("." + m_path.filename().string() + ".XXXXXX")).string()) {
    auto const fd = ::mkostemp(m_temporary.data(), O_CLOEXEC);
    if (fd < 0) {
        s_fail(Kind::cannotWrite, m_path, "cannot be written", errno);
    }
    if (!s_fill(fd, content)) {
        auto const error = errno;
        ::unlink(m_temporary.c_str());
        s_fail(Kind::cannotWrite, m_path, "cannot be written", error);
    }
}

StagedFile::~StagedFile() {
    if (!m_temporary.empty()) {
        ::unlink(m_temporary.c_str());
    }
}

void StagedFile::putInPlace() {
    if (::rename(m_temporary.c_str(), m_path.c_str()) != 0) {
        s_fail(Kind::cannotWrite, m_path, "cannot be replaced", errno);
    }
    m_temporary.clear();
}

void replaceFile(fs::path const& path, std::string_view content) {
    StagedFile(path, content).putInPlace();
    syncFolder(s_folderOf(path));
}

void removeFile(fs::path const& path) {
    if (::unlink(path.c_str()) != 0 && errno != ENOENT) {
        s_fail(Kind::cannotWrite, path, "cannot be removed", errno);
    }
}

void syncFolder(fs::path const& folder) {
    Descriptor const opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!opened.isOpen() || ::fsync(opened.get()) != 0) {
        s_fail(Kind::cannotWrite, folder, "cannot be synced", errno);
    }
}

void makeFolder(fs::path const& folder) {
    std::error_code error;
    fs::create_directories(folder, error);
    if (error || !fs::is_directory(folder)) {
        s_fail(Kind::cannotWrite, folder, "cannot be made", error ? error.value() : ENOTDIR);
    }
}

} // namespace Quorvane::Rules
