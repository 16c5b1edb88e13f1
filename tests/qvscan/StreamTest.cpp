// SPDX-License-Identifier: Apache-2.0
// Long work: memory, order, signals, readers that go away, disks that are full.
#include "qvscan/ScanFixture.h"
#include "support/ChildProcess.h"
#include "support/SilentDnsServer.h"

#include <csignal>
#include <cstdlib>

namespace Quorvane::Testing {

namespace {

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
        return peakKilobytes(mbox(count), ":" + std::to_string(count), "4");
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

// The machine has memory for most messages, not for one with a header section of 8 MiB.
TEST_F(Stream, AMessageTooLargeForTheMemoryIsNamedAndTheOthersAreJudged) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "sanitizers reserve more addresses than any machine has memory";
#endif
    std::string large;
    while (large.size() < (std::size_t{8} << 20)) {
        large += "X:\n";
    }
    auto const box = m_folder.write("box", separator + spam() + "\n" + separator + large + spam() +
                                               "\n" + separator + ham());
    auto command = "ulimit -v 250000; exec " + std::string(QV_SCAN_PROGRAM);
    for (auto const& word : arguments(
             {"--jobs", "2", "--max-headers", "10000000", "--max-header-bytes", "16000000", box})) {
        command += " " + word;
    }
    auto const result = runProgram("/bin/sh", {"-c", command});
    EXPECT_EQ(result.m_status, 65);
    EXPECT_EQ(summary(result), (Arguments{box + ":1 spam", box + ":3 ham"}));
    EXPECT_EQ(
        result.m_errors.find("qvscan: " + box + ":2: not enough memory for its header section"), 0U)
        << result.m_errors;
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

// The server never answers, and the look-ups may take ten minutes.
TEST_F(Stream, ASignalEndsAScanThatWaitsForDns) {
    SilentDnsServer server;
    auto const box = mbox(200);
    for (int const number : {SIGINT, SIGTERM}) {
        ChildProcess child(QV_SCAN_PROGRAM,
                           arguments({"--dns", server.address(), "--dns-timeout", "600", box}));
        server.takeQuestionsUntil("pc.example.net.");
        child.signal(number);
        EXPECT_EQ(child.wait(), 128 + number);
        EXPECT_EQ(child.readAll(), "") << "a verdict without the answers";
        EXPECT_EQ(child.readErrors(), "");
    }
}

// Nobody reads its output, so that it cannot write down what it has.
TEST_F(Stream, ASecondSignalEndsItWhateverItDoes) {
    ChildProcess child(QV_SCAN_PROGRAM, arguments({"--explain", mbox(5000)}));
    ASSERT_TRUE(child.fillOutput());
    child.signalUntilEnd(SIGINT);
    EXPECT_EQ(child.wait(), 130);
}

TEST_F(Stream, AnOutputThatDoesNotBlockLosesNothing) {
    ChildProcess child(QV_SCAN_PROGRAM, arguments({"--explain", mbox(500)}),
                       ChildProcess::Output::nonBlocking);
    ASSERT_TRUE(child.fillOutput());
    EXPECT_EQ(jsonLines(child.readAll()).size(), 500U);
    EXPECT_EQ(child.readErrors(), "");
    EXPECT_EQ(child.wait(), 1);
}

TEST_F(Stream, AClosedInputIs66AndAClosedOutput73) {
    auto const run = [this](std::string const& redirection) {
        auto command = std::string(QV_SCAN_PROGRAM);
        for (auto const& word : arguments({})) {
            command += " " + word;
        }
        return runProgram("/bin/sh", {"-c", command + " " + redirection});
    };
    auto const input = run("<&-");
    EXPECT_EQ(input.m_status, 66);
    EXPECT_EQ(input.m_errors, "qvscan: -: cannot be opened: Bad file descriptor\n");
    auto const output = run(mbox(3) + " >&-");
    EXPECT_EQ(output.m_status, 73);
    EXPECT_EQ(output.m_errors, "qvscan: cannot write: Bad file descriptor\n");
    // Its messages must not get into a file that it opens.
    auto const silent = run(mbox(3) + " " + m_folder.path("missing") + " 2>&-");
    EXPECT_EQ(silent.m_status, 66);
    EXPECT_EQ(records(silent).size(), 3U);
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

// Process substitution of a shell gives pipes.
TEST_F(Stream, SettingsMayComeFromPipes) {
    auto command = std::string(QV_SCAN_PROGRAM) + " --root " + root() + " --format json --explain" +
                   " --config <(echo 'spam-threshold = 0.5')" +
                   " --dns-data <(echo 'example.net. A 192.0.2.80')" +
                   " --dynamic-patterns <(echo '^mail')";
    auto const result = runProgram("/bin/bash", {"-c", command}, ham());
    auto const found = records(result);
    ASSERT_EQ(found.size(), 1U) << result.m_errors;
    EXPECT_EQ(found[0]["verdict"], "spam");
    EXPECT_EQ(found[0]["explain"]["values"]["first_reverse_dynamic"], "yes");
    EXPECT_EQ(found[0]["explain"]["values"]["envelope_domain_resolves"], "yes");
}

TEST_F(Stream, APipeOfSettingsThatNobodyWritesToCanBeInterrupted) {
    auto const pipe = m_folder.path("pipe");
    ASSERT_EQ(std::system(("mkfifo " + pipe).c_str()), 0);
    for (auto const* const option : {"--config", "--dns-data", "--dynamic-patterns"}) {
        ChildProcess child(QV_SCAN_PROGRAM, arguments({option, pipe}));
        child.signal(SIGINT);
        EXPECT_EQ(child.wait(), 130) << option;
    }
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
