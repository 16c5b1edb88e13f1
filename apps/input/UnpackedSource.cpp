// SPDX-License-Identifier: Apache-2.0
#include "apps/input/ByteSource.h"

#include <archive.h>
#include <archive_entry.h>
#include <array>
#include <exception>
#include <utility>

namespace Quorvane {

namespace {

// For data that is cut off libarchive gives no text, or what its decoder says.
std::string s_problem(archive* archive) {
    auto const* const text = archive_error_string(archive);
    std::string const problem = text == nullptr ? "" : text;
    auto const isCut = problem.empty() || problem.find("No progress") != std::string::npos;
    return "damaged packed data: " + (isCut ? "it ends too early" : problem);
}

class UnpackedSource : public ByteSource {
  public:
    explicit UnpackedSource(std::unique_ptr<ByteSource> packed)
        : m_packed(std::move(packed)), m_archive(archive_read_new(), archive_read_free) {
        archive_read_support_filter_gzip(m_archive.get());
        archive_read_support_filter_xz(m_archive.get());
        archive_read_support_filter_zstd(m_archive.get());
        archive_read_support_format_raw(m_archive.get());
        // A packed empty file has no raw entry.
        archive_read_support_format_empty(m_archive.get());
        check(archive_read_open(m_archive.get(), this, nullptr, s_readPacked, nullptr));
        archive_entry* entry = nullptr;
        auto const status = archive_read_next_header(m_archive.get(), &entry);
        m_isAtEnd = status == ARCHIVE_EOF;
        check(m_isAtEnd ? ARCHIVE_OK : status);
    }

    std::size_t read(char* buffer, std::size_t size) override {
        if (m_isAtEnd) {
            return 0;
        }
        auto const count = archive_read_data(m_archive.get(), buffer, size);
        check(count < 0 ? static_cast<int>(count) : ARCHIVE_OK);
        m_isAtEnd = count == 0;
        return static_cast<std::size_t>(count);
    }

    std::uint64_t position() const override { return m_packed->position(); }

  private:
    // libarchive is C: an exception must not pass through it.
    static la_ssize_t s_readPacked(archive* archive, void* self, void const** buffer) {
        auto& source = *static_cast<UnpackedSource*>(self);
        try {
            auto const count =
                source.m_packed->read(source.m_buffer.data(), source.m_buffer.size());
            *buffer = source.m_buffer.data();
            return static_cast<la_ssize_t>(count);
        } catch (...) {
            source.m_thrown = std::current_exception();
            archive_set_error(archive, EIO, "cannot be read");
            return ARCHIVE_FATAL;
        }
    }

    void check(int status) const {
        if (m_thrown) {
            std::rethrow_exception(m_thrown);
        }
        if (status < ARCHIVE_WARN) {
            throw InputError(s_problem(m_archive.get()));
        }
    }

    static constexpr std::size_t packedPiece = 65536;

    std::unique_ptr<ByteSource> m_packed;
    std::array<char, packedPiece> m_buffer{};
    std::unique_ptr<archive, int (*)(archive*)> m_archive;
    std::exception_ptr m_thrown;
    bool m_isAtEnd = false;
};

} // namespace

std::unique_ptr<ByteSource> unpack(std::unique_ptr<ByteSource> packed) {
    return std::make_unique<UnpackedSource>(std::move(packed));
}

} // namespace Quorvane
