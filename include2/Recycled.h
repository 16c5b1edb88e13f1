// SPDX-License-Identifier: Apache-2.0
//
// Recycled: base of small objects that are made and destroyed many times a message, such as the
// wrappers of handles. Their memory goes back to the thread that destroys them, which uses it again
// for the next object of about the same size: a scan makes a hundred of them, and the heap would be
// a fifth of its time. Each thread keeps a bounded number of blocks, until it ends.
//
// A derived class may be destroyed on any thread. Under AddressSanitizer all memory comes from the
// heap, so that the use of an object after its end is found.
#pragma once

#include "include2/Export.h"

#include <cstddef>

namespace Quorvane {

class QV_API Recycled {
  public:
    // Throws std::bad_alloc. A block for more than 512 bytes comes from the heap.
    static void* operator new(std::size_t size); // NOLINT(misc-new-delete-overloads): sized delete
    // `size` as it was asked for.
    static void operator delete(void* block, std::size_t size) noexcept;

  protected:
    Recycled() = default;
    Recycled(Recycled const&) = default;
    Recycled& operator=(Recycled const&) = default;
    ~Recycled() = default;
};

// For containers whose elements come and go one by one, such as lists.
template<typename T>
struct RecycledAllocator {
    using value_type = T; // what containers ask an allocator for

    // Allocators hold nothing.
    RecycledAllocator() = default;
    // From one for other objects.
    template<typename Other>
    explicit RecycledAllocator(RecycledAllocator<Other> const& /*other*/) {}

    // Room for `count` objects. Throws std::bad_alloc.
    T* allocate(std::size_t count) {
        return static_cast<T*>(Recycled::operator new(count * sizeof(T)));
    }
    // `count` as it was asked for.
    void deallocate(T* objects, std::size_t count) noexcept {
        Recycled::operator delete(objects, count * sizeof(T));
    }

    // Always true: each can free what the other allocated.
    friend bool operator==(RecycledAllocator const& /*a*/, RecycledAllocator const& /*b*/) {
        return true;
    }
};

} // namespace Quorvane
