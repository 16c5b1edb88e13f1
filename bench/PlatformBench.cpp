// SPDX-License-Identifier: Apache-2.0
//
// What the platform's readers and tables cost, each against the plainest thing that could stand in
// its place: splitting a header section against copying it, a mailbox address against a search for
// its "@", a reputation look-up against an ordered map, the trusted relays in force against asking
// a set at hand.
#include "platform/EmailAddress.h"
#include "platform/HeaderReader.h"
#include "platform/IPAddress.h"
#include "platform/ReputationTable.h"
#include "platform/TrustedMTASet.h"
#include "SideBySide.h"

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace Quorvane::Bench {
namespace {

constexpr std::uint32_t prefixCount = 1'000'000;
constexpr int askedCount = 100'000;
constexpr int messageCount = 1000;
constexpr int addressCount = 1000;

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

void s_reputation() {
    auto const entries = s_entries();
    auto const asked = s_asked();
    auto const start = std::chrono::steady_clock::now();
    ReputationTable const table(entries);
    std::chrono::duration<double> const built = std::chrono::steady_clock::now() - start;
    std::printf("A reputation table of %u prefixes is built in %.2f s (%zu intervals)\n\n",
                prefixCount, built.count(), table.size());
    auto const map = s_map(entries);
    SideBySide bench("Looking up the score of a random address", "look-up", askedCount);
    bench.add("ordered map, no nesting", [&] {
        for (auto const& address : asked) {
            keep(s_scoreInMap(map, address));
        }
    });
    bench.add("reputation table", [&] {
        for (auto const& address : asked) {
            keep(table.score(address));
        }
    });
    bench.run();
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

void s_headers() {
    auto const section = s_section();
    SideBySide bench("Splitting a header section of " + std::to_string(section.size()) +
                         " bytes with 26 fields",
                     "section", messageCount);
    auto const repeat = [](auto work) {
        return [work] {
            for (int i = 0; i < messageCount; ++i) {
                work();
            }
        };
    };
    bench.add("floor: copying it", repeat([&] { keep(std::string(section)); }));
    bench.add("finding its end", repeat([&] { keep(HeaderReader::sectionLength(section)); }));
    bench.add("splitting it", repeat([&] { keep(HeaderReader::read(section)); }));
    bench.run();
}

void s_addresses() {
    SideBySide bench("Reading a mailbox address", "address", addressCount);
    auto const add = [&](std::string const& name, std::string const& text) {
        bench.add(name, [text] {
            for (int i = 0; i < addressCount; ++i) {
                keep(EmailAddress::rfc5322Parse(text, true));
            }
        });
    };
    std::string const bare = "user@host.example";
    bench.add("floor: cutting the bare address at its @", [bare] {
        for (int i = 0; i < addressCount; ++i) {
            auto const at = bare.find('@');
            keep(std::make_pair(bare.substr(0, at), bare.substr(at + 1)));
        }
    });
    add("bare address", bare);
    add("display name, encoded", "=?utf-8?q?J=C3=B6rg_Name?= <user@xn--mller-kva.example>");
    std::string list;
    for (int i = 0; i < 1000; ++i) {
        list += "\"Name, " + std::to_string(i) + "\" <user@host.example>,\r\n ";
    }
    add("the first of a list of a thousand", list);
    add("hostile: a thousand commas", std::string(1000, ','));
    add("hostile: 100 kB of words and commas", [] {
        std::string text;
        while (text.size() < 100000) {
            text += "word word,";
        }
        return text;
    }());
    bench.run();
}

void s_trusted() {
    auto const asked = s_asked();
    std::vector<IPPrefix> const own = {IPPrefix::parse("192.0.2.0/24"),
                                       IPPrefix::parse("2001:db8::/32")};
    TrustedMTASet const atHand(own, {});
    TrustedMTASetRef::install(own, {});
    SideBySide bench("Asking whether a relay is trusted", "question", askedCount);
    bench.add("floor: of a set at hand", [&] {
        for (auto const& address : asked) {
            keep(atHand.isTrustedMTA(address));
        }
    });
    bench.add("of the set in force, fetched for each question", [&] {
        for (auto const& address : asked) {
            keep(TrustedMTASetRef::instance(false)->isTrustedMTA(address));
        }
    });
    bench.run();
}

} // namespace
} // namespace Quorvane::Bench

int main() {
    Quorvane::Bench::s_headers();
    Quorvane::Bench::s_addresses();
    Quorvane::Bench::s_reputation();
    Quorvane::Bench::s_trusted();
}
