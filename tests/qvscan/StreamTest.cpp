// SPDX-License-Identifier: Apache-2.0
// Long work: memory, order, signals, readers that go away, disks that are full.
#include "qvscan/ScanFixture.h"
#include "support/ChildProcess.h"

#include <csignal>
#include <cstdlib>

namespace Quorvane::Testing {

namespace {

constexpr char separator[] = "From x@example.invalid Mon Jan  1 00:00:00 2024\n";

class Stream : public ScanTest {
  protected:
    // An mbox of `count` messages, spam, ham and undecided in turn.
    std::string mbox(int count) const {
        std::string text;
        for (int i = 0; i < count; ++i) {
            text += separator + (i % 3 == 0 ? spam() : i % 3 == 1 ? ham() : none()) + "\n";
        }
        return m_folder.write("box" + std::to_string(count), text);
    }

    Arguments arguments(Arguments const& more) const {
        Arguments all{"--root", root(), "--dns", "off", "--format", "json"};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }
};

TEST_F(Stream, RecordsComeInOrderWhateverTheThreads) {
    auto const box = mbox(5000);
    auto const found = records(scan({"--jobs", "8", box}));
    ASSERT_EQ(found.size(), 5000U);
    char const* const verdicts[] = {"spam", "ham", "none"};
    for (std::size_t i = 0; i < found.size(); ++i) {
        ASSERT_EQ(found[i]["source"], box + ":" + std::to_string(i + 1));
        ASSERT_EQ(found[i]["verdict"], verdicts[i % 3]);
    }
}

TEST_F(Stream, MemoryStaysFlat) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "sanitizers keep memory of their own for each allocation";
#endif
    auto const peak = [this](int count) {
        ChildProcess child(QV_SCAN_PROGRAM, arguments({"--jobs", "4", mbox(count)}));
        child.readAll();
        EXPECT_EQ(child.wait(), 1);
        return child.peakKilobytes();
    };
    auto const small = peak(2000);
    auto const large = peak(100000);
    // Fifty times the mail in, at most, a third more memory: buffers that fill up.
    EXPECT_LT(large, small + small / 3) << small << " kB, then " << large << " kB";
}

TEST_F(Stream, AReaderThatGoesAwayEndsItQuietly) {
    ChildProcess child(QV_SCAN_PROGRAM, arguments({"--explain", mbox(5000)}));
    EXPECT_FALSE(child.readSome().empty());
    child.closeOutput();
    auto const errors = child.readErrors();
    EXPECT_EQ(errors, "");
    EXPECT_EQ(child.wait(), 1);
}

TEST_F(Stream, AFullDiskIsAnError) {
    auto const command = std::string(QV_SCAN_PROGRAM) + " --root " + root() +
                         " --dns off --format json " + mbox(3) + " > /dev/full";
    auto const result = runProgram("/bin/sh", {"-c", command});
    EXPECT_EQ(result.m_status, 73);
    EXPECT_EQ(result.m_errors, "qvscan: cannot write: No space left on device\n");
}

// The first message is complete once the separator of the second is there; its record comes while
// the input is still open, and a signal then ends the wait for more.
TEST_F(Stream, ASignalEndsItWithWhatWasDoneWrittenDown) {
    for (int const number : {SIGINT, SIGTERM}) {
        ChildProcess child(QV_SCAN_PROGRAM, arguments({}));
        child.write(separator + spam() + "\n" + separator + ham());
        auto const record = Json::parse(child.readLine());
        EXPECT_EQ(record["source"], "-:1");
        child.signal(number);
        EXPECT_EQ(child.wait(), 128 + number);
        EXPECT_EQ(child.readErrors(), "");
    }
}

TEST_F(Stream, APipeThatNobodyWritesToCanBeInterrupted) {
    auto const pipe = m_folder.path("pipe");
    ASSERT_EQ(std::system(("mkfifo " + pipe).c_str()), 0);
    auto const good = m_folder.write("good.eml", ham());
    ChildProcess child(QV_SCAN_PROGRAM, arguments({good, pipe}));
    EXPECT_EQ(Json::parse(child.readLine())["verdict"], "ham");
    child.signal(SIGINT);
    EXPECT_EQ(child.wait(), 130);
}

TEST_F(Stream, ProgressIsSilentWhereNobodyAskedForIt) {
    EXPECT_EQ(scan({mbox(3000)}).m_errors, "");
    EXPECT_EQ(scan({"--no-progress", mbox(3)}).m_errors, "");
}

TEST_F(Stream, ProgressThatWasAskedForIsLinesWhereNoTerminalIs) {
    ChildProcess child(QV_SCAN_PROGRAM, arguments({"--progress"}));
    child.write(separator + spam() + "\n" + separator + ham());
    EXPECT_EQ(Json::parse(child.readLine())["source"], "-:1");
    auto const line = child.readErrorLine();
    EXPECT_EQ(line.find("qvscan: 1 messages  "), 0U) << line;
    EXPECT_EQ(line.find('%'), std::string::npos) << "nobody knows the end of a pipe: " << line;
}

} // namespace

} // namespace Quorvane::Testing
