// SPDX-License-Identifier: Apache-2.0
//
// Archive: the files in a tar or zip archive, in its order, read as a stream: memory depends
// neither on the number of the files nor on their sizes, and nothing is written to disk. Folders,
// links and devices in it are passed over. One object, one thread.
//
// The names in an archive are its maker's choice; they are only ever shown and compared.
#pragma once

#include "apps/input/ByteSource.h"

#include <cstdint>
#include <memory>
#include <string>

namespace Quorvane {

class PackedReader;

class Archive {
  public:
    // REQUIRES: packed->isArchive().
    explicit Archive(std::shared_ptr<PackedReader> packed);
    ~Archive();

    struct Member {
        // Without slashes and "./" at its start; empty for a damaged place between two files.
        std::string m_name;
        // Not empty: why the file cannot be read. There may be others after it.
        std::string m_problem;
        // Valid until the next call; null when there is a problem. What is packed is unpacked.
        std::unique_ptr<ByteSource> m_source;
    };

    // False at the end. Throws an InputError when the rest cannot be read, and what ended
    // a wait for input.
    bool next(Member& member);

    std::uint64_t position() const;

  private:
    void open(Member& member);

    std::shared_ptr<PackedReader> m_packed;
    bool m_isInDamage = false;
};

// An input that was opened. One of the two is null.
struct OpenInput {
    std::unique_ptr<ByteSource> m_bytes; // unpacked
    std::unique_ptr<Archive> m_archive;
};

// Recognises packed files (gzip, bzip2, xz, zstd) and archives (tar, zip) by their content, not by
// their names. Throws an InputError when the start is damaged; later damage shows in reads.
OpenInput openPacked(std::unique_ptr<ByteSource> source);

// A file, or "-".
OpenInput openInput(std::string const& path, InputWait const& wait);

} // namespace Quorvane
