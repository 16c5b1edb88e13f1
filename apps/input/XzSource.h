// SPDX-License-Identifier: Apache-2.0
//
// XzSource: the bytes behind those of an .xz file. libarchive reads such files, too, but without a
// limit of memory: half a megabyte can ask it for 3 GiB. One object, one thread.
#pragma once

#include "apps/input/ByteSource.h"

#include <array>
#include <lzma.h>
#include <memory>

namespace Quorvane {

class XzSource : public ByteSource {
  public:
    explicit XzSource(std::unique_ptr<ByteSource> packed);
    XzSource(XzSource const&) = delete;
    XzSource& operator=(XzSource const&) = delete;
    ~XzSource() override;

    std::size_t read(char* buffer, std::size_t size) override;
    std::uint64_t position() const override { return m_packed->position(); }

  private:
    void fill();
    [[noreturn]] void fail() const;

    static constexpr std::size_t packedPiece = 65536;

    std::unique_ptr<ByteSource> m_packed;
    std::array<char, packedPiece> m_buffer{};
    bool m_isPackedEnd = false;
    lzma_stream m_stream = LZMA_STREAM_INIT;
    lzma_ret m_status = LZMA_OK; // of the last step
};

} // namespace Quorvane
