// SPDX-License-Identifier: Apache-2.0
// Archives of mail: each file in one is an input of its own, whatever the others are.
#include "qvscan/ScanFixture.h"
#include "support/ArchiveWriter.h"

#include <utility>

namespace Quorvane::Testing {

namespace {

using Files = std::vector<ArchivedFile>;

struct NamedForm {
    char const* m_name;
    ArchiveForm m_form;
};

class Archive : public ScanTest {
  protected:
    std::string archive(ArchiveForm const& form, Files const& files) const {
        return m_folder.write("mail.archive", archiveOf(form, files));
    }

    Files mail() const {
        return {{"./box/", {}, {}, true},
                {"./box/one.eml", spam()},
                {"./box/two.mbox", separator + ham() + "\n" + separator + none()},
                {"./last", ham()}};
    }
};

class ArchiveFormat : public Archive, public testing::WithParamInterface<NamedForm> {};

TEST_P(ArchiveFormat, EachFileIsAnInputOfItsOwn) {
    auto const file = archive(GetParam().m_form, mail());
    EXPECT_EQ(summary(scan({file})),
              (Arguments{file + "/box/one.eml spam", file + "/box/two.mbox:1 ham",
                         file + "/box/two.mbox:2 none", file + "/last ham"}));
    EXPECT_EQ(summary(scan({}, m_folder.read("mail.archive"))),
              (Arguments{"-/box/one.eml spam", "-/box/two.mbox:1 ham", "-/box/two.mbox:2 none",
                         "-/last ham"}));
}

TEST_P(ArchiveFormat, WhatIsCutOffIs66AfterWhatCouldBeRead) {
    auto const whole = archiveOf(GetParam().m_form, {{"one", spam()}, {"two", ham() + noise()}});
    auto const file = m_folder.write("cut", whole.substr(0, whole.size() / 2));
    auto const result = scan({file, "-"}, ham());
    EXPECT_EQ(result.m_status, 66);
    EXPECT_EQ(summary(result), (Arguments{file + "/one spam", file + "/two ham", "- ham"}));
    EXPECT_NE(result.m_errors.find("qvscan: " + file), std::string::npos);
    EXPECT_NE(result.m_errors.find(": damaged packed data: "), std::string::npos)
        << result.m_errors;
}

INSTANTIATE_TEST_SUITE_P(
    Forms, ArchiveFormat,
    testing::Values(NamedForm{"GnuTar", {"gnutar"}}, NamedForm{"Pax", {"pax"}},
                    NamedForm{"V7", {"v7tar"}}, NamedForm{"TarGz", {"ustar", "gzip"}},
                    NamedForm{"TarBz2", {"ustar", "bzip2", "bzip2:compression-level=1"}},
                    NamedForm{"TarXz", {"ustar", "xz"}}, NamedForm{"TarZst", {"ustar", "zstd"}},
                    NamedForm{"Zip", {"zip"}},
                    NamedForm{"StoredZip", {"zip", "", "zip:compression=store"}}),
    [](auto const& row) { return row.param.m_name; });

TEST_F(Archive, AFileInItMayBePacked) {
    // What is packed alone is a file without a name.
    auto const packed = archiveOf({"raw", "gzip"}, {{"x", spam()}});
    auto const file = archive({"ustar"}, {{"one.eml.gz", packed}, {"two.eml", ham()}});
    EXPECT_EQ(summary(scan({file})), (Arguments{file + "/one.eml.gz spam", file + "/two.eml ham"}));
}

TEST_F(Archive, WhatIsNoMailFileIsPassedOver) {
    auto const file = archive({"ustar"}, {{"cur/", {}, {}, true},
                                          {"cur/.hidden", spam()},
                                          {"cur/dovecot.index", spam()},
                                          {"cur/link", {}, "/etc/passwd"},
                                          {".Sent/cur/1.host:2,S", ham()}});
    EXPECT_EQ(summary(scan({file})), Arguments{file + "/.Sent/cur/1.host:2,S ham"});
}

TEST_F(Archive, WhatIsNoMessageIs65AndTheRestIsJudged) {
    auto const file =
        archive({"zip"}, {{"README", "Just text.\n"}, {"empty", ""}, {"one.eml", spam()}});
    auto const result = scan({file});
    EXPECT_EQ(result.m_status, 65);
    EXPECT_EQ(summary(result), Arguments{file + "/one.eml spam"});
    EXPECT_EQ(result.m_errors,
              "qvscan: " + file + "/README: not a message: it has no header field\n" +
                  "qvscan: " + file + "/empty: not a message: it has no header field\n");
}

TEST_F(Archive, AnArchiveInItIs66AndTheRestIsJudged) {
    auto const inner = archiveOf({"ustar", "gzip"}, {{"x", spam()}});
    auto const file = archive({"ustar"}, {{"inner.tgz", inner}, {"one.eml", ham()}});
    auto const result = scan({file});
    EXPECT_EQ(result.m_status, 66);
    EXPECT_EQ(summary(result), Arguments{file + "/one.eml ham"});
    EXPECT_EQ(result.m_errors, "qvscan: " + file +
                                   "/inner.tgz: cannot be read: it is an archive in an archive; "
                                   "unpack it first\n");
}

TEST_F(Archive, EncryptedFilesAre66AndTheNextInputIsJudged) {
    auto const encrypted = archiveOf({"zip", "", "zip:encryption=traditional", "secret"},
                                     {{"secret.eml", spam()}, {"other.eml", ham()}});
    auto const file = m_folder.write("secret.zip", encrypted);
    auto const result = scan({file, "-"}, ham());
    EXPECT_EQ(result.m_status, 66);
    EXPECT_EQ(summary(result), Arguments{"- ham"});
    EXPECT_EQ(result.m_errors,
              "qvscan: " + file + "/secret.eml: cannot be read: it is encrypted\n" +
                  "qvscan: " + file + "/other.eml: cannot be read: it is encrypted\n");
}

TEST_F(Archive, ADamagedFileIsReportedAndTheNextJudged) {
    m_folder.write("mail/1", spam());
    m_folder.write("mail/2", ham());
    m_folder.write("mail/3", none());
    auto const zip = "cd " + m_folder.path("mail") + " && zip -q ../mail.zip 1 2 3";
    ASSERT_EQ(runProgram("/bin/sh", {"-c", zip}).m_status, 0);
    auto bytes = m_folder.read("mail.zip");
    auto const start = bytes.find("PK\3\4", 1); // of the second file; 60 bytes on are data
    for (auto at = start + 80; at < start + 120; ++at) {
        bytes[at] = static_cast<char>(~bytes[at]);
    }
    auto const file = m_folder.write("damaged.zip", bytes);
    auto const result = scan({file});
    EXPECT_EQ(result.m_status, 66);
    EXPECT_EQ(summary(result), (Arguments{file + "/1 spam", file + "/3 none"}));
    EXPECT_EQ(result.m_errors.find("qvscan: " + file + "/2: cannot be read: damaged packed data: "),
              0U)
        << result.m_errors;
}

TEST_F(Archive, ADamagedPlaceIsReportedOnceAndTheNextFileJudged) {
    auto bytes = archiveOf({"ustar"}, {{"one", spam()}, {"two", noise()}, {"three", none()}});
    ++bytes[bytes.find("two") + 20];
    auto const file = m_folder.write("damaged.tar", bytes);
    auto const result = scan({file});
    EXPECT_EQ(result.m_status, 66);
    EXPECT_EQ(summary(result), (Arguments{file + "/one spam", file + "/three none"}));
    EXPECT_EQ(result.m_errors, "qvscan: " + file +
                                   ": cannot be read: damaged packed data: "
                                   "Damaged tar archive\n");
}

TEST_F(Archive, NamesInItAreOnlyShown) {
    auto const file = archive({"pax"}, {{"../../escape.eml", spam()},
                                        {"/absolute.eml", ham()},
                                        {"red\x1B[31m.eml", none()},
                                        {"caf\xC3\xA9.eml", ham()}});
    EXPECT_EQ(summary(scan({file})),
              (Arguments{file + "/../../escape.eml spam", file + "/absolute.eml ham",
                         file + "/red\x1B[31m.eml none", file + "/caf\xC3\xA9.eml ham"}));
    auto const text = scan({file, "--format", "text"}).m_output;
    EXPECT_EQ(text.find('\x1B'), std::string::npos) << text;
    EXPECT_FALSE(std::filesystem::exists(m_folder.path().parent_path() / "escape.eml"));
    EXPECT_FALSE(std::filesystem::exists("/absolute.eml"));
}

// A few hundred kilobytes that unpack to half a gigabyte, in a header section and in a body.
TEST_F(Archive, AFileThatUnpacksToVeryMuchNeedsLittleMemory) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "sanitizers keep memory of their own for each allocation";
#endif
    std::string const much(std::size_t{256} << 20, 'x');
    auto const file = archive(
        {"zip"}, {{"header.eml", "X: " + much}, {"body.eml", spam() + much}, {"last", ham()}});
    auto const result = scan({file});
    EXPECT_EQ(result.m_status, 65);
    EXPECT_EQ(summary(result), (Arguments{file + "/body.eml spam", file + "/last ham"}));
    EXPECT_EQ(result.m_errors, "qvscan: " + file +
                                   "/header.eml: its header section is longer than "
                                   "max-header-bytes, which is 1048576\n");
    EXPECT_LT(peakKilobytes(file, "/last", "1"), 128L << 10);
}

TEST_F(Archive, MemoryDoesNotDependOnTheNumberOfFiles) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "sanitizers keep memory of their own for each allocation";
#endif
    auto const message = ham() + std::string(16384, 'x');
    auto const peak = [this, &message](int count) {
        Files files;
        for (int i = 0; i < count; ++i) {
            files.push_back({std::to_string(i) + ".eml", message});
        }
        auto const file = archive({"ustar"}, files);
        return peakKilobytes(file, "/" + files.back().m_name, "1");
    };
    auto const few = peak(500);
    auto const many = peak(5000); // 80 MB
    EXPECT_LT(many, few + few / 3) << few << " kB, then " << many << " kB";
}

} // namespace

} // namespace Quorvane::Testing
