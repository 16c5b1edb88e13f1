// SPDX-License-Identifier: Apache-2.0
//
// toml++, fit for text that may be hostile. Its parser asserts what only well-meant text keeps ("["
// is followed by a key), and in builds without assertions it lets the compiler rely on that. Here
// such text throws. Every source that needs toml++ includes this and not the library itself, so
// that all of them see the same parser.
#pragma once

namespace Quorvane {

// The parser met text that it cannot take, in a place that it does not know.
struct TomlStumbled {};

[[noreturn]] inline void tomlStumbles() {
    throw TomlStumbled();
}

} // namespace Quorvane

#pragma push_macro("NDEBUG")
#undef NDEBUG // or the library would take its assertions for granted
#define TOML_ASSERT(expression) ((expression) ? static_cast<void>(0) : ::Quorvane::tomlStumbles())
#include <toml++/toml.h>
#pragma pop_macro("NDEBUG")
