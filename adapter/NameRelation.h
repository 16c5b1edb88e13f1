// SPDX-License-Identifier: Apache-2.0
//
// Whether two host or domain names look related. Pure functions; case-sensitive.
#pragma once

#include "include2/Export.h"

#include <string>
#include <string_view>

namespace Quorvane {

// Whether a name has more than two labels, as the name of a machine has.
bool hasManyLabels(std::string_view name);

// 1 when the shorter name (of equally long ones `b`), without its first label if it has more than
// two, occurs anywhere in the longer one; else 0. Names shorter than 3 bytes are related to
// nothing. Anywhere, not at the end: "myexample.com.evil" is related to "example.com", and rules
// are learned on that.
int s_domainMatch(std::string const& a, std::string const& b);

// True when `a` is related to `b`, and `b` is not related to `c`.
bool isThreeWayMismatch(std::string const& a, std::string const& b, std::string const& c);
QV_API bool s_ThreeWayMisMatch(std::string& a, std::string& b, std::string& c);

} // namespace Quorvane
