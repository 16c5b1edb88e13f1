// SPDX-License-Identifier: Apache-2.0
//
// Name servers that answer wrongly, or not: each look-up ends with the result that is right, and
// the next name, which is answered well, resolves.
#include "platform/LookupDeadline.h"
#include "ResolverFixture.h"
#include "support/DnsQuestion.h"
#include "support/HostileDnsServer.h"
#include "support/LateDnsServer.h"
#include "support/LoopbackSocket.h"

#include <optional>
#include <ostream>
#include <vector>

namespace Quorvane::Testing {
namespace {

using Packets = std::vector<std::string>;

std::string s_with(std::string packet, std::size_t at, std::string const& bytes) {
    return packet.replace(at, bytes.size(), bytes);
}

struct Row {
    char const* m_name;
    HostileDnsServer::Replies m_replies;
    LookupResult m_result;
    HostileDnsServer::When m_when = HostileDnsServer::When::atOnce;
};

std::ostream& operator<<(std::ostream& out, Row const& row) {
    return out << row.m_name;
}

using DeadDnsTest = ResolverFixture;

class HostileDnsTest : public ResolverFixture, public testing::WithParamInterface<Row> {};

// A shorter deadline than that of the settings, where libunbound waits for a better answer.
LookupResult s_resultOf(LookupResult expected) {
    std::optional<LookupDeadline> deadline;
    if (expected == LookupResult::late) {
        deadline.emplace(shortDeadline);
    }
    return Resolver::instance().submit(RecordType::A, "name.bad.test", RecordClass::IN).result();
}

TEST_P(HostileDnsTest, TheLookUpEndsAndTheNextOneWorks) {
    HostileDnsServer const server(GetParam().m_replies, GetParam().m_when);
    configure(serverSettings(server.address()));
    EXPECT_EQ(s_resultOf(GetParam().m_result), GetParam().m_result);
    EXPECT_EQ(ask(RecordType::A, "name.good.test").result(), LookupResult::answered);
    // Only now: a deadline may pass before a busy machine has sent the question.
    EXPECT_GT(server.badQuestions(), 0);
}

TEST_F(DeadDnsTest, ADeadServerIsLateAndAnswersOnceItLives) {
    int const port = LoopbackSocket(SOCK_DGRAM, 0).port();
    configure(serverSettings("127.0.0.1@" + std::to_string(port)));
    EXPECT_EQ(s_resultOf(LookupResult::late), LookupResult::late);
    LateDnsServer const server(std::chrono::milliseconds{0}, {}, port);
    EXPECT_EQ(ask(RecordType::A, "name.good.test").result(), LookupResult::answered);
}

Row const rows[] = {
    {"silent", [](auto const&) { return Packets(); }, LookupResult::late},
    {"another id",
     [](auto const& answer) {
         return Packets{s_with(answer, 0, std::string(1, static_cast<char>(answer[0] ^ 1)))};
     },
     LookupResult::late},
    {"after the deadline", [](auto const& answer) { return Packets{answer}; }, LookupResult::late,
     HostileDnsServer::When::late},
    {"no packet of DNS", [](auto const&) { return Packets{"HTTP/1.1 400 Bad Request\r\n\r\n"}; },
     LookupResult::late},
    {"a byte", [](auto const&) { return Packets{"x"}; }, LookupResult::late},
    {"the question itself",
     [](auto const& answer) { return Packets{s_with(answer, 2, std::string(1, '\1'))}; },
     LookupResult::failed},
    {"a head alone", [](auto const& answer) { return Packets{answer.substr(0, dnsHeaderLength)}; },
     LookupResult::failed},
    {"cut in the record",
     [](auto const& answer) { return Packets{answer.substr(0, answer.size() - 3)}; },
     LookupResult::failed},
    {"more records than there are",
     [](auto const& answer) { return Packets{s_with(answer, 6, "\xFF\xFF")}; },
     LookupResult::failed},
    {"a length beyond the packet",
     [](auto const& answer) { return Packets{s_with(answer, answer.size() - 6, "\xFF\xFF")}; },
     LookupResult::failed},
    // Nobody checks the length; it is no address to whoever reads it.
    {"an address of three bytes",
     [](auto const& answer) {
         return Packets{s_with(answer.substr(0, answer.size() - 1), answer.size() - 5, "\3")};
     },
     LookupResult::answered},
    {"a name that points at itself",
     [](auto const& answer) {
         return Packets{s_with(answer, answer.size() - 15,
                               std::string(1, static_cast<char>(answer.size() - 16)))};
     },
     LookupResult::failed},
    {"another question",
     [](auto const& answer) { return Packets{s_with(answer, dnsHeaderLength + 1, "x")}; },
     LookupResult::failed},
    {"cut off, and no TCP",
     [](auto const& answer) {
         return Packets{s_with(answer, 2, std::string(1, static_cast<char>(answer[2] | 2)))};
     },
     LookupResult::failed},
    {"server failure", [](auto const& answer) { return Packets{s_with(answer, 3, "\x82")}; },
     LookupResult::failed},
    {"refused", [](auto const& answer) { return Packets{s_with(answer, 3, "\x85")}; },
     LookupResult::failed},
};

INSTANTIATE_TEST_SUITE_P(Servers, HostileDnsTest, testing::ValuesIn(rows));

} // namespace
} // namespace Quorvane::Testing
