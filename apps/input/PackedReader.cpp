// SPDX-License-Identifier: Apache-2.0
#include "apps/input/PackedReader.h"

#include <archive.h>
#include <archive_entry.h>
#include <cerrno>
#include <type_traits>
#include <utility>

namespace Quorvane {

static_assert(std::is_same_v<la_ssize_t, long>);

PackedReader::PackedReader(std::unique_ptr<ByteSource> packed)
    : m_packed(std::move(packed)), m_archive(archive_read_new(), archive_read_free) {
    archive_read_support_filter_bzip2(m_archive.get());
    archive_read_support_filter_gzip(m_archive.get());
    archive_read_support_filter_xz(m_archive.get());
    archive_read_support_filter_zstd(m_archive.get());
    archive_read_support_format_tar(m_archive.get());
    archive_read_support_format_zip_streamable(m_archive.get());
    archive_read_support_format_raw(m_archive.get());
    // A packed empty file has no raw entry.
    archive_read_support_format_empty(m_archive.get());
    m_status = archive_read_open(m_archive.get(), this, nullptr, readPacked, nullptr);
    if (m_status == ARCHIVE_OK) {
        m_status = archive_read_next_header(m_archive.get(), &m_entry);
    }
    rethrow();
    if (m_status == ARCHIVE_FATAL) {
        throw InputError(problem());
    }
    m_isTaken = false;
}

PackedReader::~PackedReader() = default;

bool PackedReader::isArchive() const {
    auto const format = archive_format(m_archive.get()) & ARCHIVE_FORMAT_BASE_MASK;
    return format == ARCHIVE_FORMAT_TAR || format == ARCHIVE_FORMAT_ZIP;
}

PackedReader::Found PackedReader::next() {
    if (m_isTaken && m_status != ARCHIVE_EOF) {
        m_status = archive_read_next_header(m_archive.get(), &m_entry);
        rethrow();
    }
    m_isTaken = true;
    switch (m_status) {
    case ARCHIVE_EOF:
        return Found::end;
    case ARCHIVE_OK:
    case ARCHIVE_WARN: // such as a name in an unknown character set
        return Found::entry;
    case ARCHIVE_FATAL:
        throw InputError(problem());
    default:
        return Found::damage;
    }
}

std::size_t PackedReader::read(char* buffer, std::size_t size) {
    if (m_status == ARCHIVE_EOF) {
        return 0;
    }
    auto const count = archive_read_data(m_archive.get(), buffer, size);
    rethrow();
    if (count < 0) {
        throw InputError(problem());
    }
    return static_cast<std::size_t>(count);
}

// For data that is cut off libarchive gives no text, or what its decoder says.
std::string PackedReader::problem() const {
    auto const* const text = archive_error_string(m_archive.get());
    std::string const said = text == nullptr ? "" : text;
    if (said.find("Passphrase") != std::string::npos) {
        return isEncrypted;
    }
    auto const isCut = said.empty() || said.find("No progress") != std::string::npos;
    return "damaged packed data: " + (isCut ? "it ends too early" : said);
}

// libarchive is C: an exception must not pass through it.
long PackedReader::readPacked(archive* archive, void* self, void const** buffer) {
    auto& reader = *static_cast<PackedReader*>(self);
    try {
        auto const count = reader.m_packed->read(reader.m_buffer.data(), reader.m_buffer.size());
        *buffer = reader.m_buffer.data();
        return static_cast<long>(count);
    } catch (...) {
        reader.m_thrown = std::current_exception();
        archive_set_error(archive, EIO, "cannot be read");
        return ARCHIVE_FATAL;
    }
}

void PackedReader::rethrow() {
    if (m_thrown) {
        std::rethrow_exception(std::exchange(m_thrown, nullptr));
    }
}

} // namespace Quorvane
