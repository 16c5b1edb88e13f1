// SPDX-License-Identifier: Apache-2.0
//
// Unpacks files that are packed by gzip, bzip2, xz or zstd. The file decides how much memory that
// takes; one that asks for more than maxUnpackingMemory (PackedReader.h) is refused.
#pragma once

#include "apps/input/ByteSource.h"

#include <memory>

namespace Quorvane {

class PackedReader;

// The data of a reader's entry.
class EntrySource : public ByteSource {
  public:
    explicit EntrySource(std::shared_ptr<PackedReader> reader);

    std::size_t read(char* buffer, std::size_t size) override;
    std::uint64_t position() const override;

  private:
    std::shared_ptr<PackedReader> m_reader;
};

// The bytes behind packed ones, which are recognised by how they begin; else `source` itself.
// Throws an InputError when the start is damaged, or packed a second time; later damage shows in
// reads.
std::unique_ptr<ByteSource> unpacked(std::unique_ptr<ByteSource> source);

} // namespace Quorvane
