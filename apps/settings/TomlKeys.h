// SPDX-License-Identifier: Apache-2.0
//
// Looks for keys of very many parts before toml++ reads a text: each part is a table in a table,
// which it makes and destroys by recursion. It limits nested values by itself (to 256), not these.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace Quorvane {

// The most parts of a key, as in "milter.socket". Ours have three at most; with 256 nested values
// the tables are as deep as a small stack can destroy.
inline constexpr std::size_t maxKeyParts = 16;

// The byte at which the first key with more parts exceeds them. Text that is not TOML is looked
// through up to the place where a parser fails, at least.
std::optional<std::size_t> findLongKey(std::string_view text);

} // namespace Quorvane
