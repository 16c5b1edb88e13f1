// SPDX-License-Identifier: Apache-2.0
#include "apps/charts/DeciderBar.h"

#include "apps/charts/Drawing.h"
#include "rules/evaluate/Wilson.h"

namespace Quorvane::Charts {

namespace {

constexpr double width = 320.0;
constexpr double height = 8.0;

} // namespace

std::string deciderBar(Rules::LabelCounts const& counts, std::uint64_t most) {
    auto const spam = width * Rules::Rate{counts.m_spam, most}.value();
    auto const ham = width * Rules::Rate{counts.m_ham, most}.value();
    Drawing drawing(width, height);
    drawing.rectangle({0.0, 0.0, spam, height}, "fill-spam");
    drawing.rectangle({spam, 0.0, ham, height}, "fill-ham");
    return drawing.decoration("bar");
}

} // namespace Quorvane::Charts
