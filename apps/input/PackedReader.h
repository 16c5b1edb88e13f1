// SPDX-License-Identifier: Apache-2.0
//
// PackedReader: libarchive over a source of bytes. It unpacks gzip, bzip2 and zstd, or takes tar
// and zip archives apart; what is no archive is one entry. One object, one thread.
//
// It does one thing at a time, since libarchive would unpack what is packed 25 times over, with
// memory for each time. What an entry may ask for is limited: see the constants.
#pragma once

#include "apps/input/ByteSource.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>

struct archive;
struct archive_entry;

namespace Quorvane {

// Of data in an archive that a password protects.
inline constexpr char isEncrypted[] = "it is encrypted";

// Begins what is said of damage in all packed data.
inline constexpr char damagedData[] = "damaged packed data: ";
inline constexpr char endsTooEarly[] = "it ends too early";

// The memory that unpacking may take. It is what libzstd allows by itself (a window of 128 MiB);
// "xz -9" needs half of it, and bzip2, gzip and the methods of zip that are read below 8 MiB.
inline constexpr std::uint64_t maxUnpackingMemory = std::uint64_t{128} << 20U;

// Says that it is not enough.
std::string needsTooMuchMemory();

// The bytes before the data of one entry: names, and the extended headers of tar, which libarchive
// limits to 1 MiB each. A map of the holes in a sparse file has no other limit, and takes twelve
// times its bytes in memory.
inline constexpr std::size_t maxEntryHead = std::size_t{6} << 20U;

class PackedReader {
  public:
    enum class Form { gzip, bzip2, zstd, archive };

    // Reads up to the first entry. Throws an InputError when the start is damaged.
    PackedReader(std::unique_ptr<ByteSource> packed, Form form);
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
    void support(Form form);
    void findEntry();
    void requireBoundedMethod() const;
    void rethrow();

    static constexpr std::size_t packedPiece = 65536;

    std::unique_ptr<ByteSource> m_packed;
    std::array<char, packedPiece> m_buffer{};
    std::unique_ptr<archive, int (*)(archive*)> m_archive;
    std::exception_ptr m_thrown; // by m_packed
    archive_entry* m_entry = nullptr;
    std::size_t m_headLeft = 0; // of maxEntryHead, while an entry is looked for
    bool m_isInHead = false;
    int m_status;          // of the last look for an entry
    bool m_isTaken = true; // next has told the caller about it
};

} // namespace Quorvane
