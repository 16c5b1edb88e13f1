// SPDX-License-Identifier: Apache-2.0
#include "support/ArchiveWriter.h"

#include <archive.h>
#include <archive_entry.h>
#include <memory>
#include <stdexcept>

namespace Quorvane::Testing {

namespace {

using Entry = std::unique_ptr<archive_entry, void (*)(archive_entry*)>;

la_ssize_t s_append(archive* /*archive*/, void* bytes, void const* buffer, std::size_t size) {
    static_cast<std::string*>(bytes)->append(static_cast<char const*>(buffer), size);
    return static_cast<la_ssize_t>(size);
}

void s_check(archive* archive, int status) {
    if (status < ARCHIVE_WARN) {
        throw std::runtime_error(archive_error_string(archive));
    }
}

void s_add(archive* archive, ArchivedFile const& file) {
    Entry const entry(archive_entry_new(), archive_entry_free);
    archive_entry_set_pathname(entry.get(), file.m_name.c_str());
    archive_entry_set_perm(entry.get(), 0644);
    if (file.m_isFolder) {
        archive_entry_set_filetype(entry.get(), AE_IFDIR);
    } else if (!file.m_linksTo.empty()) {
        archive_entry_set_filetype(entry.get(), AE_IFLNK);
        archive_entry_set_symlink(entry.get(), file.m_linksTo.c_str());
    } else {
        archive_entry_set_filetype(entry.get(), AE_IFREG);
        archive_entry_set_size(entry.get(), static_cast<la_int64_t>(file.m_text.size()));
    }
    s_check(archive, archive_write_header(archive, entry.get()));
    archive_write_data(archive, file.m_text.data(), file.m_text.size());
    s_check(archive, archive_write_finish_entry(archive));
}

} // namespace

std::string archiveOf(ArchiveForm const& form, std::vector<ArchivedFile> const& files) {
    std::string bytes;
    std::unique_ptr<archive, int (*)(archive*)> const writer(archive_write_new(),
                                                             archive_write_free);
    auto* const archive = writer.get();
    s_check(archive, archive_write_set_format_by_name(archive, form.m_format));
    if (*form.m_filter != '\0') {
        s_check(archive, archive_write_add_filter_by_name(archive, form.m_filter));
    }
    s_check(archive, archive_write_set_options(archive, form.m_options));
    if (form.m_password != nullptr) {
        s_check(archive, archive_write_set_passphrase(archive, form.m_password));
    }
    archive_write_set_bytes_in_last_block(archive, 1); // without padding
    s_check(archive, archive_write_open(archive, &bytes, nullptr, s_append, nullptr));
    for (auto const& file : files) {
        s_add(archive, file);
    }
    s_check(archive, archive_write_close(archive));
    return bytes;
}

} // namespace Quorvane::Testing
