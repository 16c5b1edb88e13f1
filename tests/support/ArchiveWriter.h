// SPDX-License-Identifier: Apache-2.0
//
// Writes archives as others write them, and with what nobody should write into one.
#pragma once

#include <string>
#include <vector>

namespace Quorvane::Testing {

struct ArchivedFile {
    std::string m_name;
    std::string m_text = {};
    // Not empty: it is a link to this.
    std::string m_linksTo = {};
    bool m_isFolder = false;
};

struct ArchiveForm {
    char const* m_format;             // "gnutar", "pax", "ustar", "v7tar", "zip"
    char const* m_filter = "";        // "gzip", "bzip2", "xz", "zstd"
    char const* m_options = "";       // as archive_write_set_options(3) takes them
    char const* m_password = nullptr; // of encrypted archives
};

// The bytes of an archive. Throws std::runtime_error with what libarchive says.
std::string archiveOf(ArchiveForm const& form, std::vector<ArchivedFile> const& files);

} // namespace Quorvane::Testing
