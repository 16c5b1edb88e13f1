// SPDX-License-Identifier: Apache-2.0
#include "include2/Recycled.h"

#include <array>
#include <new>

namespace Quorvane {

namespace {

#ifdef __SANITIZE_ADDRESS__
constexpr bool isRecycling = false;
#else
constexpr bool isRecycling = true;
#endif

// Sizes are rounded up to whole steps; blocks of one size are kept together.
constexpr std::size_t step = 16;
constexpr std::size_t largest = 512;
// Of each size. A message of real mail needs fewer at once; one with thousands of fields must not make
// a thread keep their memory.
constexpr unsigned int mostKept = 64;

// A free block; its own memory links it to the next one.
struct Block {
    Block* m_next;
};

struct Stack {
    Block* m_top;
    unsigned int m_count;
};

// Needs no destructor, so it can be used until the thread is gone.
struct Kept {
    std::array<Stack, largest / step> m_stacks;
    bool m_isWatched; // an Owner gives the blocks back when the thread ends
    bool m_isEnded;
};

constinit thread_local Kept s_kept{};

void s_release(Stack& stack) {
    while (stack.m_top != nullptr) {
        auto* const block = stack.m_top;
        stack.m_top = block->m_next;
        ::operator delete(block);
    }
}

struct Owner {
    Owner() { s_kept.m_isWatched = true; }
    Owner(Owner const&) = delete;
    Owner& operator=(Owner const&) = delete;
    ~Owner() {
        s_kept.m_isEnded = true;
        for (auto& stack : s_kept.m_stacks) {
            s_release(stack);
        }
    }
};

// Null when blocks of the size are not kept.
Stack* s_stack(Kept& kept, std::size_t size) {
    bool const isKept = isRecycling && size > 0 && size <= largest;
    return isKept ? &kept.m_stacks[(size - 1) / step] : nullptr;
}

bool s_takesBlocks(Kept& kept) {
    if (!kept.m_isWatched) {
        static thread_local Owner const owner;
    }
    return !kept.m_isEnded;
}

} // namespace

void* Recycled::operator new(std::size_t size) {
    auto* const stack = s_stack(s_kept, size);
    if (stack == nullptr) {
        return ::operator new(size);
    }
    if (auto* const block = stack->m_top) {
        stack->m_top = block->m_next;
        --stack->m_count;
        return block;
    }
    return ::operator new((size + step - 1) / step * step);
}

void Recycled::operator delete(void* block, std::size_t size) noexcept {
    auto& kept = s_kept;
    auto* const stack = s_stack(kept, size);
    if (block == nullptr || stack == nullptr || stack->m_count == mostKept ||
        !s_takesBlocks(kept)) {
        ::operator delete(block);
        return;
    }
    stack->m_top = ::new (block) Block{stack->m_top};
    ++stack->m_count;
}

} // namespace Quorvane
