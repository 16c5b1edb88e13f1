// SPDX-License-Identifier: Apache-2.0
#include "hostile/Shapes.h"

#include "platform/IPAddress.h"

namespace Quorvane::Testing {
namespace {

std::string s_repeated(std::string const& part, std::size_t size) {
    std::string text;
    while (text.size() < size) {
        text += part;
    }
    return text;
}

std::string s_address(std::size_t number) {
    return "198." + std::to_string(number / 65536 % 200) + "." +
           std::to_string(number / 256 % 256) + "." + std::to_string(number % 256);
}

// A hop that leads to the scan, and then what is hostile.
std::string s_hop(std::string const& helo, std::string const& reverseName = "unknown") {
    return received(helo, reverseName, "192.0.2.7", "c.example");
}

std::string s_hops(std::size_t size) {
    std::string text;
    for (std::size_t number = 0; text.size() < size; ++number) {
        text += received("a.example", "b.example", s_address(number), "c.example");
    }
    return text;
}

std::vector<Shape> s_shapes() {
    return {
        {"one long value",
         [](std::size_t size) {
             return s_hop("a.example") + "A: " + std::string(size, 'b') + "\n";
         }},
        {"one field of many lines",
         [](std::size_t size) { return s_hop("a.example") + "A:" + s_repeated(" b\n", size); }},
        {"many hops", s_hops},
        {"many hops whose relays have scores", s_hops, true},
        {"many hops without an address",
         [](std::size_t size) { return s_repeated("Received: from a by b\n", size); }},
        {"many fields",
         [](std::size_t size) { return s_hop("a.example") + s_repeated("a:b\n", size); }},
        {"many lines that are no field",
         [](std::size_t size) { return s_hop("a.example") + s_repeated("a\n", size); }},
        {"NUL bytes in a hop", [](std::size_t size) { return s_hop(std::string(size, '\0')); }},
        {"CR bytes in a hop", [](std::size_t size) { return s_hop(std::string(size, '\r')); }},
        {"8-bit bytes in a hop", [](std::size_t size) { return s_hop(std::string(size, '\xFF')); }},
        {"a long HELO name",
         [](std::size_t size) { return s_hop(std::string(size, 'a') + ".example"); }},
        {"a HELO name of many labels",
         [](std::size_t size) { return s_hop(s_repeated("a.", size) + "example"); }},
        {"a long reverse name",
         [](std::size_t size) { return s_hop("a.example", std::string(size, 'a') + ".example"); }},
        {"round brackets in a hop", [](std::size_t size) { return s_hop(std::string(size, '(')); }},
        {"square brackets in a hop",
         [](std::size_t size) { return s_hop(std::string(size, '[')); }},
        {"pairs of brackets in a hop",
         [](std::size_t size) { return s_hop(s_repeated("([])", size)); }},
        {"HELO marks in a hop",
         [](std::size_t size) { return s_hop("a.example", s_repeated("helo=a ", size)); }},
        {"by marks in a hop",
         [](std::size_t size) {
             return s_hop("a.example") + "Received: " + s_repeated("from a by b ", size) + "\n";
         }},
        {"deep comments in an address",
         [](std::size_t size) {
             return s_hop("a.example") + "From: " + std::string(size / 2, '(') +
                    std::string(size / 2, ')') + " a@b.example\n";
         }},
        {"open comments in an address",
         [](std::size_t size) {
             return s_hop("a.example") + "From: " + std::string(size, '(') + "\n";
         }},
        {"quotes in an address",
         [](std::size_t size) {
             return s_hop("a.example") + "From: " + std::string(size, '"') + "\n";
         }},
        {"many addresses",
         [](std::size_t size) {
             return s_hop("a.example") + "From: " + s_repeated("x, ", size) + "\n";
         }},
        {"many at signs in an address",
         [](std::size_t size) {
             return s_hop("a.example") + "From: " + std::string(size, '@') + "\n";
         }},
        {"many address headers",
         [](std::size_t size) {
             return s_hop("a.example") + s_repeated("From: a@b.example\n", size);
         }},
        {"many at signs in a message id",
         [](std::size_t size) {
             return s_hop("a.example") + "Message-ID: " + std::string(size, '@') + "\n";
         }},
    };
}

} // namespace

std::vector<Shape> const& hostileShapes() {
    static std::vector<Shape> const shapes = s_shapes();
    return shapes;
}

Message hostileMessage(Shape const& shape, std::size_t size) {
    auto const text = shape.m_text(size);
    Message message(text);
    message.m_settings.spamThreshold = 0.1;
    if (shape.m_hasScores) {
        auto& analysis = message.m_properties->receivedHeaderAnalysis();
        auto const hops = message.m_headers.headers().size();
        for (std::size_t number = 0; number < hops; ++number) {
            analysis.push_back({Received(IPAddress(s_address(hops - number))), 0});
        }
    }
    return message;
}

} // namespace Quorvane::Testing
