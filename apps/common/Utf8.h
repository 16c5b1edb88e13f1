// SPDX-License-Identifier: Apache-2.0
//
// Message text is bytes; JSON and terminals want UTF-8. Safe to call from many threads.
#pragma once

#include <string>
#include <string_view>

namespace Quorvane {

// `bytes` with valid UTF-8 (RFC 3629) as it stands and every other byte as the character of its
// number, U+0080 to U+00FF: nothing is lost, and plain ASCII does not change.
std::string toUtf8(std::string_view bytes);

// The same with control characters as \xNN, so that hostile text cannot steer a terminal or forge a
// second line.
std::string toPrintable(std::string_view bytes);

} // namespace Quorvane
