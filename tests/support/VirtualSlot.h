// SPDX-License-Identifier: Apache-2.0
//
// Where a virtual operation stands in its class's table: hosts that were compiled against another
// build of the library call by this number.
#pragma once

#include <cstddef>
#include <cstring>

namespace Quorvane::Testing {

// Slots 0 and 1 are those of a destructor that is declared first. In the Itanium C++ ABI a pointer
// to a virtual member begins with the offset of its slot in bytes, plus one.
template<typename Class, typename Signature>
std::size_t virtualSlot(Signature Class::*operation) {
    std::size_t offset = 0;
    static_assert(sizeof operation >= sizeof offset);
    std::memcpy(&offset, &operation, sizeof offset);
    return (offset - 1) / sizeof(void*);
}

} // namespace Quorvane::Testing
