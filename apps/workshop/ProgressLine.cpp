// SPDX-License-Identifier: Apache-2.0
#include "apps/workshop/ProgressLine.h"

#include "apps/text/Utf8.h"

#include <iostream>
#include <utility>

namespace Quorvane::Workshop {

namespace {

constexpr std::chrono::seconds patience{2};

} // namespace

ProgressLine::ProgressLine(std::string program)
    : m_program(std::move(program)), m_next(std::chrono::steady_clock::now() + patience) {}

bool ProgressLine::isDue() {
    auto const now = std::chrono::steady_clock::now();
    if (now < m_next) {
        return false;
    }
    m_next = now + patience;
    return true;
}

void ProgressLine::print(std::string const& text) const {
    std::cerr << m_program + ": " + toPrintable(text) + "\n";
}

} // namespace Quorvane::Workshop
