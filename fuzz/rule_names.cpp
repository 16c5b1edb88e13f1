// SPDX-License-Identifier: Apache-2.0
//
// Reads arbitrary bytes as a file of names. A file is used as a whole or not at all, and names that
// were read are written as a file that is read the same.
#include "Check.h"
#include "rules/model/RuleNames.h"

#include <cstdint>
#include <string_view>

using namespace Quorvane;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    auto const read = Rules::readNames(std::string_view(reinterpret_cast<char const*>(data), size));
    check(read.m_problem.empty() || read.m_names.empty(), "a file with a problem gives no names");
    for (auto const& [key, name] : read.m_names) {
        check(Rules::nameProblem(name.m_name).empty(), "only names that can be used are read");
        check(name.m_sentence.empty() || Rules::sentenceProblem(name.m_sentence).empty(),
              "so are sentences");
    }
    if (read.m_problem.empty()) {
        auto const again = Rules::readNames(Rules::namesText(read.m_names));
        check(again.m_problem.empty() && again.m_names == read.m_names,
              "names that are written are read again");
    }
    return 0;
}
