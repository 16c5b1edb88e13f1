// SPDX-License-Identifier: Apache-2.0
//
// Encoded words: how header fields write text that is not ASCII (RFC 2047), as in
// "=?utf-8?q?caf=C3=A9?=". A pure function.
#pragma once

#include <string>
#include <string_view>

namespace Quorvane {

// UTF-8, with the encoded words decoded. What is not one, or cannot be decoded, stays as it is;
// bytes that are not UTF-8 are shown as toUtf8 shows them. The result may hold any character: it
// came out of a message.
std::string decodedWords(std::string_view bytes);

} // namespace Quorvane
