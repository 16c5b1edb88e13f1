// SPDX-License-Identifier: Apache-2.0
#include "apps/input/Archive.h"

#include "apps/input/FileWalker.h"
#include "apps/input/PackedReader.h"
#include "apps/input/Unpacker.h"

#include <algorithm>
#include <archive_entry.h>
#include <string_view>
#include <utility>

namespace Quorvane {

namespace {

constexpr std::string_view mboxStart = "From ";
// A tar archive begins with such a block: a name, and bytes that are 0 after it.
constexpr std::size_t tarBlock = 512;

// Whether libarchive has to look at it. An mbox is not read further than needed: it may come
// slowly.
bool s_mayBeArchive(std::unique_ptr<ByteSource>& source) {
    if (peekStart(source, mboxStart.size()) == mboxStart) {
        return false;
    }
    auto const zero = peekStart(source, tarBlock).find('\0');
    return zero != 0 && zero != std::string::npos;
}

// In UTF-8 if the archive says how its names are written, else as they are.
std::string s_name(archive_entry* entry) {
    auto const* name = archive_entry_pathname_utf8(entry);
    name = name == nullptr ? archive_entry_pathname(entry) : name;
    std::string_view text = name == nullptr ? "" : name;
    while (text.starts_with("/") || text.starts_with("./")) {
        text.remove_prefix(text.front() == '/' ? 1 : 2);
    }
    return std::string(text);
}

bool s_isWanted(archive_entry* entry, std::string const& name) {
    bool const isFile = archive_entry_filetype(entry) == AE_IFREG &&
                        archive_entry_hardlink(entry) == nullptr && !name.ends_with('/');
    return isFile && isMailFileName(name.substr(name.rfind('/') + 1));
}

} // namespace

Archive::Archive(std::shared_ptr<PackedReader> packed) : m_packed(std::move(packed)) {}

Archive::~Archive() = default;

std::uint64_t Archive::position() const {
    return m_packed->position();
}

bool Archive::next(Member& member) {
    for (;;) {
        member = Member();
        auto const found = m_packed->next();
        bool const isMoreDamage = found == PackedReader::Found::damage && m_isInDamage;
        m_isInDamage = found == PackedReader::Found::damage;
        if (found == PackedReader::Found::end) {
            return false;
        }
        if (m_isInDamage && !isMoreDamage) {
            member.m_problem = m_packed->problem();
            return true;
        }
        if (found == PackedReader::Found::entry) {
            member.m_name = s_name(m_packed->entry());
            if (s_isWanted(m_packed->entry(), member.m_name)) {
                open(member);
                return true;
            }
        }
    }
}

void Archive::open(Member& member) {
    if (archive_entry_is_encrypted(m_packed->entry()) != 0) {
        member.m_problem = isEncrypted;
        return;
    }
    try {
        auto opened = openPacked(std::make_unique<EntrySource>(m_packed));
        member.m_source = std::move(opened.m_bytes);
        member.m_problem =
            opened.m_archive ? "it is an archive in an archive; unpack it first" : "";
    } catch (InputError const& error) {
        member.m_problem = error.what();
    }
}

OpenInput openPacked(std::unique_ptr<ByteSource> source) {
    OpenInput opened;
    opened.m_bytes = unpacked(std::move(source));
    if (!s_mayBeArchive(opened.m_bytes)) {
        return opened;
    }
    auto reader =
        std::make_unique<PackedReader>(std::move(opened.m_bytes), PackedReader::Form::archive);
    if (reader->isArchive()) {
        opened.m_archive = std::make_unique<Archive>(std::move(reader));
    } else {
        opened.m_bytes = std::make_unique<EntrySource>(std::move(reader));
    }
    return opened;
}

OpenInput openInput(std::string const& path, InputWait const& wait) {
    return openPacked(openBytes(path, wait));
}

} // namespace Quorvane
