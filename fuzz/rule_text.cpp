// SPDX-License-Identifier: Apache-2.0
//
// Compiles arbitrary bytes as a text of rules. Errors have a place in the text and can be shown;
// what compiles comes back from its own text byte for byte.
#include "RoundTrip.h"
#include "rules/check/Checker.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

using namespace Quorvane;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace {

void s_checkErrors(std::string_view text, std::vector<Rules::Diagnostic> const& errors) {
    auto const lines = 1 + static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    for (auto const& error : errors) {
        check(error.m_position.m_line <= lines, "an error is in a line of the text");
        check(!error.m_text.empty(), "an error says what is wrong");
    }
    auto const shown = Rules::showErrors("text", text, errors);
    bool const isPrintable = std::none_of(shown.begin(), shown.end(), [](char c) {
        auto const byte = static_cast<unsigned char>(c);
        return (byte < ' ' && c != '\n') || byte == 0x7F;
    });
    check(isPrintable, "errors are shown without control characters");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string_view const text(reinterpret_cast<char const*>(data), size);
    auto const compiled = Rules::compileRules(text);
    if (!compiled.m_errors.empty()) {
        s_checkErrors(text, compiled.m_errors);
        return 0;
    }
    Rules::checkRules(compiled.m_set, DeepHeaderSettings());
    Rules::checkRoundTrip(compiled.m_set);
    return 0;
}
