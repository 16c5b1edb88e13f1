// SPDX-License-Identifier: Apache-2.0
//
// Numbers for people. Pure functions; no locale has a say.
#pragma once

#include <string>

namespace Quorvane {

// So many significant digits, without zeros at the end: "0.97", "12.35", "1e-05", "inf".
std::string numberText(double value, int digits = 4);

} // namespace Quorvane
