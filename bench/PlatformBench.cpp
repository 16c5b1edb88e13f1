// SPDX-License-Identifier: Apache-2.0
//
// What the platform's readers and tables cost, each compared with the plainest code that could
// replace it: splitting a header section against copying it, a mailbox address against a search for
// its "@", a reputation look-up against an ordered map, the trusted relays in force against asking
// a local set.
#include "Measure.h"
#include "platform/EmailAddress.h"
#include "platform/HeaderReader.h"
#include "platform/IPAddress.h"
#include "platform/ReputationTable.h"
#include "platform/TrustedMTASet.h"

#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace Quorvane::Bench {
namespace {

constexpr std::uint32_t prefixCount = 1'000'000;
constexpr int askedCount = 100'000;

IPAddress s_v4(std::uint32_t number) {
    IPAddress::Bytes bytes{};
    bytes[10] = bytes[11] = 0xff;
    for (std::size_t i = 0; i < 4; ++i) {
        bytes[12 + i] = static_cast<std::uint8_t>(number >> (24 - 8 * i));
    }
    return IPAddress::fromBytes(bytes);
}

std::uint32_t s_number(IPAddress const& address) {
    std::uint32_t number = 0;
    for (std::size_t i = 12; i < 16; ++i) {
        number = number << 8U | address.bytes()[i];
    }
    return number;
}

std::vector<ReputationTable::Entry> s_entries() {
    std::mt19937 random(1); // the same list each time
    std::vector<ReputationTable::Entry> entries;
    entries.reserve(prefixCount);
    for (std::uint32_t i = 0; i < prefixCount; ++i) {
        auto const network = static_cast<std::uint32_t>(random()) & 0xffffff00U;
        entries.emplace_back(IPPrefix::parse(s_v4(network).asString(true) + "/24"),
                             static_cast<std::int32_t>(i % 10));
    }
    return entries;
}

std::vector<IPAddress> s_asked() {
    std::mt19937 random(2);
    std::vector<IPAddress> asked;
    asked.reserve(askedCount);
    for (int i = 0; i < askedCount; ++i) {
        asked.push_back(s_v4(static_cast<std::uint32_t>(random())));
    }
    return asked;
}

// A map from first to last address, as one would write it by hand for prefixes that do not nest.
using Map = std::map<std::uint32_t, std::pair<std::uint32_t, std::int32_t>>;

Map s_map(std::vector<ReputationTable::Entry> const& entries) {
    Map map;
    for (auto const& [prefix, score] : entries) {
        map[s_number(IPAddress::fromBytes(prefix.first()))] = {
            s_number(IPAddress::fromBytes(prefix.last())), score};
    }
    return map;
}

std::int32_t s_scoreInMap(Map const& map, IPAddress const& address) {
    auto const number = s_number(address);
    auto next = map.upper_bound(number);
    if (next == map.begin()) {
        return -1;
    }
    --next;
    return number <= next->second.first ? next->second.second : -1;
}

void s_addReputation() {
    static auto const entries = s_entries();
    static auto const asked = s_asked();
    static auto const map = s_map(entries);
    static ReputationTable const table(entries);
    add("build a reputation table of a million prefixes", 1,
        [] { keep(ReputationTable(entries).size()); });
    add("score of an address/floor: ordered map, no nesting", askedCount, [] {
        for (auto const& address : asked) {
            keep(s_scoreInMap(map, address));
        }
    });
    add("score of an address/reputation table", askedCount, [] {
        for (auto const& address : asked) {
            keep(table.score(address));
        }
    });
}

std::string s_section() {
    std::string section;
    for (int i = 0; i < 6; ++i) {
        section += "Received: from relay" + std::to_string(i) +
                   ".example.net (relay.example.net [192.0.2.1])\r\n"
                   "\tby mx.example.org (Postfix) with ESMTPS id 4XyZ1234ab\r\n"
                   "\tfor <user@host.example>; Thu,  1 Jan 2026 00:00:00 +0000 (UTC)\r\n";
    }
    for (int i = 0; i < 20; ++i) {
        section +=
            "X-Field-" + std::to_string(i) + ": some value of ordinary length, as they are\r\n";
    }
    return section + "\r\n";
}

void s_addHeaders() {
    auto const section = s_section();
    add("header section of 26 fields/floor: copying it", 1, [=] { keep(std::string(section)); });
    add("header section of 26 fields/finding its end", 1,
        [=] { keep(HeaderReader::sectionLength(section)); });
    add("header section of 26 fields/splitting it", 1, [=] { keep(HeaderReader::read(section)); });
}

std::string s_repeated(int count, std::string const& text) {
    std::string whole;
    for (int i = 0; i < count; ++i) {
        whole += text;
    }
    return whole;
}

void s_addAddresses() {
    std::string const bare = "user@host.example";
    add("mailbox address/floor: cutting the bare address at its @", 1, [=] {
        auto const at = bare.find('@');
        keep(std::make_pair(bare.substr(0, at), bare.substr(at + 1)));
    });
    std::pair<char const*, std::string> const values[] = {
        {"bare", bare},
        {"display name, encoded", "=?utf-8?q?J=C3=B6rg_Name?= <user@xn--mller-kva.example>"},
        {"the first of a list of a thousand",
         s_repeated(1000, "\"Name, Some\" <user@host.example>,\r\n ")},
        {"hostile: a thousand commas", std::string(1000, ',')},
        {"hostile: 100 kB of words and commas", s_repeated(10000, "word word,")},
    };
    for (auto const& [name, value] : values) {
        add(std::string("mailbox address/") + name, 1,
            [text = value] { keep(EmailAddress::rfc5322Parse(text, true)); });
    }
}

void s_addTrusted() {
    static auto const asked = s_asked();
    std::vector<IPPrefix> const own = {IPPrefix::parse("192.0.2.0/24"),
                                       IPPrefix::parse("2001:db8::/32")};
    static TrustedMTASet const atHand(own, {});
    TrustedMTASetRef::install(own, {});
    add("is a relay trusted/floor: local set", askedCount, [] {
        for (auto const& address : asked) {
            keep(atHand.isTrustedMTA(address));
        }
    });
    add("is a relay trusted/set in force, fetched for each question", askedCount, [] {
        for (auto const& address : asked) {
            keep(TrustedMTASetRef::instance(false)->isTrustedMTA(address));
        }
    });
}

} // namespace
} // namespace Quorvane::Bench

int main(int argc, char** argv) {
    Quorvane::Bench::s_addHeaders();
    Quorvane::Bench::s_addAddresses();
    Quorvane::Bench::s_addReputation();
    Quorvane::Bench::s_addTrusted();
    return Quorvane::Bench::run(argc, argv);
}
