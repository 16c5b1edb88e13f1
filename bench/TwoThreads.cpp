// SPDX-License-Identifier: Apache-2.0
#include "TwoThreads.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <thread>
#include <vector>

namespace Quorvane::Bench {

namespace {

constexpr int rounds = 7;

// Calls a second on `count` threads.
double s_throughput(int count, std::function<void()> const& work) {
    std::vector<std::thread> threads;
    threads.reserve(static_cast<std::size_t>(count));
    auto const start = std::chrono::steady_clock::now();
    for (int i = 0; i < count; ++i) {
        threads.emplace_back(work);
    }
    for (auto& thread : threads) {
        thread.join();
    }
    std::chrono::duration<double> const taken = std::chrono::steady_clock::now() - start;
    return count / taken.count();
}

} // namespace

void printTwoThreadGain(std::function<void()> const& work) {
    double best = 0.0;
    for (int round = 0; round < rounds; ++round) {
        auto const one = s_throughput(1, work);
        best = std::max(best, s_throughput(2, work) / one);
    }
    std::printf("Two threads do %.2f times the work of one (best of %d rounds)\n\n", best, rounds);
}

} // namespace Quorvane::Bench
