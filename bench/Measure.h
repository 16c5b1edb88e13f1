// SPDX-License-Identifier: Apache-2.0
//
// Benchmarks of Google Benchmark that report time and heap allocations of one unit of work.
#pragma once

#include <benchmark/benchmark.h>
#include <string>
#include <type_traits>

namespace Quorvane::Bench {

// Heap allocations of the calling thread so far.
unsigned long allocations();

// Keeps the compiler from dropping work whose result nobody reads.
template<typename T>
void keep(T const& value) {
    benchmark::DoNotOptimize(value);
}

// Registers `work`, one call of which does `units` units; it may take the number of its thread,
// from 0. Times are CPU times, which do not depend
// on what else the machine does, unless UseRealTime is called on the result.
template<typename Work>
benchmark::internal::Benchmark* add(std::string const& name, double units, Work work) {
    auto const run = [=](benchmark::State& state) {
        using benchmark::Counter;
        auto const before = allocations();
        for ([[maybe_unused]] auto _ : state) {
            if constexpr (std::is_invocable_v<Work, int>) {
                work(state.thread_index());
            } else {
                work();
            }
        }
        auto const allocated = static_cast<double>(allocations() - before);
        state.counters["time/unit"] = Counter(units, Counter::kIsIterationInvariantRate |
                                                         Counter::kInvert | Counter::kAvgThreads);
        state.counters["allocs/unit"] = Counter(allocated / units, Counter::kAvgIterations);
    };
    return benchmark::RegisterBenchmark(name.c_str(), run);
}

// Runs what was added, as the command line asks; the exit status of the program.
int run(int argc, char** argv);

} // namespace Quorvane::Bench
