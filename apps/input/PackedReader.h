// SPDX-License-Identifier: Apache-2.0
//
// PackedReader: libarchive over a source of bytes. It unpacks gzip, bzip2, xz and zstd, and takes
// tar and zip archives apart; what is no archive is one entry. One object, one thread.
#pragma once

#include "apps/input/ByteSource.h"

#include <array>
#include <exception>
#include <memory>
#include <string>

struct archive;
struct archive_entry;

namespace Quorvane {

// Of data in an archive that a password protects.
inline constexpr char isEncrypted[] = "it is encrypted";

class PackedReader {
  public:
    // Reads up to the first entry. Throws an InputError when the start is damaged.
    explicit PackedReader(std::unique_ptr<ByteSource> packed);
    PackedReader(PackedReader const&) = delete;
    PackedReader& operator=(PackedReader const&) = delete;
    ~PackedReader();

    // Whether it has files with names, as tar and zip have.
    bool isArchive() const;

    enum class Found {
        entry,
        damage, // something that cannot be read; entries may follow
        end,
    };
    // The next entry; the first call finds the first one. Throws an InputError when nothing more
    // can be read.
    Found next();
    // The entry that was found; valid until the next one is looked for.
    archive_entry* entry() const { return m_entry; }
    // What libarchive says about the damage.
    std::string problem() const;

    // Reads from the entry like a ByteSource.
    std::size_t read(char* buffer, std::size_t size);

    std::uint64_t position() const { return m_packed->position(); }

  private:
    static long readPacked(archive* archive, void* self, void const** buffer);
    void rethrow();

    static constexpr std::size_t packedPiece = 65536;

    std::unique_ptr<ByteSource> m_packed;
    std::array<char, packedPiece> m_buffer{};
    std::unique_ptr<archive, int (*)(archive*)> m_archive;
    std::exception_ptr m_thrown; // by m_packed
    archive_entry* m_entry = nullptr;
    int m_status;          // of the last look for an entry
    bool m_isTaken = true; // next has told the caller about it
};

} // namespace Quorvane
