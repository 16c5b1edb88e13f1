// SPDX-License-Identifier: Apache-2.0
// Exit statuses and what stands on standard error with them.
#include "qvscan/ScanFixture.h"

#include <sys/stat.h>

namespace Quorvane::Testing {

namespace {

using ExitStatus = ScanTest;

TEST_F(ExitStatus, TellsSpamFromNoSpam) {
    EXPECT_EQ(scan({}, ham()).m_status, 0);
    EXPECT_EQ(scan({}, none()).m_status, 0);
    EXPECT_EQ(scan({}, spam()).m_status, 1);
}

TEST_F(ExitStatus, NoMessageIs65AfterTheOthersWereJudged) {
    auto const good = m_folder.write("good.eml", spam());
    auto const bad = m_folder.write("bad.bin", "no header here\n");
    auto const result = scan({bad, good});
    EXPECT_EQ(result.m_status, 65);
    EXPECT_EQ(result.m_errors, "qvscan: " + bad + ": not a message: it has no header field\n");
    EXPECT_EQ(records(result).size(), 1U);
}

TEST_F(ExitStatus, EmptyInputIsNoMessage) {
    EXPECT_EQ(scan({}, "").m_status, 65);
    EXPECT_EQ(scan({m_folder.write("empty", "")}).m_status, 65);
}

TEST_F(ExitStatus, MissingInputIs66AfterTheOthersWereJudged) {
    auto const good = m_folder.write("good.eml", ham());
    auto const missing = m_folder.path("missing");
    auto const result = scan({missing, good});
    EXPECT_EQ(result.m_status, 66);
    EXPECT_EQ(result.m_errors,
              "qvscan: " + missing + ": cannot be opened: No such file or directory\n");
    EXPECT_EQ(records(result).size(), 1U);
}

struct UsageCase {
    Arguments m_arguments;
    std::string m_error;
};

TEST_F(ExitStatus, WrongCommandLinesAre64) {
    UsageCase const cases[] = {
        {{"--nonsense"}, "unknown option --nonsense\n\"qvscan --help\" shows"},
        {{"--spam-treshold", "1"},
         "unknown option --spam-treshold; did you mean --spam-threshold?\n"},
        {{"--format", "xml"}, "--format: \"xml\" is not one of text|json|csv"},
        {{"--spam-threshold", "much"}, "--spam-threshold: \"much\" is not a number"},
        {{"--ipv6", "Judge"},
         "--ipv6: \"Judge\" does not say what IPv6 relays mean; write stop or judge"},
        {{"--walk-to-leaf", "2"}, "--walk-to-leaf: \"2\" is not a whole number from 0 to 1"},
        {{"--max-elite-level", "4294967296"}, "--max-elite-level: \"4294967296\" is not a whole"},
        {{"--client-score", "-1"}, "--client-score: \"-1\" is not a whole number"},
        {{"--trusted-mta", "300.0.0.1"}, "--trusted-mta: "},
        {{"--internal", "192.0.2.0/33"}, "--internal: "},
        {{"--score", "192.0.2.0/24"}, "--score: \"192.0.2.0/24\" is not a score"},
        {{"--dns", "no-server"}, "--dns: \"no-server\" is not a resolver"},
        {{"--dns", "192.0.2.53@70000"}, "--dns: \"70000\" is not a whole number"},
        {{"--jobs", "-2"}, "--jobs: \"-2\" is not a whole number"},
        {{"--root"}, "--root"},
    };
    for (auto const& row : cases) {
        auto const result = scan(row.m_arguments, ham());
        EXPECT_EQ(result.m_status, 64) << row.m_arguments[0];
        EXPECT_NE(result.m_errors.find(row.m_error), std::string::npos) << result.m_errors;
        EXPECT_NE(result.m_errors.find("qvscan --help"), std::string::npos);
        EXPECT_EQ(result.m_output, "");
    }
}

struct RangeCase {
    std::string m_name;
    std::string m_value;
    std::string m_error; // after name and value
};

RangeCase const beyondRange[] = {
    {"spam-threshold", "96", "is not a probability; write a number from 0 to 1"},
    {"spam-threshold", "-1", "is not a probability; write a number from 0 to 1"},
    {"spam-threshold", "95.0000001", "is not a probability; write a number from 0 to 1"},
    {"spam-threshold", "nan", "is not a number"},
    {"spam-threshold", "inf", "is not a probability; write a number from 0 to 1"},
    {"ham-threshold", "99.5", "is not a probability; write a number from 0 to 1"},
    {"ham-threshold", "-inf", "is not a probability; write a number from 0 to 1"},
    {"min-support", "100.5", "is not a number from 0 to 100"},
    {"min-support", "-0.1", "is not a number from 0 to 100"},
    {"score-threshold", "11", "is not a whole number from -1 to 10"},
    {"score-threshold", "-2", "is not a whole number from -1 to 10"},
    {"max-elite-level", "-2", "is not a whole number from -1 to 2147483647"},
};

TEST_F(ExitStatus, ThresholdsOutOfRangeAre64AndTheMessageSaysTheRange) {
    for (auto const& row : beyondRange) {
        auto const result = scan({"--" + row.m_name + "=" + row.m_value}, ham());
        EXPECT_EQ(result.m_status, 64) << row.m_name << ' ' << row.m_value;
        EXPECT_EQ(result.m_output, "");
        EXPECT_EQ(result.m_errors.find("qvscan: --" + row.m_name + ": \"" + row.m_value + "\" " +
                                       row.m_error + "\n"),
                  0U)
            << result.m_errors;
    }
    auto const score = scan({"--score", "192.0.2.0/24=77"}, ham());
    EXPECT_EQ(score.m_status, 64);
    EXPECT_NE(score.m_errors.find("--score: \"192.0.2.0/24=77\": a score is a whole number from 0 "
                                  "to 9"),
              std::string::npos)
        << score.m_errors;
}

TEST_F(ExitStatus, ThresholdsOutOfRangeInASettingsFileAre78WithTheirPlace) {
    for (auto const& row : beyondRange) {
        auto const file =
            m_folder.write("settings.toml", "jobs = 1\n" + row.m_name + " = " + row.m_value + "\n");
        auto const result = scan({"--config", file}, ham());
        EXPECT_EQ(result.m_status, 78) << row.m_name << ' ' << row.m_value;
        EXPECT_EQ(result.m_output, "");
        auto const place = file + ":2:" + std::to_string(row.m_name.size() + 4) + ": ";
        EXPECT_EQ(result.m_errors.find("qvscan: " + place + row.m_name + ": \""), 0U)
            << result.m_errors;
        EXPECT_NE(result.m_errors.find(row.m_error), std::string::npos) << result.m_errors;
    }
    auto const file = m_folder.write("settings.toml", "score = [\"192.0.2.1=9\", \"::/0=-2\"]\n");
    auto const score = scan({"--config", file}, ham());
    EXPECT_EQ(score.m_status, 78);
    EXPECT_NE(score.m_errors.find(file + ":1:25: score: "), std::string::npos) << score.m_errors;
}

// The library's own default says "never" with 95: that is no mistake of the scale, but hardly
// meant.
TEST_F(ExitStatus, AThresholdAboveAllProbabilitiesIsSaidToJudgeNothing) {
    auto const result = scan({"--spam-threshold=95", "--ham-threshold=1.5"}, spam());
    EXPECT_EQ(result.m_status, 0);
    EXPECT_EQ(result.m_errors,
              "qvscan: spam-threshold 95 (command line) is above 1: no message can be called spam; "
              "thresholds are probabilities, as in 0.95\n"
              "qvscan: ham-threshold 1.5 (command line) is above 1: no message can be called ham; "
              "thresholds are probabilities, as in 0.95\n");
    EXPECT_EQ(scan({"--spam-threshold=1", "--ham-threshold=1"}, spam()).m_errors, "");
}

TEST_F(ExitStatus, TheEndsOfARangeBelongToIt) {
    for (auto const* const option :
         {"--spam-threshold=0", "--spam-threshold=1", "--ham-threshold=0", "--min-support=100",
          "--score-threshold=0", "--score-threshold=9", "--max-elite-level=0", "--score=::/0=0"}) {
        EXPECT_LT(scan({option}, ham()).m_status, 2) << option;
    }
}

TEST_F(ExitStatus, BadSettingsAre78) {
    struct {
        char const* m_text;
        char const* m_error;
    } const cases[] = {
        {"spam-threshold = \"x\"\n", ":1:18: spam-threshold needs a number"},
        {"jobs = 2\nspam_threshold = 1\n",
         ":2:1: unknown key \"spam_threshold\"; did you mean \"spam-threshold\"?"},
        {"umbrella = 1\n", ":1:1: unknown key \"umbrella\"; qvscan --show-config lists"},
        {"jobs = \n", ":1:"},
        {"jobs = 2\n[\n", ":2:2: this is not TOML"},
        {"trusted-mta = [\"192.0.2.1\", \"nope\"]\n", ":1:29: trusted-mta: "},
        {"ipv6 = \"yes\"\n",
         ":1:8: ipv6: \"yes\" does not say what IPv6 relays mean; write stop or judge"},
        {"ipv6 = true\n", ":1:8: ipv6 needs a"},
        {"walk-to-leaf = 7\n", ":1:16: walk-to-leaf: \"7\" is not a whole number from 0 to 1"},
    };
    for (auto const& row : cases) {
        auto const file = m_folder.write("settings.toml", row.m_text);
        auto const result = scan({"--config", file}, ham());
        EXPECT_EQ(result.m_status, 78) << row.m_text;
        EXPECT_NE(result.m_errors.find(file + row.m_error), std::string::npos) << result.m_errors;
    }
}

TEST_F(ExitStatus, MissingFilesOfSettingsAre78) {
    auto const missing = m_folder.path("missing");
    for (auto const* const option : {"--config", "--dynamic-patterns", "--dns-data", "--root"}) {
        auto const result = scan({option, missing}, ham());
        EXPECT_EQ(result.m_status, 78) << option;
        EXPECT_NE(result.m_errors.find(missing), std::string::npos) << result.m_errors;
    }
}

// They would fill the memory.
TEST_F(ExitStatus, EndlessFilesOfSettingsAre78) {
    for (auto const* const option : {"--config", "--dynamic-patterns", "--dns-data"}) {
        auto const result = scan({option, "/dev/zero"}, ham());
        EXPECT_EQ(result.m_status, 78) << option;
        EXPECT_EQ(result.m_errors,
                  "qvscan: /dev/zero: larger than 64 MiB, so it is not what is expected here\n");
    }
}

TEST_F(ExitStatus, EndlessPipesOfSettingsAre78) {
    for (std::string const option : {"--config", "--dynamic-patterns", "--dns-data"}) {
        auto const command = "yes 2>/dev/null | " QV_SCAN_PROGRAM " --root " + root() + " " +
                             option + " /dev/stdin " + m_folder.write("mail", ham());
        auto const result = runProgram("/bin/sh", {"-c", command});
        EXPECT_EQ(result.m_status, 78) << option;
        EXPECT_EQ(result.m_errors,
                  "qvscan: /dev/stdin: larger than 64 MiB, so it is not what is expected here\n");
    }
}

TEST_F(ExitStatus, RuleFilesThatAreNoRegularFilesCountAsMissing) {
    for (auto const* const name : {"README", "qv.dt", "qv2.dt"}) {
        auto const file = root() + "/var/spool/etc/antispam/" + name;
        auto const kept = m_folder.path(name);
        std::filesystem::rename(file, kept);
        ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
        auto const result = scan({}, ham());
        EXPECT_EQ(result.m_status, std::string(name) == "qv.dt" ? 78 : 0) << result.m_errors;
        std::filesystem::rename(kept, file);
    }
}

TEST_F(ExitStatus, RulesThatCannotBeLoadedAre78) {
    auto const empty = m_folder.path() / "empty";
    std::filesystem::create_directories(empty);
    auto const result = scan({"--root", empty}, ham());
    EXPECT_EQ(result.m_status, 78);
    EXPECT_NE(
        result.m_errors.find("no usable rules in " + empty.string() + "/var/spool/etc/antispam: "),
        std::string::npos);
    EXPECT_NE(result.m_errors.find("Error loading the deep header rules"), std::string::npos);
}

// A folder of rules, as qvrules compile writes it, serves as well as the root folder above it.
TEST_F(ExitStatus, ARootMayBeTheFolderOfRulesItself) {
    auto const rules = root() + "/var/spool/etc/antispam";
    auto const below = scan({}, spam());
    auto const itself = scan({"--root", rules}, spam());
    EXPECT_EQ(itself.m_status, 1) << itself.m_errors;
    EXPECT_EQ(itself.m_output, below.m_output);
    writeNamesFile("damaged");
    EXPECT_EQ(scan({"--root", rules}, spam()).m_errors, scan({}, spam()).m_errors);

    std::ofstream(rules + "/qv.dt") << std::string(sizeof(DTNode) * treeTableSize, 1);
    auto const damaged = scan({"--root", rules}, spam());
    EXPECT_EQ(damaged.m_status, 78);
    EXPECT_EQ(damaged.m_errors.find("qvscan: no usable rules in " + rules + ": "), 0U)
        << damaged.m_errors;
}

// The build tree is laid out as an installation is.
TEST_F(ExitStatus, WithoutInstalledRulesThoseThatCameWithTheProgramAreUsed) {
    if (std::filesystem::exists("/var/spool/etc/antispam/qv.dt")) {
        GTEST_SKIP() << "rules are installed on this machine";
    }
    auto const result = run({"--dns", "off"}, ham());
    EXPECT_EQ(result.m_status, 0) << result.m_errors;
    EXPECT_EQ(records(result).size(), 1U);
    auto const shown = run({"--show-config"}).m_output;
    EXPECT_NE(shown.find("share/qvdeepheader/root\""), std::string::npos) << shown;
    EXPECT_NE(shown.find("# came with the program, as none are installed\n"), std::string::npos);
}

TEST_F(ExitStatus, RulesOfAVersionThatNeverLoadsSayWhy) {
    auto const folder = m_folder.path() / "zero/var/spool/etc/antispam";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "README") << "CF_DT_VERSION=0\n";
    auto const result = scan({"--root", m_folder.path() / "zero"}, ham());
    EXPECT_EQ(result.m_status, 78);
    EXPECT_NE(result.m_errors.find("the version in README must be above 0"), std::string::npos)
        << result.m_errors;
}

TEST_F(ExitStatus, ErrorsInPatternsAndZoneDataNameTheirLine) {
    auto const patterns = m_folder.write("patterns", "# a comment\n\n(\n");
    auto const zone = m_folder.write("zone", "; a comment\n\nname.example. A nowhere\n");
    EXPECT_NE(scan({"--dynamic-patterns", patterns}, ham()).m_errors.find(patterns + ":3: "),
              std::string::npos);
    EXPECT_NE(scan({"--dns-data", zone}, ham()).m_errors.find("line 3 "), std::string::npos);
}

TEST_F(ExitStatus, HelpAndVersionNeedNoRules) {
    auto const help = run({"--help"});
    EXPECT_EQ(help.m_status, 0);
    EXPECT_NE(help.m_output.find("Usage: qvscan"), std::string::npos);
    for (auto const* const option : {"--version", "-V"}) {
        auto const version = run({option});
        EXPECT_EQ(version.m_status, 0);
        EXPECT_EQ(version.m_output.find("qvscan "), 0U);
    }
}

} // namespace

} // namespace Quorvane::Testing
