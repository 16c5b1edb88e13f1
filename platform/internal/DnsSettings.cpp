// SPDX-License-Identifier: Apache-2.0
#include "platform/internal/DnsSettings.h"

#include "include2/Exception.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <boost/algorithm/string.hpp>
#include <charconv>
#include <cstdint>
#include <locale>
#include <string_view>
#include <vector>

namespace Quorvane::Dns {
namespace {

// A scan may block for this long; a larger value is a mistaken unit.
constexpr std::chrono::milliseconds s_longestDeadline{std::chrono::minutes{10}};

[[noreturn]] void s_refuse(std::string const& text) {
    throw Exception(text, 3, nullptr, 0);
}

bool s_isAddress(std::string const& text) {
    std::array<unsigned char, 16> ignored{};
    return text.find('\0') == std::string::npos &&
           (inet_pton(AF_INET, text.c_str(), ignored.data()) == 1 ||
            inet_pton(AF_INET6, text.c_str(), ignored.data()) == 1);
}

bool s_isPort(std::string const& text) {
    std::uint16_t port = 0;
    char const* const end = text.data() + text.size();
    auto const parsed = std::from_chars(text.data(), end, port);
    return parsed.ec == std::errc{} && parsed.ptr == end && port != 0;
}

bool s_isForbiddenByte(char c) {
    auto const byte = static_cast<unsigned char>(c);
    return (byte < 0x20 && c != '\t') || byte == 0x7f;
}

// The fields of a record, without a trailing comment.
std::vector<std::string_view> s_fields(std::string_view line) {
    auto const isBlank = boost::is_any_of(" \t");
    auto const text = boost::trim_right_copy_if(line.substr(0, line.find(';')), isBlank);
    std::vector<std::string_view> fields;
    boost::split(fields, text, isBlank, boost::token_compress_on);
    return fields;
}

struct DataFields {
    std::string_view m_type;
    std::size_t m_count;
};
// The types that the zone data of a mail site consists of.
constexpr std::array<DataFields, 6> s_dataFields{
    {{"A", 1}, {"AAAA", 1}, {"CNAME", 1}, {"MX", 2}, {"NS", 1}, {"PTR", 1}}};

std::string s_upper(std::string_view text) {
    return boost::to_upper_copy(std::string(text), std::locale::classic());
}

bool s_isNumber(std::string_view text) {
    return text.find_first_not_of("0123456789") == std::string_view::npos;
}

// Index of the record type: after the name and, in either order, a time to live and the class.
std::size_t s_typeIndex(std::vector<std::string_view> const& fields) {
    std::size_t index = 1;
    while (index < fields.size() && index < 3 &&
           (s_isNumber(fields[index]) || s_upper(fields[index]) == "IN")) {
        ++index;
    }
    return index;
}

// What is wrong with the type, or with the data of a type that we know; empty when nothing is.
std::string s_dataProblem(std::vector<std::string_view> const& fields) {
    std::size_t const index = s_typeIndex(fields);
    if (index >= fields.size()) {
        return "the record type is missing";
    }
    std::string const type = s_upper(fields[index]);
    if (type == "CH" || type == "HS") {
        return "only class IN is looked up";
    }
    auto const* const known =
        std::find_if(s_dataFields.begin(), s_dataFields.end(),
                     [&type](DataFields const& each) { return each.m_type == type; });
    std::size_t const count = fields.size() - index - 1;
    if (known == s_dataFields.end() || known->m_count == count) {
        return {};
    }
    return type + " takes " + std::to_string(known->m_count) + " field(s) of data, not " +
           std::to_string(count);
}

std::string s_lineProblem(std::string const& line) {
    if (std::any_of(line.begin(), line.end(), s_isForbiddenByte)) {
        return "it holds a control character";
    }
    switch (line.front()) {
    case '$':
        return "directives are not understood; write each name in full";
    case ' ':
    case '\t':
    case '@':
        return "the name is missing; write it in full on each line";
    case '*':
        return "wildcards are not understood; write each name in full";
    default:
        return s_dataProblem(s_fields(line));
    }
}

std::string s_record(std::string const& line) {
    auto const fields = s_fields(line);
    std::size_t const type = s_typeIndex(fields);
    std::string record(fields.front());
    for (std::size_t i = 1; i < type; ++i) {
        record += s_isNumber(fields[i]) ? ' ' + std::string(fields[i]) : std::string();
    }
    auto const typeAt = static_cast<std::size_t>(fields[type].data() - line.data());
    return record + " IN " + line.substr(typeAt);
}

} // namespace

void checkDeadline(std::chrono::milliseconds deadline) {
    if (deadline.count() < 1 || deadline > s_longestDeadline) {
        s_refuse("DNS deadline of " + std::to_string(deadline.count()) +
                 " ms: choose 1 to 600000 ms");
    }
}

void checkServer(std::string const& server) {
    auto const at = server.find('@');
    if (!s_isAddress(server.substr(0, at))) {
        s_refuse("DNS server \"" + server +
                 "\": no IP address; write it like 192.0.2.1, 192.0.2.1@5353 or 2001:db8::1");
    }
    if (at != std::string::npos && !s_isPort(server.substr(at + 1))) {
        s_refuse("DNS server \"" + server + "\": after \"@\" goes a port from 1 to 65535");
    }
}

std::string zoneRecord(std::string const& line, std::size_t number) {
    auto const start = line.find_first_not_of(" \t\r\n");
    if (start == std::string::npos || line[start] == ';' || line[start] == '#') {
        return {};
    }
    std::string const problem = s_lineProblem(line);
    if (!problem.empty()) {
        refuseZoneLine(line, number, problem);
    }
    return s_record(line);
}

void refuseZoneLine(std::string const& line, std::size_t number, std::string const& problem) {
    s_refuse("DNS zone data line " + std::to_string(number) + " \"" + line + "\": " + problem +
             " (a record reads like \"name. A 192.0.2.1\" or \"name. MX 10 mail.name.\")");
}

} // namespace Quorvane::Dns
