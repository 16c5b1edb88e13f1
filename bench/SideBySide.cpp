// SPDX-License-Identifier: Apache-2.0
#include "SideBySide.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <utility>

namespace {

std::atomic<unsigned long> s_allocations{0};

} // namespace

void* operator new(std::size_t size) {
    s_allocations.fetch_add(1, std::memory_order_relaxed);
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

namespace {

constexpr int rounds = 15;

struct Round {
    double m_seconds;
    double m_allocations;
};

Round s_measure(std::function<void()> const& work) {
    auto const allocated = allocations();
    auto const start = std::chrono::steady_clock::now();
    work();
    std::chrono::duration<double> const taken = std::chrono::steady_clock::now() - start;
    return {taken.count(), static_cast<double>(allocations() - allocated)};
}

double s_median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

unsigned long allocations() {
    return s_allocations.load(std::memory_order_relaxed);
}

SideBySide::SideBySide(std::string title, std::string unit, double unitsPerCall)
    : m_title(std::move(title)), m_unit(std::move(unit)), m_unitsPerCall(unitsPerCall) {}

void SideBySide::add(std::string name, std::function<void()> work) {
    m_alternatives.push_back({std::move(name), std::move(work)});
}

void SideBySide::run() const {
    std::vector<std::vector<double>> ratios(m_alternatives.size());
    std::vector<std::vector<double>> seconds(m_alternatives.size());
    std::vector<double> allocated(m_alternatives.size());
    for (int round = -1; round < rounds; ++round) { // the first round warms up
        double first = 0.0;
        for (std::size_t i = 0; i < m_alternatives.size(); ++i) {
            auto const measured = s_measure(m_alternatives[i].m_work);
            first = i == 0 ? measured.m_seconds : first;
            if (round >= 0) {
                ratios[i].push_back(measured.m_seconds / first);
                seconds[i].push_back(measured.m_seconds);
                allocated[i] = measured.m_allocations;
            }
        }
    }
    std::printf("%s\n  %-52s %10s %14s %14s\n", m_title.c_str(), "", "times",
                ("ns a " + m_unit).c_str(), ("allocs a " + m_unit).c_str());
    for (std::size_t i = 0; i < m_alternatives.size(); ++i) {
        std::printf("  %-52s %10.2f %14.0f %14.1f\n", m_alternatives[i].m_name.c_str(),
                    s_median(ratios[i]), s_median(seconds[i]) * 1e9 / m_unitsPerCall,
                    allocated[i] / m_unitsPerCall);
    }
    std::printf("\n");
}

} // namespace Quorvane::Bench
