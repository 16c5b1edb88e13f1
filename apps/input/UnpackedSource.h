// SPDX-License-Identifier: Apache-2.0
//
// Unpacks gzip, xz and zstd, over libarchive.
#pragma once

#include "apps/input/ByteSource.h"

#include <memory>

namespace Quorvane {

// Throws an InputError when the start of `packed` is damaged; later damage shows in read.
std::unique_ptr<ByteSource> unpack(std::unique_ptr<ByteSource> packed);

} // namespace Quorvane
