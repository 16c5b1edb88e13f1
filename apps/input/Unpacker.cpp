// SPDX-License-Identifier: Apache-2.0
#include "apps/input/Unpacker.h"

#include "apps/input/PackedReader.h"
#include "apps/input/XzSource.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

namespace Quorvane {

namespace {

using Source = std::unique_ptr<ByteSource>;

template<PackedReader::Form form>
Source s_read(Source packed) {
    return std::make_unique<EntrySource>(std::make_shared<PackedReader>(std::move(packed), form));
}

Source s_readXz(Source packed) {
    return std::make_unique<XzSource>(std::move(packed));
}

struct Packing {
    std::string_view m_start; // the first bytes of such files
    Source (*m_unpacked)(Source packed);
};

// RFC 1952, bzip2, the .xz file format 1.1.0, RFC 8878.
constexpr Packing packings[] = {{{"\x1F\x8B", 2}, s_read<PackedReader::Form::gzip>},
                                {"BZh", s_read<PackedReader::Form::bzip2>},
                                {{"\xFD"
                                  "7zXZ\0",
                                  6},
                                 s_readXz},
                                {{"\x28\xB5\x2F\xFD", 4}, s_read<PackedReader::Form::zstd>}};
constexpr std::size_t longestStart = 6;

Packing const* s_packing(Source& source) {
    auto const start = peekStart(source, longestStart);
    auto const* const found =
        std::find_if(std::begin(packings), std::end(packings),
                     [&](Packing const& packing) { return start.starts_with(packing.m_start); });
    return found == std::end(packings) ? nullptr : found;
}

} // namespace

EntrySource::EntrySource(std::shared_ptr<PackedReader> reader) : m_reader(std::move(reader)) {}

std::size_t EntrySource::read(char* buffer, std::size_t size) {
    return m_reader->read(buffer, size);
}

std::uint64_t EntrySource::position() const {
    return m_reader->position();
}

Source unpacked(Source source) {
    auto const* const packing = s_packing(source);
    if (packing == nullptr) {
        return source;
    }
    auto plain = packing->m_unpacked(std::move(source));
    if (s_packing(plain) != nullptr) {
        throw InputError("it is packed twice; unpack it first");
    }
    return plain;
}

} // namespace Quorvane
