// SPDX-License-Identifier: Apache-2.0
#include "apps/input/PackedReader.h"

#include <algorithm>
#include <archive.h>
#include <archive_entry.h>
#include <cerrno>
#include <iterator>
#include <string_view>
#include <type_traits>
#include <utility>

namespace Quorvane {

static_assert(std::is_same_v<la_ssize_t, long>);

std::string needsTooMuchMemory() {
    return "unpacking it needs more than " + std::to_string(maxUnpackingMemory >> 20U) +
           " MiB of memory; unpack it first, or pack it with a smaller window or dictionary";
}

PackedReader::PackedReader(std::unique_ptr<ByteSource> packed, Form form)
    : m_packed(std::move(packed)), m_archive(archive_read_new(), archive_read_free) {
    support(form);
    // A packed empty file has no raw entry.
    archive_read_support_format_raw(m_archive.get());
    archive_read_support_format_empty(m_archive.get());
    m_status = archive_read_open(m_archive.get(), this, nullptr, readPacked, nullptr);
    // What cannot be unpacked at all would be taken for something empty.
    if (m_status == ARCHIVE_OK && archive_errno(m_archive.get()) != 0) {
        m_status = ARCHIVE_FATAL;
    }
    if (m_status == ARCHIVE_OK) {
        findEntry();
    }
    rethrow();
    if (m_status == ARCHIVE_FATAL) {
        throw InputError(problem());
    }
    m_isTaken = false;
}

// Filters are named, not recognised: one that is recognised is followed by a look for another.
void PackedReader::support(Form form) {
    switch (form) {
    case Form::gzip:
        archive_read_append_filter(m_archive.get(), ARCHIVE_FILTER_GZIP);
        return;
    case Form::bzip2:
        archive_read_append_filter(m_archive.get(), ARCHIVE_FILTER_BZIP2);
        return;
    case Form::zstd:
        archive_read_append_filter(m_archive.get(), ARCHIVE_FILTER_ZSTD);
        return;
    case Form::archive:
        archive_read_support_format_tar(m_archive.get());
        archive_read_support_format_zip_streamable(m_archive.get());
    }
}

PackedReader::~PackedReader() = default;

bool PackedReader::isArchive() const {
    auto const format = archive_format(m_archive.get()) & ARCHIVE_FORMAT_BASE_MASK;
    return format == ARCHIVE_FORMAT_TAR || format == ARCHIVE_FORMAT_ZIP;
}

PackedReader::Found PackedReader::next() {
    if (m_isTaken && m_status != ARCHIVE_EOF) {
        findEntry();
        rethrow();
    }
    m_isTaken = true;
    switch (m_status) {
    case ARCHIVE_EOF:
        return Found::end;
    case ARCHIVE_OK:
    case ARCHIVE_WARN: // such as a name in an unknown character set
        requireBoundedMethod();
        return Found::entry;
    case ARCHIVE_FATAL:
        throw InputError(problem());
    default:
        return Found::damage;
    }
}

void PackedReader::findEntry() {
    // What is left of the entry before is no part of the next one's head. Damage in it was seen by
    // whoever wanted to read it.
    bool const isInData =
        m_entry != nullptr && (m_status == ARCHIVE_OK || m_status == ARCHIVE_WARN);
    auto const skipped = isInData ? archive_read_data_skip(m_archive.get()) : ARCHIVE_OK;
    if (skipped == ARCHIVE_EOF || skipped == ARCHIVE_FATAL) {
        m_status = ARCHIVE_FATAL;
        return;
    }
    m_headLeft = maxEntryHead;
    m_isInHead = true;
    m_status = archive_read_next_header(m_archive.get(), &m_entry);
    m_isInHead = false;
}

// libarchive gives some methods of zip (lzma, xz, ppmd) whatever memory the archive asks for, even
// to skip an entry.
void PackedReader::requireBoundedMethod() const {
    static constexpr std::string_view bounded[] = {"(uncompressed)", "(deflation)", "(bzip)"};
    if ((archive_format(m_archive.get()) & ARCHIVE_FORMAT_BASE_MASK) != ARCHIVE_FORMAT_ZIP) {
        return;
    }
    std::string_view const format = archive_format_name(m_archive.get());
    if (std::none_of(std::begin(bounded), std::end(bounded),
                     [&](std::string_view method) { return format.ends_with(method); })) {
        throw InputError("a file in it is packed by a method that is not read, " +
                         std::string(format) + "; pack it by deflation, as zip does by itself");
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
    if (said.find("too much memory") != std::string::npos) { // libzstd's words
        return needsTooMuchMemory();
    }
    auto const isCut = said.empty() || said.find("No progress") != std::string::npos;
    return damagedData + (isCut ? endsTooEarly : said);
}

// libarchive is C: an exception must not pass through it.
long PackedReader::readPacked(archive* archive, void* self, void const** buffer) {
    auto& reader = *static_cast<PackedReader*>(self);
    try {
        auto const count = reader.m_packed->read(reader.m_buffer.data(), reader.m_buffer.size());
        if (reader.m_isInHead && count > reader.m_headLeft) {
            throw InputError(std::string(damagedData) + "more than " +
                             std::to_string(maxEntryHead >> 20U) +
                             " MiB before the data of a file");
        }
        reader.m_headLeft -= reader.m_isInHead ? count : 0;
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
