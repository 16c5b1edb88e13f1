// SPDX-License-Identifier: Apache-2.0
// Every option does something: for each a field of the record that it changes.
#include "qvscan/ScanFixture.h"
#include "support/DnsServer.h"

namespace Quorvane::Testing {

namespace {

using OptionEffect = ScanTest;

struct EffectCase {
    Arguments m_arguments;
    std::string m_message;
    std::string m_field; // JSON pointer
    Json m_without;
    Json m_with;
};

// The trail of a message that came over a relay of ours.
std::string s_relayed(std::string const& relay, std::string const& message) {
    return hop("relay.example.org", "relay.example.org", relay) + message;
}

TEST_F(OptionEffect, EachChangesItsField) {
    auto const twoHops = s_relayed("198.51.100.9", spam());
    auto const viaV6 = s_relayed("2001:db8::9", spam());
    auto const patterns = m_folder.write("patterns", "# none of the usual\n^mail\\.\n");
    auto const zone = m_folder.write(
        "zone", "; comment\nexample.net. A 192.0.2.80\n\nmail.example.net. A 192.0.2.99\n");
    EffectCase const cases[] = {
        {{"--spam-threshold", "0.999"}, spam(), "/verdict", "spam", "none"},
        {{"--spam-threshold=95"}, spam(), "/explain/tree/result", 3, -1},
        {{"--ham-threshold", "0.99"}, ham(), "/verdict", "ham", "none"},
        {{"--min-support", "11"}, spam(), "/explain/tree/result", 3, 2},
        {{"--walk-to-leaf", "0", "--spam-threshold", "0.2"},
         spam(),
         "/explain/tree/path",
         {2, 3},
         Json::array({2})},
        {{"--max-elite-level", "2", "--message-status", "3"}, ham(), "/node", 4, 901},
        {{"--message-status", "3"}, ham(), "/explain/attributes/36", 0, 1},
        {{"--score", "198.51.100.0/24=7"}, twoHops, "/explain/scoredHopIP", "", "198.51.100.9"},
        {{"--score", "198.51.100.0/24=7", "--score", "198.51.100.9=2"},
         twoHops,
         "/explain/hopCount",
         2,
         2},
        {{"--score", "198.51.100.9=5", "--score-threshold", "5"},
         twoHops,
         "/explain/scoredHopScore",
         0,
         5},
        {{"--score", "198.51.100.0/24=7", "--score-threshold", "-1"},
         twoHops,
         "/explain/scoredHopFound",
         0,
         0},
        {{"--env-from", "Eve <eve@mail.example>"},
         ham(),
         "/explain/envelopeFrom",
         "example.net",
         "mail.example"},
        {{"--env-from", "eve@mail.example"}, ham(), "/explain/headerFrom", "example.net", nullptr},
        {{"--env-from=", "--header-from", "a@Author.example"},
         ham(),
         "/explain/headerFrom",
         "example.net",
         "Author.example"},
        {{"--recipient", "r@rcpt.example"},
         ham(),
         "/explain/recipient",
         "example.org",
         "rcpt.example"},
        {{"--current-received", "from h.example (r.example [203.0.113.5]) by mx.example.org"},
         ham(),
         "/ips",
         "192.0.2.7",
         "203.0.113.5,192.0.2.7"},
        {{"--current-received", "from h.example (r.example [203.0.113.5]) by mx.example.org",
          "--current-forged", "1"},
         ham(),
         "/explain/attributes/14",
         0,
         1},
        {{"--current-received", "from h.example (r.example [203.0.113.5]) by mx.example.org",
          "--current-forged=-1"},
         ham(),
         "/explain/hops/0/isForged",
         0,
         0},
        {{"--current-received", "from h.example (r.example [203.0.113.5]) by mx.example.org",
          "--client-score", "9"},
         ham(),
         "/explain/scoredHopIP",
         "",
         "203.0.113.5"},
        {{"--trusted-mta", "198.51.100.0/24"}, twoHops, "/explain/hopCount", 2, 1},
        {{"--trusted-mta", "203.0.113.1", "--trusted-mta", "198.51.100.9"},
         twoHops,
         "/ips",
         "198.51.100.9,192.0.2.7",
         "192.0.2.7"},
        {{"--trusted-antispam-mta", "198.51.100.9"}, twoHops, "/explain/hopCount", 2, 0},
        {{"--internal", "2001:db8::/32"}, viaV6, "/explain/hopCount", 0, 1},
        {{"--ipv6", "judge"}, viaV6, "/explain/hopCount", 0, 2},
        {{"--ipv6", "judge"}, viaV6, "/ips", "", "2001:db8::9,192.0.2.7"},
        {{"--ipv6", "judge", "--trusted-mta", "2001:db8::/32"}, viaV6, "/ips", "", "192.0.2.7"},
        {{"--ipv6", "judge", "--score", "2001:db8::/32=7"},
         viaV6,
         "/explain/scoredHopIP",
         "",
         "2001:db8::9"},
        {{"--ipv6", "stop"}, viaV6, "/explain/hopCount", 0, 0},
        {{"--internal", "198.51.100.9"}, twoHops, "/ips", "198.51.100.9,192.0.2.7", "192.0.2.7"},
        {{"--internal", "192.0.2.7"}, twoHops, "/explain/hopCount", 2, 2},
        {{"--dynamic-patterns", patterns}, ham(), "/explain/attributes/10", 0, 1},
        {{"--dns-data", zone}, ham(), "/explain/attributes/29", 0, 1},
        {{"--dns-data", zone}, ham(), "/explain/attributes/14", 0, 1},
    };
    for (auto const& row : cases) {
        Json::json_pointer const field(row.m_field);
        EXPECT_EQ(explained({}, row.m_message)[field], row.m_without) << row.m_arguments[0];
        EXPECT_EQ(explained(row.m_arguments, row.m_message)[field], row.m_with)
            << row.m_arguments[0] << " " << row.m_field;
    }
}

// A server without zones refuses everything.
TEST_F(OptionEffect, ProgressSumsUpFailedLookups) {
    DnsServer const server({});
    auto const shown = scan({"--dns", server.address(), "--progress"}, ham());
    EXPECT_NE(shown.m_errors.find(" look-ups failed and 0 came too late"), std::string::npos)
        << shown.m_errors;
    EXPECT_EQ(shown.m_errors.find("DNS: 0 "), std::string::npos) << shown.m_errors;
    EXPECT_EQ(scan({"--dns", server.address()}, ham()).m_errors, ""); // no terminal
    EXPECT_EQ(scan({"--progress"}, ham()).m_errors, "");
}

TEST_F(OptionEffect, FormatsDiffer) {
    EXPECT_EQ(scan({"--format", "text"}, ham()).m_output.find("verdict "), 0U);
    auto const csv = scan({"--format", "csv"}, ham()).m_output;
    EXPECT_EQ(csv.find("source,first_helo_is_domain,"), 0U);
    EXPECT_NE(csv.find("\n-,1,3,0,"), std::string::npos) << csv;
}

TEST_F(OptionEffect, FormatIsJsonWhereNobodyLooks) {
    auto const result = run({"--root", root(), "--dns", "off"}, ham());
    EXPECT_EQ(records(result).size(), 1U);
}

TEST_F(OptionEffect, ConfigFileGivesSettingsAndTheCommandLineWins) {
    auto const file = m_folder.write("etc/settings.toml", "root = \"../root\"\n"
                                                          "dns = \"off\"\n"
                                                          "spam-threshold = 0.999\n"
                                                          "score = [\"192.0.2.7=3\"]\n"
                                                          "trusted-mta = [\"198.51.100.9\"]\n"
                                                          "[milter]\nanything = 1\n");
    auto const settled = run({"--config", file}, spam());
    EXPECT_EQ(settled.m_status, 0) << settled.m_errors;
    EXPECT_EQ(run({"--config", file, "--spam-threshold", "0.9"}, spam()).m_status, 1);
    auto const shown = run({"--config", file, "--score", "192.0.2.8=4", "--show-config"});
    EXPECT_EQ(shown.m_status, 0);
    auto const expect = [&shown](std::string const& text) {
        EXPECT_NE(shown.m_output.find(text), std::string::npos) << text << "\n" << shown.m_output;
    };
    expect("spam-threshold = 0.999");
    expect("# " + file + ":3\n");
    expect("score = [\"192.0.2.8/32=4\"]");
    expect("# command line\n");
    expect("ham-threshold = 0.95                    # default\n");
}

TEST_F(OptionEffect, ShownSettingsReadBackAsTheyAre) {
    Arguments const given{"--internal", "2001:db8::/32", "--score",          "192.0.2.0/24=3",
                          "--dns",      "off",           "--spam-threshold", "1e-300"};
    auto all = given;
    all.emplace_back("--show-config");
    auto const first = run(all).m_output;
    auto const again = run({"--config", m_folder.write("shown.toml", first), "--show-config"});
    EXPECT_EQ(again.m_status, 0) << again.m_errors;
    EXPECT_NE(again.m_output.find("internal = [\"2001:db8::/32\"]"), std::string::npos);
    EXPECT_NE(again.m_output.find("spam-threshold = 1e-300"), std::string::npos);
    EXPECT_NE(again.m_output.find("score = [\"192.0.2.0/24=3\"]"), std::string::npos);
}

TEST_F(OptionEffect, JobsChangeNothingButTheThreads) {
    std::string mbox;
    for (int i = 0; i < 300; ++i) {
        mbox += "From x@example.invalid Mon Jan  1 00:00:00 2024\n" +
                (i % 3 == 0   ? spam()
                 : i % 3 == 1 ? ham()
                              : none()) +
                "\n";
    }
    auto const one = scan({"--jobs", "1", "--explain"}, mbox);
    EXPECT_EQ(records(one).size(), 300U);
    EXPECT_EQ(scan({"--jobs", "7", "--explain"}, mbox).m_output, one.m_output);
}

} // namespace

} // namespace Quorvane::Testing
