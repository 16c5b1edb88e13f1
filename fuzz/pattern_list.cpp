// SPDX-License-Identifier: Apache-2.0
//
// Compiles arbitrary bytes as a list of patterns of dynamic names. What is wrong is an Exception of
// category 3 that names the file; names match whatever their letter case, with
// and without a dot at their end.
#include "Check.h"
#include "include2/Exception.h"
#include "platform/DynamicIdentifier.h"

#include <cstddef>
#include <cstdint>
#include <string>

using Quorvane::check;
using Telvanis::DynamicIdentifier;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace {

void s_checkName(DynamicIdentifier const& identifier, std::string const& name) {
    auto loud = name;
    for (auto& c : loud) {
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }
    bool const isDynamic = identifier.match(name);
    check(identifier.match(loud) == isDynamic, "letter case makes no difference");
    check(identifier.match(name + '.') == isDynamic, "nor does a dot at the end");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string const text(reinterpret_cast<char const*>(data), size);
    try {
        auto const identifier = DynamicIdentifier::compile(text, "patterns");
        s_checkName(*identifier, "");
        s_checkName(*identifier, "dsl-192-0-2-1.pool.provider.example");
        s_checkName(*identifier, "mx1.host.example");
        s_checkName(*identifier, std::string("a\0\xFF\n", 4));
    } catch (Quorvane::Exception const& error) {
        check(error.intParameter() == 3, "a wrong list is bad configuration");
        check(error.fileName() == "patterns", "an error names its file");
    }
    return 0;
}
