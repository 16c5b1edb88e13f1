// SPDX-License-Identifier: Apache-2.0
// Packed files that ask for more memory than a message is worth.
#include "qvscan/ScanFixture.h"
#include "support/ArchiveWriter.h"

#include <algorithm>
#include <cstdio>
#include <gmock/gmock.h>
#include <lzma.h>

namespace Quorvane::Testing {

namespace {

class UnpackingLimit : public ScanTest {
  protected:
    // What `command` makes of its standard input.
    static std::string packed(std::string const& command, std::string const& text) {
        auto const result = runProgram("/bin/sh", {"-c", command}, text);
        EXPECT_EQ(result.m_status, 0);
        return result.m_output;
    }

    // What is said of a file with these bytes, which is not judged, while the next input is.
    std::string refusal(std::string const& bytes) const {
        auto const file = m_folder.write("hostile", bytes);
        auto const result = scan({file, "-"}, ham());
        EXPECT_EQ(result.m_status, 66);
        EXPECT_EQ(summary(result), Arguments{"- ham"});
        return result.m_errors;
    }
};

// Sets the dictionary of the first block of an .xz file (the .xz file format 1.1.0, section 3.1).
std::string withDictionary(std::string xz, char size) {
    constexpr std::size_t block = 12; // after the stream header
    auto const length = (static_cast<unsigned char>(xz.at(block)) + 1U) * 4U;
    xz.at(block + 4) = size;
    auto const* const header = reinterpret_cast<std::uint8_t const*>(xz.data()) + block;
    auto const sum = lzma_crc32(header, length - 4, 0);
    for (std::size_t i = 0; i < 4; ++i) {
        xz.at(block + length - 4 + i) = static_cast<char>(sum >> (8 * i));
    }
    return xz;
}

TEST_F(UnpackingLimit, ADictionaryOf3GiBIsRefused) {
    auto const xz = packed("xz -c", spam());
    constexpr char dictionaryOf64MiB = 28; // as "xz -9" takes
    constexpr char dictionaryOf3GiB = 39;
    auto const largest = m_folder.write("largest", withDictionary(xz, dictionaryOf64MiB));
    EXPECT_EQ(summary(scan({largest})), Arguments{largest + " spam"});
    EXPECT_THAT(refusal(withDictionary(xz, dictionaryOf3GiB)),
                testing::HasSubstr("hostile: cannot be opened: unpacking it needs more than 128 "
                                   "MiB of memory; unpack it first"));
}

// RFC 8878, section 3.1.1.1.2.
TEST_F(UnpackingLimit, AWindowOf2GiBIsRefused) {
    auto zstd = packed("zstd -q -c", spam());
    constexpr std::size_t windowAt = 5;
    zstd.at(windowAt) = static_cast<char>((31 - 10) << 3);
    EXPECT_THAT(refusal(zstd), testing::HasSubstr("unpacking it needs more than 128 MiB"));
}

TEST_F(UnpackingLimit, WhatIsPackedTwiceIsRefused) {
    EXPECT_THAT(refusal(packed("gzip -c | zstd -q -c", spam())),
                testing::HasSubstr("it is packed twice; unpack it first"));
}

TEST_F(UnpackingLimit, AMethodOfZipWithoutLimitIsRefused) {
    auto zip = archiveOf({"zip", "", "zip:compression=store"}, {{"one.eml", spam()}});
    constexpr std::size_t methodAt = 8;
    constexpr char lzma = 14;
    zip.at(methodAt) = lzma;
    EXPECT_THAT(refusal(zip), testing::HasSubstr("a file in it is packed by a method that is not "
                                                 "read, ZIP 1.0 (lzma); pack it by deflation"));
}

// Makes the first entry of a ustar archive one of another type (POSIX pax, "ustar Interchange
// Format").
std::string withType(std::string tar, char type) {
    constexpr std::size_t sumAt = 148;
    constexpr std::size_t sumLength = 8;
    constexpr std::size_t typeAt = 156;
    constexpr std::size_t headLength = 512;
    tar.at(typeAt) = type;
    std::fill_n(tar.begin() + sumAt, sumLength, ' ');
    unsigned int sum = 0;
    for (std::size_t i = 0; i < headLength; ++i) {
        sum += static_cast<unsigned char>(tar.at(i));
    }
    std::array<char, sumLength> digits{};
    std::snprintf(digits.data(), digits.size(), "%06o", sum);
    std::copy(digits.begin(), digits.end(), tar.begin() + sumAt);
    return tar;
}

// "The GNU tar manual", section "PAX Format, Version 1.0".
TEST_F(UnpackingLimit, AMapOfTwoMillionHolesIsRefused) {
    std::string const sparse = "22 GNU.sparse.major=1\n"
                               "22 GNU.sparse.minor=0\n"
                               "30 GNU.sparse.name=sparse.eml\n"
                               "28 GNU.sparse.realsize=1000\n";
    constexpr std::size_t holes = 2'000'000;
    auto map = std::to_string(holes) + '\n';
    for (std::size_t i = 0; i < holes; ++i) {
        map += "0\n0\n";
    }
    auto const tar = archiveOf({"ustar"}, {{"head", sparse}, {"one.eml", map}});
    EXPECT_THAT(refusal(withType(tar, 'x')),
                testing::HasSubstr("damaged packed data: more than 6 MiB before the data"));
}

TEST_F(UnpackingLimit, WhatIsLeftOfAFileIsNoPartOfTheNextOne) {
    auto const file = m_folder.write(
        "long.tar",
        archiveOf({"ustar"}, {{".passed-over", std::string(8U << 20U, 'x')}, {"one.eml", spam()}}));
    EXPECT_EQ(summary(scan({file})), Arguments{file + "/one.eml spam"});
}

} // namespace

} // namespace Quorvane::Testing
