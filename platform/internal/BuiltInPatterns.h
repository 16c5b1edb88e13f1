// SPDX-License-Identifier: Apache-2.0
//
// The text of data/dynamic-patterns.txt, built into the library, so that a host without any
// configuration can tell consumer lines from mail servers. Constant data.
#pragma once

#include <string_view>

namespace Quorvane {

std::string_view builtInDynamicPatterns();

} // namespace Quorvane
