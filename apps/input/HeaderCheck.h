// SPDX-License-Identifier: Apache-2.0
//
// Whether bytes are a message at all. Pure functions.
#pragma once

#include <string_view>

namespace Quorvane {

// Why inputs without a header line are refused.
inline constexpr char noHeaderField[] = "not a message: it has no header field";

// Whether a header section has a line "Name: value". Programs, pictures and other binary data are
// told from messages by the control characters before the first such line.
bool hasHeaderField(std::string_view headers);

} // namespace Quorvane
