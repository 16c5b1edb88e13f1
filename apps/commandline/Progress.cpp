// SPDX-License-Identifier: Apache-2.0
#include "apps/commandline/Progress.h"

#include "apps/text/NumberText.h"
#include "apps/text/Utf8.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <unistd.h>
#include <utility>

namespace Quorvane {

namespace {

constexpr std::chrono::milliseconds firstDrawn{2000};
constexpr std::chrono::milliseconds terminalPause{250};
// A log file needs no animation.
constexpr std::chrono::milliseconds otherPause{2000};

std::string s_duration(double seconds) {
    auto const whole = static_cast<std::uint64_t>(std::lround(std::max(0.0, seconds)));
    if (whole < 60) {
        return std::to_string(whole) + " s";
    }
    auto const rest = std::to_string(whole % 60);
    if (whole < 3600) {
        return std::to_string(whole / 60) + ":" + (rest.size() < 2 ? "0" : "") + rest + " min";
    }
    auto const minutes = std::to_string(whole / 60 % 60);
    return std::to_string(whole / 3600) + ":" + (minutes.size() < 2 ? "0" : "") + minutes + " h";
}

// 0: unknown.
double s_share(WorkState const& state) {
    auto const done = state.m_units ? state.m_done.value_or(0) : state.m_bytesDone;
    auto const total = (state.m_units ? state.m_units : state.m_bytesTotal).value_or(0);
    return total == 0 ? 0 : std::min(1.0, static_cast<double>(done) / static_cast<double>(total));
}

} // namespace

std::string progressLine(WorkState const& state) {
    auto line = state.m_done ? groupedText(*state.m_done) + " " + state.m_what : state.m_what;
    if (state.m_done && state.m_seconds > 0) {
        auto const rate = static_cast<double>(*state.m_done) / state.m_seconds;
        line += "  " + groupedText(static_cast<std::uint64_t>(std::lround(rate))) + "/s";
    }
    if (auto const share = s_share(state); share > 0) {
        line += "  " + std::to_string(static_cast<int>(share * 100)) + " %  " +
                s_duration(state.m_seconds * (1 - share) / share) + " left";
    }
    return line;
}

Progress::Progress(std::string program, Total total)
    : m_program(std::move(program)), m_total(std::move(total)),
      m_isTerminal(::isatty(STDERR_FILENO) == 1), m_start(std::chrono::steady_clock::now()),
      m_thread(&Progress::run, this) {}

Progress::~Progress() {
    {
        std::lock_guard const lock(m_mutex);
        m_isEnding = true;
    }
    m_wake.notify_one();
    m_thread.join();
    clear();
}

void Progress::begin(std::string const& what) {
    std::lock_guard const lock(m_mutex);
    m_what = toPrintable(what);
    m_start = std::chrono::steady_clock::now();
    m_done = -1;
    m_units = -1;
    m_bytes = 0;
}

void Progress::run() {
    std::unique_lock lock(m_mutex);
    auto pause = firstDrawn;
    while (!m_wake.wait_for(lock, pause, [this] { return m_isEnding; })) {
        draw();
        pause = m_isTerminal ? terminalPause : otherPause;
    }
}

// REQUIRES: m_mutex is held.
void Progress::draw() {
    WorkState state;
    state.m_what = m_what;
    if (auto const done = m_done.load(); done >= 0) {
        state.m_done = static_cast<std::uint64_t>(done);
    }
    if (auto const units = m_units.load(); units >= 0) {
        state.m_units = static_cast<std::uint64_t>(units);
    }
    state.m_bytesDone = m_bytes;
    state.m_bytesTotal = m_total();
    std::chrono::duration<double> const passed = std::chrono::steady_clock::now() - m_start;
    state.m_seconds = passed.count();
    auto const line = progressLine(state);
    std::cerr << (m_isTerminal ? "\r\x1B[K" + line : m_program + ": " + line + "\n") << std::flush;
    m_isDrawn = m_isTerminal;
}

void Progress::clear() {
    std::lock_guard const lock(m_mutex);
    if (m_isDrawn) {
        std::cerr << "\r\x1B[K" << std::flush;
        m_isDrawn = false;
    }
}

} // namespace Quorvane
