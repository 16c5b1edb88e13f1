// SPDX-License-Identifier: Apache-2.0
//
// toml++, made safe for hostile text. Its parser asserts what only correct text satisfies ("[" is
// followed by a key), and in builds without assertions it lets the compiler rely on that. With this
// header such text throws. Every source that needs toml++ includes this header, not the library
// itself, so that all of them use the same parser.
#pragma once

namespace Quorvane {

// An assertion of the parser failed, at a place that it does not know.
struct TomlAssertion {};

[[noreturn]] inline void failTomlAssertion() {
    throw TomlAssertion();
}

} // namespace Quorvane

#pragma push_macro("NDEBUG")
#undef NDEBUG // or the library would take its assertions for granted
#define TOML_ASSERT(expression)                                                                    \
    ((expression) ? static_cast<void>(0) : ::Quorvane::failTomlAssertion())
#include <toml++/toml.h>
#pragma pop_macro("NDEBUG")
