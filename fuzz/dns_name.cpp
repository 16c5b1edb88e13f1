// SPDX-License-Identifier: Apache-2.0
//
// Reads arbitrary bytes as a name: one that mail asks for, and one that a DNS server answers with.
// Both come out as printable text from which the very bytes can be read back.
#include "Check.h"
#include "platform/internal/DnsName.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

using Quorvane::check;
using namespace Quorvane::Dns;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace {

bool s_isPrintable(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c > ' ' && c < '\x7F'; });
}

// The byte at the front of `text`, without its escape (RFC 1035 section 5.1).
char s_takeByte(std::string_view& text) {
    std::size_t length = 1;
    char byte = text.front();
    if (byte == '\\') {
        bool const isNumber = text.at(1) >= '0' && text.at(1) <= '9';
        length = isNumber ? 4 : 2;
        byte = isNumber ? static_cast<char>((text.at(1) - '0') * 100 + (text.at(2) - '0') * 10 +
                                            text.at(3) - '0')
                        : text.at(1);
    }
    text.remove_prefix(length);
    return byte;
}

std::string s_wireOf(std::string_view text) {
    std::string wire;
    std::string label;
    auto const close = [&] {
        wire += static_cast<char>(label.size());
        wire += label;
        label.clear();
    };
    while (!text.empty()) {
        if (text.front() == '.') {
            close();
            text.remove_prefix(1);
        } else {
            label += s_takeByte(text);
        }
    }
    close();
    return wire + '\0';
}

void s_checkAnswer(std::string const& wire) {
    auto const text = wireNameText(wire);
    check(s_isPrintable(text), "an answered name is shown as printable text");
    if (!text.empty()) {
        check(wire.starts_with(s_wireOf(text)), "the text stands for the bytes of the answer");
    }
}

void s_checkQuestion(std::string const& name) {
    auto const asked = askableName(name);
    check(s_isPrintable(asked), "a name is asked as printable text");
    if (!asked.empty()) {
        std::string plain;
        for (std::string_view rest = asked; !rest.empty();) {
            plain += s_takeByte(rest);
        }
        check(plain == name || plain + '.' == name, "the asked name is the one in the mail");
        check(plain.size() <= maxNameLength, "a name that is asked fits into a question");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string const bytes(reinterpret_cast<char const*>(data), size);
    s_checkAnswer(bytes);
    s_checkQuestion(bytes);
    return 0;
}
