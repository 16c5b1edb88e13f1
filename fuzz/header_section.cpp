// SPDX-License-Identifier: Apache-2.0
//
// Splits arbitrary bytes into header fields. The split has to agree with the length of the header
// section, and must not change with what
// comes after the section.
#include "Check.h"
#include "platform/HeaderReader.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

using Quorvane::check;
using Quorvane::HeaderReader;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace {

bool s_isSame(Quorvane::HeaderContainer const& left, Quorvane::HeaderContainer const& right) {
    auto other = right.headers().begin();
    for (auto const& header : left.headers()) {
        if (other == right.headers().end() || header.type() != other->type() ||
            header.value() != other->value()) {
            return false;
        }
        ++other;
    }
    return other == right.headers().end();
}

void s_checkHeaders(Quorvane::HeaderContainer const& headers, std::size_t sectionLength) {
    std::size_t bytes = 0;
    for (auto const& header : headers.headers()) {
        bytes += header.type().size() + 1 + header.value().size();
        check(header.type().find(':') == std::string::npos, "a name ends at its colon");
        check(header.type().find('\n') == std::string::npos, "a name stays on its line");
    }
    check(bytes <= sectionLength, "each byte is taken once");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string_view const message(reinterpret_cast<char const*>(data), size);
    auto const length = HeaderReader::sectionLength(message);
    check(length <= size, "the section ends inside the message");
    auto const headers = HeaderReader::read(message);
    s_checkHeaders(headers, length);
    check(s_isSame(headers, HeaderReader::read(message.substr(0, length))),
          "what stands after the empty line changes nothing");
    return 0;
}
