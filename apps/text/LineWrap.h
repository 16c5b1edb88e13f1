// SPDX-License-Identifier: Apache-2.0
//
// LineWrap: long lines broken for people. Pure functions.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Quorvane {

// Each line of `text` in lines of at most `width` columns, broken at blanks; a word that is longer
// keeps a line of its own. What follows a break is indented: below the last column of a table,
// which two blanks set off, if there is a third of the width left; otherwise a little more than the
// line. REQUIRES: valid UTF-8, without control characters except colours (SGR).
std::string wrappedLines(std::string_view text, std::size_t width);

} // namespace Quorvane
