// SPDX-License-Identifier: Apache-2.0
//
// The hop that the mail server is about to add, and how the library reads it.
#include "apps/milter/CurrentHop.h"

#include "FakeMailServer.h"
#include "MsgReceived.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {
namespace {

using Macros = std::map<std::string, std::string>;

struct HopCase {
    char const* m_name;
    Macros m_macros;
    char const* m_hostName;
    char const* m_address;
    char const* m_helo;
    char const* m_text;
    std::int32_t m_forged;
    // As the library reads the text.
    char const* m_from;
    char const* m_reverseName;
};

void PrintTo(HopCase const& one, std::ostream* out) {
    *out << one.m_name;
}

HopCase const cases[] = {
    {"Postfix knows the client's name",
     {{"v", "Postfix 3.7.11"},
      {"j", "mx.example.net"},
      {"i", "4VdW3k"},
      {"{client_name}", "mail.example.org"},
      {"{client_ptr}", "mail.example.org"}},
     "mail.example.org",
     "192.0.2.10",
     "helo.example.org",
     "from helo.example.org (mail.example.org [192.0.2.10])\n"
     "\tby mx.example.net (Postfix) with ESMTP id 4VdW3k",
     0,
     "helo.example.org",
     "mail.example.org"},
    {"Postfix could not confirm the name",
     {{"v", "Postfix 3.7.11"},
      {"j", "mx.example.net"},
      {"{client_name}", "unknown"},
      {"{client_ptr}", "mail.example.org"}},
     "unknown",
     "192.0.2.10",
     "localhost",
     "from localhost (unknown [192.0.2.10])\n"
     "\tby mx.example.net (Postfix) with ESMTP id ",
     1,
     "localhost",
     "unknown"},
    {"Postfix knows no name at all",
     {{"v", "Postfix 3.7.11"},
      {"j", "mx"},
      {"{client_name}", "unknown"},
      {"{client_ptr}", "unknown"}},
     "unknown",
     "192.0.2.10",
     "localhost",
     "from localhost (unknown [192.0.2.10])\n\tby mx (Postfix) with ESMTP id ",
     0,
     "localhost",
     "unknown"},
    {"TLS and authentication change the protocol",
     {{"v", "Postfix 3.7.11"},
      {"j", "mx"},
      {"{client_name}", "unknown"},
      {"{tls_version}", "TLSv1.3"},
      {"{cipher}", "TLS_AES_256_GCM_SHA384"},
      {"{cipher_bits}", "256"},
      {"{auth_type}", "PLAIN"}},
     "unknown",
     "192.0.2.10",
     "localhost",
     "from localhost (unknown [192.0.2.10])\n"
     "\t(using TLSv1.3 with cipher TLS_AES_256_GCM_SHA384 (256/256 bits))\n"
     "\tby mx (Postfix) with ESMTPSA id ",
     0,
     "localhost",
     "unknown"},
    {"an IPv6 client has a tagged literal",
     {{"v", "Postfix 3.7.11"}, {"j", "mx"}, {"{client_name}", "six.example"}},
     "six.example",
     "2001:db8::5",
     "six.example",
     "from six.example (six.example [IPv6:2001:db8::5])\n\tby mx (Postfix) with ESMTP id ",
     -1,
     "six.example",
     "six.example"},
    {"a client that said no name",
     {{"v", "Postfix 3.7.11"}, {"j", "mx"}, {"{client_name}", "mail.example.org"}},
     "mail.example.org",
     "192.0.2.10",
     "",
     "from mail.example.org (mail.example.org [192.0.2.10])\n\tby mx (Postfix) with ESMTP id ",
     -1,
     "mail.example.org",
     "mail.example.org"},
    {"a client cannot write an address of its choice into the hop",
     {{"v", "Postfix 3.7.11"}, {"j", "mx"}, {"{client_name}", "unknown"}},
     "unknown",
     "192.0.2.10",
     "good.example (good.example [203.0.113.1]) by\tx",
     "from good.example??good.example?[203.0.113.1]??by?x (unknown [192.0.2.10])\n"
     "\tby mx (Postfix) with ESMTP id ",
     0,
     "good.example??good.example?[203.0.113.1]??by?x",
     "unknown"},
    {"Sendmail writes the client itself",
     {{"v", "8.17.1"},
      {"j", "mx.example.net"},
      {"i", "44E7C2"},
      {"r", "ESMTPS"},
      {"_", "mail.example.org [192.0.2.10] (may be forged)"},
      {"{client_resolve}", "FORGED"}},
     "mail.example.org",
     "192.0.2.10",
     "helo.example.org",
     "from helo.example.org (mail.example.org [192.0.2.10] (may be forged))\n"
     "\tby mx.example.net with ESMTPS id 44E7C2",
     1,
     "helo.example.org",
     "mail.example.org"},
    {"Sendmail knows no name",
     {{"j", "mx"}, {"{client_name}", "[192.0.2.10]"}, {"{client_resolve}", "FAIL"}},
     "[192.0.2.10]",
     "192.0.2.10",
     "localhost",
     "from localhost ([192.0.2.10])\n\tby mx with ESMTP id ",
     0,
     "localhost",
     ""},
    {"a name server that did not answer is no evidence",
     {{"j", "mx"}, {"{client_resolve}", "TEMP"}},
     "[192.0.2.10]",
     "192.0.2.10",
     "localhost",
     "from localhost ([192.0.2.10])\n\tby mx with ESMTP id ",
     0,
     "localhost",
     ""},
    {"no macros at all",
     {},
     "mail.example.org",
     "192.0.2.10",
     "helo.example.org",
     "from helo.example.org (mail.example.org [192.0.2.10])\n\tby  with ESMTP id ",
     -1,
     "helo.example.org",
     "mail.example.org"},
};

class CurrentHop : public testing::TestWithParam<HopCase> {};

TEST_P(CurrentHop, IsWrittenAsTheMailServerWillWriteIt) {
    auto const& expected = GetParam();
    FakeMailServer server(expected.m_macros);
    auto client = Milter::clientOf(server, expected.m_hostName, IPAddress(expected.m_address));
    client.m_helo = Milter::heloNameOf(expected.m_helo);
    auto const text = Milter::receivedText(server, client);
    EXPECT_EQ(text, expected.m_text);
    EXPECT_EQ(Milter::forgedFlag(client), expected.m_forged);
    MsgReceived const hop(text);
    EXPECT_EQ(hop.from(), expected.m_from);
    EXPECT_EQ(hop.reverseName(), expected.m_reverseName);
    EXPECT_EQ(hop.address(), IPAddress(expected.m_address));
}

INSTANTIATE_TEST_SUITE_P(MailServers, CurrentHop, testing::ValuesIn(cases));

TEST(ClientTest, TakesTheAddressOfTheMacroWhenTheSocketHasNone) {
    FakeMailServer server(Macros{{"{client_addr}", "192.0.2.77"}});
    EXPECT_EQ(Milter::clientOf(server, "", IPAddress()).m_address, IPAddress("192.0.2.77"));
    EXPECT_EQ(Milter::clientOf(server, "", IPAddress("192.0.2.1")).m_address,
              IPAddress("192.0.2.1"));
}

} // namespace
} // namespace Quorvane::Testing
