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
    throw RuleError(kind, {path.string()}, std::string(what) + ": " + std::strerror(error));
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

// Reads to the end, or past the limit. False, and errno says why, when it cannot.
bool s_readAll(Descriptor const& file, std::size_t limit, Bytes& content) {
    std::array<char, 65536> block{};
    while (content.size() <= limit) {
        auto const got = ::read(file.get(), block.data(), block.size());
        if (got == 0) {
            return true;
        }
        if (got > 0) {
            content.append(block.data(), static_cast<std::size_t>(got));
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

void s_requireRegularFile(fs::path const& path) {
    std::error_code error;
    auto const status = fs::status(path, error);
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        throw RuleError(Kind::noInput, {path.string()}, "is no regular file");
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
    Bytes content;
    if (!s_readAll(file, maxRuleFileSize, content)) {
        s_fail(Kind::noInput, path, "cannot be read", errno);
    }
    if (content.size() > maxRuleFileSize) {
        throw RuleError(Kind::badData, {path.string()},
                        "larger than " + std::to_string(maxRuleFileSize >> 20U) +
                            " MiB, so it is not what is expected here");
    }
    return content;
}

Bytes readFile(fs::path const& path) {
    if (auto content = readFileIfThere(path)) {
        return std::move(*content);
    }
    s_fail(Kind::noInput, path, "cannot be opened", ENOENT);
}

std::optional<Bytes> readRuleFileIfThere(fs::path const& path) {
    s_requireRegularFile(path);
    return readFileIfThere(path);
}

Bytes readRuleFile(fs::path const& path) {
    s_requireRegularFile(path);
    return readFile(path);
}

SpareFile readSpareFile(fs::path const& path, std::size_t limit) {
    Descriptor const file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat facts {};
    Bytes content;
    if (!file.isOpen()) {
        return {{},
                errno == ENOENT ? "" : std::string("cannot be opened: ") + std::strerror(errno)};
    }
    if (::fstat(file.get(), &facts) != 0 || !S_ISREG(facts.st_mode)) {
        return {{}, "is no regular file"};
    }
    if (!s_readAll(file, limit, content)) {
        return {{}, std::string("cannot be read: ") + std::strerror(errno)};
    }
    if (content.size() > limit) {
        return {{}, "has more than " + std::to_string(limit) + " bytes"};
    }
    return {std::move(content), ""};
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
