// SPDX-License-Identifier: Apache-2.0
//
// "Did you mean": the known word that is nearest to a mistyped one.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Quorvane::Rules {

// The candidate with the fewest single-character edits (insert, delete, replace, swap of two
// neighbours) from `word`; empty when even that one is too different for a typing error.
std::string_view nearestWord(std::string_view word,
                             std::vector<std::string_view> const& candidates);

// "; did you mean "X"?", or nothing.
std::string didYouMean(std::string_view word, std::vector<std::string_view> const& candidates);

} // namespace Quorvane::Rules
