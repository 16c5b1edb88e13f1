// SPDX-License-Identifier: Apache-2.0
//
// Reads arbitrary bytes as a file of rule tests. What is wrong is a RuleError without control
// characters; a file that was read has cases, each with something to judge.
#include "apps/workshop/CaseFile.h"
#include "MemoryFile.h"
#include "rules/model/RuleError.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

using namespace Quorvane;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace {

bool s_isPrintable(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) < ' ' && c != '\n') || c == '\x7F';
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static MemoryFile const s_file;
    try {
        auto const file =
            Workshop::readCaseFile(s_file.hold({reinterpret_cast<char const*>(data), size}));
        check(!file.m_cases.empty(), "a file of tests has cases");
        for (auto const& one : file.m_cases) {
            check(one.m_vector.has_value() != one.m_headers.has_value(),
                  "a case has a vector or a message");
            check(!one.m_expected.m_verdict.empty(), "a case expects a verdict");
        }
    } catch (Rules::RuleError const& error) {
        check(s_isPrintable(error.what()), "errors are shown without control characters");
    }
    return 0;
}
