// SPDX-License-Identifier: Apache-2.0
// Packed inputs, made by the programs that people pack with.
#include "qvscan/ScanFixture.h"

namespace Quorvane::Testing {

namespace {

struct Packer {
    char const* m_name;
    char const* m_command; // replaces a file
    char const* m_suffix;
};

class PackedInput : public ScanTest, public testing::WithParamInterface<Packer> {
  protected:
    // The packed form of `text`.
    std::string packed(std::string const& text) const {
        auto const plain = m_folder.write("plain", text);
        auto const script = std::string(GetParam().m_command) + " " + plain;
        EXPECT_EQ(runProgram("/bin/sh", {"-c", script}).m_status, 0);
        auto const content = readFile(plain + GetParam().m_suffix);
        EXPECT_EQ(std::remove((plain + GetParam().m_suffix).c_str()), 0);
        return content;
    }

    // An input with these bytes.
    std::string input(std::string const& bytes) const {
        return m_folder.write(std::string("box") + GetParam().m_suffix, bytes);
    }
};

TEST_P(PackedInput, IsUnpacked) {
    auto const file = input(packed(separator + spam() + "\n" + separator + ham()));
    EXPECT_EQ(summary(scan({file})), (Arguments{file + ":1 spam", file + ":2 ham"}));
}

TEST_P(PackedInput, MembersStrungTogetherAreOneInput) {
    auto const file = input(packed(separator + spam() + "\n") + packed(separator + ham() + "\n") +
                            packed(separator + none()));
    auto const result = scan({file});
    EXPECT_EQ(summary(result), (Arguments{file + ":1 spam", file + ":2 ham", file + ":3 none"}));
    EXPECT_EQ(result.m_errors, "");
}

TEST_P(PackedInput, MembersMayEndInTheMiddleOfAMessage) {
    auto const message = spam();
    auto const file = input(packed(message.substr(0, 30)) + packed(message.substr(30)));
    EXPECT_EQ(summary(scan({file})), Arguments{file + " spam"});
}

TEST_P(PackedInput, WhatIsCutOffIs66AfterWhatCouldBeRead) {
    auto const bytes =
        packed(separator + spam() + noise(1) + separator + ham() + noise(2) + separator + none());
    auto const file = input(bytes.substr(0, bytes.size() * 3 / 4));
    auto const result = scan({file, "-"}, ham());
    EXPECT_EQ(result.m_status, 66);
    EXPECT_EQ(summary(result), (Arguments{file + ":1 spam", file + ":2 ham", "- ham"}));
    EXPECT_EQ(result.m_errors.find("qvscan: " + file + ": cannot be read: damaged packed data: "),
              0U)
        << result.m_errors;
    EXPECT_EQ(result.m_errors.find("No progress"), std::string::npos) << result.m_errors;
    EXPECT_EQ(result.m_errors.find("unknown"), std::string::npos) << result.m_errors;
}

TEST_P(PackedInput, WithoutItsLastBytesItIsCutOffToo) {
    auto const bytes = packed(separator + spam() + noise(1));
    auto const file = input(bytes.substr(0, bytes.size() - 3));
    auto const result = scan({file});
    EXPECT_EQ(result.m_status, 66);
    EXPECT_EQ(summary(result), Arguments{file + ":1 spam"});
    EXPECT_NE(result.m_errors.find("damaged packed data: "), std::string::npos);
}

TEST_P(PackedInput, WhatIsDamagedIs66AndTheNextInputIsJudged) {
    auto bytes = packed(ham());
    for (auto at = bytes.size() / 2; at < bytes.size(); ++at) {
        bytes[at] = static_cast<char>(~bytes[at]);
    }
    auto const file = input(bytes);
    auto const result = scan({file, "-"}, ham());
    EXPECT_EQ(result.m_status, 66);
    EXPECT_EQ(summary(result).back(), "- ham");
    EXPECT_NE(result.m_errors.find("damaged"), std::string::npos);
}

TEST_P(PackedInput, NothingPackedIsNoMessage) {
    for (auto const& bytes : {packed(""), std::string()}) {
        auto const file = input(bytes);
        auto const result = scan({file});
        EXPECT_EQ(result.m_status, 65);
        EXPECT_EQ(result.m_output, "");
        EXPECT_EQ(result.m_errors, "qvscan: " + file + ": not a message: it has no header field\n");
    }
}

INSTANTIATE_TEST_SUITE_P(Packers, PackedInput,
                         testing::Values(Packer{"Bzip2", "bzip2 -1", ".bz2"},
                                         Packer{"Gzip", "gzip", ".gz"}, Packer{"Xz", "xz", ".xz"},
                                         Packer{"Zstd", "zstd -q --rm", ".zst"}),
                         [](auto const& row) { return row.param.m_name; });

} // namespace

} // namespace Quorvane::Testing
