// SPDX-License-Identifier: Apache-2.0
#include "support/OwnMemory.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <malloc.h>
#include <new>

namespace Quorvane::Testing {
namespace {

thread_local int s_untilFailure = 0; // 0: none is to fail
thread_local bool s_hasFailed = false;

std::atomic<std::size_t> s_used{0};
std::atomic<std::size_t> s_peak{0};

bool s_isToFail() {
    if (s_untilFailure == 0 || --s_untilFailure > 0) {
        return false;
    }
    s_hasFailed = true;
    return true;
}

void* s_allocate(std::size_t size, std::size_t alignment) {
    if (s_isToFail()) {
        return nullptr;
    }
    void* const memory =
        alignment <= alignof(std::max_align_t)
            ? std::malloc(std::max<std::size_t>(size, 1))
            : ::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
    if (memory != nullptr) {
        auto const now = s_used += ::malloc_usable_size(memory);
        auto peak = s_peak.load();
        while (peak < now && !s_peak.compare_exchange_weak(peak, now)) {
        }
    }
    return memory;
}

void* s_allocateOrThrow(std::size_t size, std::size_t alignment) {
    void* const memory = s_allocate(size, alignment);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void s_free(void* memory) {
    if (memory != nullptr) {
        s_used -= ::malloc_usable_size(memory);
        std::free(memory);
    }
}

} // namespace

FailingAllocation::FailingAllocation(int number) {
    s_hasFailed = false;
    s_untilFailure = number;
}

FailingAllocation::~FailingAllocation() {
    s_untilFailure = 0;
}

bool FailingAllocation::hasFailed() const {
    return s_hasFailed;
}

std::size_t memoryInUse() {
    return s_used;
}

PeakMemory::PeakMemory() : m_before(s_used) {
    s_peak = m_before;
}

std::size_t PeakMemory::bytes() const {
    return s_peak - m_before;
}

} // namespace Quorvane::Testing

using namespace Quorvane::Testing;

void* operator new(std::size_t size) {
    return s_allocateOrThrow(size, 0);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return s_allocateOrThrow(size, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t size, std::nothrow_t const&) noexcept {
    return s_allocate(size, 0);
}
void operator delete(void* memory) noexcept {
    s_free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    s_free(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
    s_free(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    s_free(memory);
}
