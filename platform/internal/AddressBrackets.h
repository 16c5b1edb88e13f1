// SPDX-License-Identifier: Apache-2.0
//
// Bracket check for address headers that are read strictly. GMime rejects a stray bracket too, but
// loses the memory of the address that it was reading. With this check in front it sees none, but
// where it takes a bracket in a quoted name for one while it recovers from another error.
#pragma once

#include <cstddef>
#include <string_view>

namespace Quorvane::internal {

// Length of the longest run of whole addresses from the beginning of `text` in which quotation
// marks, comments, literals and angle brackets are closed, a literal follows "@", each address has
// at most one pair of angle brackets with no "@" in front of it, and separators stand inside of it
// in a route only.
std::size_t wellBracketedLength(std::string_view text);

} // namespace Quorvane::internal
