// SPDX-License-Identifier: Apache-2.0
#include "rules/language/Nearest.h"

#include <algorithm>
#include <numeric>

namespace Quorvane::Rules {

namespace {

using Row = std::vector<std::size_t>;

// A longer word is not a typing error, and comparing it would cost time.
constexpr std::size_t longestWord = 64;

std::size_t s_cell(std::string_view a, std::string_view b, std::size_t i, std::size_t j,
                   std::vector<Row> const& rows) {
    auto const cost = a[i - 1] == b[j - 1] ? 0U : 1U;
    auto best =
        std::min({rows[i - 1][j] + 1, rows[i][j - 1] + 1, rows[i - 1][j - 1] + std::size_t{cost}});
    if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        best = std::min(best, rows[i - 2][j - 2] + 1);
    }
    return best;
}

std::size_t s_distance(std::string_view a, std::string_view b) {
    std::vector<Row> rows(a.size() + 1, Row(b.size() + 1));
    std::iota(rows[0].begin(), rows[0].end(), std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        rows[i][0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            rows[i][j] = s_cell(a, b, i, j, rows);
        }
    }
    return rows[a.size()][b.size()];
}

} // namespace

std::string_view nearestWord(std::string_view word,
                             std::vector<std::string_view> const& candidates) {
    std::string_view nearest;
    if (word.size() > longestWord) {
        return nearest;
    }
    auto best = std::max<std::size_t>(2, word.size() / 3) + 1;
    for (auto const candidate : candidates) {
        auto const distance = s_distance(word, candidate);
        if (distance < best && distance < candidate.size()) {
            best = distance;
            nearest = candidate;
        }
    }
    return nearest;
}

std::string didYouMean(std::string_view word, std::vector<std::string_view> const& candidates) {
    auto const nearest = nearestWord(word, candidates);
    return nearest.empty() ? std::string() : "; did you mean \"" + std::string(nearest) + "\"?";
}

} // namespace Quorvane::Rules
