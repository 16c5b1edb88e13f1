// SPDX-License-Identifier: Apache-2.0
//
// Whether bytes are a message at all, and one that is judged. Pure functions.
#pragma once

#include "platform/HeaderReader.h"

#include <string>
#include <string_view>

namespace Quorvane {

// Why inputs without a header line are refused.
inline constexpr char noHeaderField[] = "not a message: it has no header field";

// Whether a header section has a line "Name: value". Programs, pictures and other binary data are
// told from messages by the control characters before the first such line.
bool hasHeaderField(std::string_view headers);

// Why a header section is not judged: it has no field, or more than the limits allow. Empty: it is.
std::string whyNotJudged(std::string_view headers, HeaderLimits const& limits);

// Why a header section of more than m_maxBytes is not judged.
std::string tooLong(HeaderLimits const& limits);

} // namespace Quorvane
