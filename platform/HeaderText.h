// SPDX-License-Identifier: Apache-2.0
//
// The text of a header field for people, such as a subject. Safe to call from many threads.
#pragma once

#include "include2/Export.h"

#include <string>
#include <string_view>

namespace Quorvane {

// The value of a field with its encoded words (RFC 2047, "=?utf-8?q?caf=C3=A9?=") as UTF-8. Bytes
// that are neither ASCII nor in an encoded word, and words that cannot be decoded, become what the
// mail library makes of them; a NUL becomes a blank. The result may hold control characters: it
// came out of a message.
QV_API std::string headerText(std::string_view value);

} // namespace Quorvane
