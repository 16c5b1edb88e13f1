// SPDX-License-Identifier: Apache-2.0
//
// What a fuzz target does when a promise does not hold: it says which one and stops, in every
// build.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace Quorvane {

inline void check(bool holds, char const* promise) {
    if (!holds) {
        std::fprintf(stderr, "broken promise: %s\n", promise);
        std::abort();
    }
}

} // namespace Quorvane
