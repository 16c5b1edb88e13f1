// SPDX-License-Identifier: Apache-2.0
#include "include2/Recycled.h"

#include <array>
#include <memory>
#include <new>
#include <optional>
#include <pthread.h>

namespace Quorvane {

namespace {

// GCC and clang say it in different ways.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool isRecycling = false;
#elif defined(__has_feature)
constexpr bool isRecycling = !__has_feature(address_sanitizer);
#else
constexpr bool isRecycling = true;
#endif

// Sizes are rounded up to whole steps; blocks of one size are kept together.
constexpr std::size_t step = 16;
constexpr std::size_t largest = 512;
// Of each size. A message of real mail needs fewer at once; one with thousands of fields must not
// make a thread keep their memory.
constexpr unsigned int mostKept = 64;

// A free block; its own memory links it to the next one.
struct Block {
    Block* m_next;
};

struct Stack {
    Block* m_top;
    unsigned int m_count;
};

using Stacks = std::array<Stack, largest / step>;

// Null until the thread first gives a block back, and again when it ends. Needs no destructor, so
// they can be read until the thread is gone. Every object asks for the pointer: this way of access
// costs one instruction, and a pointer is little enough for a library that is loaded late.
__attribute__((tls_model("initial-exec"))) constinit thread_local Stacks* s_kept = nullptr;
constinit thread_local bool s_isEnded = false;

void s_release(Stack& stack) {
    while (stack.m_top != nullptr) {
        auto* const block = stack.m_top;
        stack.m_top = block->m_next;
        ::operator delete(block);
    }
}

// When a thread ends, after its thread_local objects.
void s_giveBack(void* kept) {
    s_kept = nullptr;
    s_isEnded = true;
    std::unique_ptr<Stacks> const stacks(static_cast<Stacks*>(kept));
    for (auto& stack : *stacks) {
        s_release(stack);
    }
}

// A key and no thread_local object with a destructor: to register that one ends the process when
// memory has run out, and a thread may give its first block back just then. Empty without a key.
std::optional<pthread_key_t> s_makeKey() {
    pthread_key_t key{};
    return pthread_key_create(&key, s_giveBack) == 0 ? std::optional(key) : std::nullopt;
}

// Nothing is kept without memory for the stacks.
void s_startKeeping() noexcept {
    static auto const key = s_makeKey();
    if (s_isEnded || !key) {
        return;
    }
    std::unique_ptr<Stacks> stacks(new (std::nothrow) Stacks{});
    if (stacks != nullptr && pthread_setspecific(*key, stacks.get()) == 0) {
        s_kept = stacks.release();
    }
}

constexpr bool s_isKept(std::size_t size) {
    return isRecycling && size > 0 && size <= largest;
}

// Null when the thread keeps none.
Stack* s_stack(std::size_t size) {
    return s_kept == nullptr ? nullptr : &(*s_kept)[(size - 1) / step];
}

} // namespace

void* Recycled::operator new(std::size_t size) { // NOLINT(misc-new-delete-overloads): sized delete
    if (!s_isKept(size)) {
        return ::operator new(size);
    }
    if (auto* const stack = s_stack(size); stack != nullptr && stack->m_top != nullptr) {
        auto* const block = stack->m_top;
        stack->m_top = block->m_next;
        --stack->m_count;
        return block;
    }
    return ::operator new((size + step - 1) / step * step);
}

void Recycled::operator delete(void* block, std::size_t size) noexcept {
    if (block == nullptr || !s_isKept(size)) {
        ::operator delete(block);
        return;
    }
    if (s_kept == nullptr) {
        s_startKeeping();
    }
    auto* const stack = s_stack(size);
    if (stack == nullptr || stack->m_count == mostKept) {
        ::operator delete(block);
        return;
    }
    stack->m_top = ::new (block) Block{stack->m_top};
    ++stack->m_count;
}

} // namespace Quorvane
