// SPDX-License-Identifier: Apache-2.0
//
// ByteSource: bytes in pieces, of a file or pipe, or unpacked from one. One object, one thread.
#pragma once

#include "apps/input/InputWait.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

namespace Quorvane {

// An input that cannot be opened, read or unpacked. The text says why, without the name.
class InputError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class ByteSource {
  public:
    virtual ~ByteSource() = default;

    // Fills up to `size` bytes; 0 at the end. Throws an InputError, or what ended the wait.
    virtual std::size_t read(char* buffer, std::size_t size) = 0;

    // Bytes taken from the file so far, before unpacking.
    virtual std::uint64_t position() const = 0;
};

// The bytes of a file as they are, or for "-" of standard input, which is left open at the end.
// Throws an InputError when it cannot be opened. `wait` outlives the source.
std::unique_ptr<ByteSource> openBytes(std::string const& path, InputWait const& wait);

// The first bytes, `size` of them unless the end comes before. `source` returns them again.
std::string peekStart(std::unique_ptr<ByteSource>& source, std::size_t size);

} // namespace Quorvane
