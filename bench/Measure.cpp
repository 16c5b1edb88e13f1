// SPDX-License-Identifier: Apache-2.0
#include "Measure.h"

#include <cstdlib>
#include <new>

namespace {

thread_local unsigned long s_allocations = 0;

} // namespace

void* operator new(std::size_t size) {
    ++s_allocations;
    if (void* const memory = std::malloc(size); memory != nullptr) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace Quorvane::Bench {

unsigned long allocations() {
    return s_allocations;
}

int run(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 64;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

} // namespace Quorvane::Bench
