// SPDX-License-Identifier: Apache-2.0
//
// Reads arbitrary bytes as the value of an address header. An address is a part of the text, with a
// domain, and the same text gives the same address.
#include "Check.h"
#include "platform/EmailAddress.h"

#include <cstddef>
#include <cstdint>
#include <string>

using Quorvane::check;
using Quorvane::EmailAddress;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace {

bool s_isSame(EmailAddress const& left, EmailAddress const& right) {
    return left.localPart() == right.localPart() && left.domain() == right.domain();
}

void s_checkAddress(std::string const& text, bool lenient) {
    auto const address = EmailAddress::rfc5322Parse(text, lenient);
    check(address.isNull() == address.domain().empty(), "an address has a domain");
    check(address.domain().find('@') == std::string::npos, "a domain has no \"@\" in it");
    check(address.domain().size() + address.localPart().size() <= text.size(),
          "an address is a part of the text");
    check(address.isNull() || text.find('@') != std::string::npos, "an address has an \"@\"");
    check(s_isSame(address, EmailAddress::rfc5322Parse(text, lenient)),
          "the same text gives the same address");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string const text(reinterpret_cast<char const*>(data), size);
    s_checkAddress(text, true);
    s_checkAddress(text, false);
    return 0;
}
