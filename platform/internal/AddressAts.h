// SPDX-License-Identifier: Apache-2.0
//
// The check that an address has one "@". GMime reads "a@b@c.example" as "a@b" and passes over the
// rest, so that the sender would choose which domain is seen here and which one elsewhere.
#pragma once

#include <string>

namespace Quorvane::internal {

// Doubles the first "@" of each address in `text` that has a second one outside of quoted text and
// comments, and of each display name and route that has: then GMime reads nothing there. An address
// ends at a separator or an angle bracket, or where a blank and another word follow its domain.
void spoilDoubleAts(std::string& text);

} // namespace Quorvane::internal
