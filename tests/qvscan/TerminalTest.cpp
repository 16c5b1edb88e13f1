// SPDX-License-Identifier: Apache-2.0
// What a person sees: qvscan in a real terminal, played by tmux.
#include "support/Terminal.h"
#include "qvscan/ScanFixture.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string_view>
#include <sys/stat.h>

namespace Quorvane::Testing {

namespace {

class TerminalScan : public ScanTest {
  protected:
    // qvscan with the fixture's rules.
    std::string program() const {
        return std::string(QV_SCAN_PROGRAM) + " --root " + root() + " --dns off ";
    }

    std::string mbox() const {
        return m_folder.write("box", separator + spam() + "\n" + separator + ham() + "\n" +
                                         separator + none());
    }

    std::string pipe() const {
        auto path = m_folder.path("pipe");
        EXPECT_EQ(::mkfifo(path.c_str(), 0600), 0);
        return path;
    }

    // A program that shows what a pager gets, in the folder of that name.
    std::string pager(std::string const& name) const {
        auto path = m_folder.write("pagers/" + name,
                                   "#!/bin/sh\necho \"LESS $LESS\"; sed 's/^/paged: /'\n");
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return path;
    }

    Terminal m_terminal{m_folder};
};

TEST_F(TerminalScan, ShowsAlignedColouredText) {
    auto const box = mbox();
    auto const text = m_terminal.screen(program() + "--no-summary " + box);
    EXPECT_NE(text.find("\x1B[31mspam"), std::string::npos) << text;
    EXPECT_NE(text.find("\x1B[32mham"), std::string::npos) << text;
    auto plain = plainText(text);
    EXPECT_EQ(plain.find("verdict      rule "), 0U) << plain;
    auto const line = [](std::string const& verdict, char rule) {
        return "\n" + verdict + "    " + rule + std::string(20, ' ');
    };
    EXPECT_NE(plain.find(line("spam 99 %", '3')), std::string::npos) << plain;
    EXPECT_NE(plain.find(line("ham 2 %  ", '4')), std::string::npos) << plain;
    EXPECT_NE(plain.find(line("none 50 %", '5')), std::string::npos) << plain;
    std::erase(plain, '\n');
    EXPECT_NE(plain.find("  2024-01-01 10:00  " + box + ":3status 1"), std::string::npos) << plain;
}

// The terminal has 120 columns.
TEST_F(TerminalScan, ColumnsAreFittedIntoItAndTheSourceIsNeverCut) {
    auto const message =
        m_folder.write("m.eml", hop("a.example", std::string(150, 'r') + ".example", "192.0.2.7") +
                                    "From: a@" + std::string(60, 's') + ".example\n\n");
    auto const shown =
        plainText(m_terminal.screen("cd " + m_folder.path().string() + "; " + program() + "m.eml"));
    auto const line = shown.substr(0, shown.find("m.eml\n") + 5);
    EXPECT_NE(line.find("rrr...  sss"), std::string::npos) << shown;
    EXPECT_NE(line.find("sss...  2024-01-01 10:00  m.eml"), std::string::npos) << shown;
    EXPECT_LE(line.size() - line.rfind('\n') - 1, 120U) << shown;
    auto const folder = m_folder.path().string() + "/" + std::string(130, 'f');
    auto const name = folder + "/m.eml";
    m_terminal.screen("mkdir " + folder + "; cp " + message + " " + name);
    auto wrapped = plainText(m_terminal.screen(program() + name));
    std::erase(wrapped, '\n');
    EXPECT_NE(wrapped.find(std::string(130, 'f') + "/m.eml"), std::string::npos) << wrapped;
}

TEST_F(TerminalScan, NoColorMeansNoColour) {
    auto const text = m_terminal.screen("NO_COLOR=1 " + program() + mbox());
    EXPECT_EQ(text.find('\x1B'), std::string::npos) << text;
    EXPECT_NE(text.find("spam 99 %"), std::string::npos) << text;
    EXPECT_NE(m_terminal.screen("NO_COLOR= " + program() + mbox()).find("\x1B[31mspam"),
              std::string::npos);
}

TEST_F(TerminalScan, ATerminalWithoutColoursGetsNone) {
    auto const text = m_terminal.screen("TERM=dumb " + program() + mbox());
    EXPECT_EQ(text.find('\x1B'), std::string::npos) << text;
    EXPECT_NE(text.find("spam 99 %"), std::string::npos) << text;
    EXPECT_NE(m_terminal.screen("TERM=dumb " + program() + "--color always " + mbox())
                  .find("\x1B[31mspam"),
              std::string::npos);
}

TEST_F(TerminalScan, TheEndOfATypedMessageIsTypedOnce) {
    m_terminal.start(program());
    m_terminal.type({"From: a@b.example", "Enter", "C-d"});
    EXPECT_NE(plainText(m_terminal.finish()).find("none         -"), std::string::npos);
}

TEST_F(TerminalScan, ItSaysThatItWaitsForAMessage) {
    m_terminal.start(program());
    m_terminal.captureWith("qvscan: waiting for a message on standard input; Ctrl-D ends it");
    m_terminal.type({"From: a@b.example", "Enter", "C-d"});
    m_terminal.finish();
    // Whoever names an input, or pipes one in, knows where it comes from.
    EXPECT_EQ(plainText(m_terminal.screen(program() + mbox())).find("waiting"), std::string::npos);
    EXPECT_EQ(plainText(m_terminal.screen("cat " + mbox() + " | " + program())).find("waiting"),
              std::string::npos);
}

TEST_F(TerminalScan, FormatAskedForIsTheFormat) {
    EXPECT_NE(m_terminal.screen(program() + "--format json " + mbox()).find("{\"source\":"),
              std::string::npos);
}

// The terminal's driver turns the key into a signal. The program has shown its first records and
// waits for the rest of its input, a pipe that nobody writes to.
TEST_F(TerminalScan, ControlCEndsIt) {
    m_terminal.start(program() + mbox() + " " + pipe());
    m_terminal.captureWith(":3\n");
    m_terminal.type({"C-c"});
    EXPECT_NE(plainText(m_terminal.finish()).find("status 130"), std::string::npos);
}

TEST_F(TerminalScan, ProgressIsDrawnWhileWorkIsLongAndTakenAway) {
    m_terminal.start(program() + "--no-summary " + mbox() + " " + pipe() + " > /dev/null");
    m_terminal.captureWith("3 messages  ");
    m_terminal.type({"C-c"});
    EXPECT_EQ(plainText(m_terminal.finish()).find("messages"), std::string::npos);
}

TEST_F(TerminalScan, ColorIsWhatIsAskedFor) {
    constexpr char red[] = "\x1B[31mspam";
    EXPECT_EQ(m_terminal.screen(program() + "--color never " + mbox()).find('\x1B'),
              std::string::npos);
    EXPECT_NE(m_terminal.screen("NO_COLOR=1 " + program() + "--color always " + mbox()).find(red),
              std::string::npos);
    auto const text = [this](char const* colour) {
        return scan({"--format", "text", "--color", colour}, spam()).m_output;
    };
    EXPECT_NE(text("always").find(red), std::string::npos);
    EXPECT_EQ(text("auto").find('\x1B'), std::string::npos) << "there is no terminal";
    EXPECT_EQ(scan({"--format", "json", "--color", "always"}, spam()).m_output.find('\x1B'),
              std::string::npos);
}

TEST_F(TerminalScan, AnExplanationIsPaged) {
    auto const box = mbox();
    auto const own = m_terminal.screen("PAGER=" + pager("own") + " " + program() + "--explain " +
                                       box + ":1 " + m_folder.path("missing"));
    EXPECT_NE(plainText(own).find("paged: spam 99 %"), std::string::npos) << own;
    EXPECT_NE(own.find("\x1B[31mspam"), std::string::npos) << "colours as without a pager";
    EXPECT_NE(plainText(own).find("paged: qvscan: " + m_folder.path("missing")), std::string::npos)
        << own;
    EXPECT_NE(plainText(own).find("status 66"), std::string::npos) << own;
    // Without one of the person's own it is less, with options that suit.
    pager("less");
    auto const less = m_terminal.screen("env -u PAGER -u LESS PATH=" + m_folder.path("pagers") +
                                        ":$PATH " + program() + "--explain " + box + ":1");
    EXPECT_NE(plainText(less).find("LESS FRX\n"), std::string::npos) << less;
    EXPECT_NE(plainText(less).find("paged: spam 99 %"), std::string::npos) << less;
}

TEST_F(TerminalScan, OnlyExplanationsForPeopleArePaged) {
    auto const box = mbox();
    auto const own = "PAGER=" + pager("own") + " " + program();
    for (auto const& command :
         {own + box, own + "--explain --no-pager " + box, own + "--explain --format json " + box,
          own + "--explain " + box + " | cat", "PAGER= " + program() + "--explain " + box,
          "PAGER=cat " + program() + "--explain " + box}) {
        auto const text = plainText(m_terminal.screen(command));
        EXPECT_EQ(text.find("paged: "), std::string::npos) << command << '\n' << text;
        EXPECT_NE(text.find("spam"), std::string::npos) << command << '\n' << text;
    }
}

// Whoever has seen enough leaves the pager, and the program ends with it.
TEST_F(TerminalScan, APagerThatEndsEarlyEndsItQuietly) {
    std::string box;
    for (int i = 0; i < 2000; ++i) {
        box += separator + spam() + "\n";
    }
    auto const text = plainText(m_terminal.screen("PAGER='head -n 2' " + program() + "--explain " +
                                                  m_folder.write("many", box)));
    EXPECT_NE(text.find("status 1"), std::string::npos) << text;
    EXPECT_EQ(text.find("qvscan:"), std::string::npos) << text;
}

// A terminal cuts lines that are too long in the middle of a word.
TEST_F(TerminalScan, ExplanationsFitTheTerminalAndKeepTheirWords) {
    auto const words = [](std::string const& text) {
        std::istringstream stream(text.substr(text.find("Because:")));
        return Arguments(std::istream_iterator<std::string>(stream), {});
    };
    auto const box = mbox();
    Terminal narrow(m_folder, 60);
    auto const shown = plainText(narrow.screen(program() + "--explain --no-pager " + box + ":1"));
    auto const explanation = shown.substr(0, shown.find("status "));
    auto const wide = scan({"--format", "text", "--explain", box + ":1"}).m_output;
    EXPECT_EQ(words(explanation), words(wide)) << shown;
    EXPECT_GT(std::count(explanation.begin(), explanation.end(), '\n'),
              std::count(wide.begin(), wide.end(), '\n'));
}

// What the terminal got since the line was drawn: it is never taken away before it is drawn again.
TEST_F(TerminalScan, ProgressStaysWhileRecordsGoElsewhere) {
    auto const path = pipe();
    m_terminal.start(program() + "--no-summary " + mbox() + " " + path + " > /dev/null");
    std::ofstream more(path);
    m_terminal.captureWith("3 messages  ");
    auto const log = m_folder.path("log");
    m_terminal.record(log);
    more << separator << spam() << "\n" << separator << ham() << std::flush;
    m_terminal.captureWith("4 messages  ");
    m_terminal.record("");
    auto const drawn = m_folder.read("log");
    constexpr std::string_view clear = "\r\x1B[K";
    for (auto at = drawn.find(clear); at != std::string::npos; at = drawn.find(clear, at + 1)) {
        EXPECT_EQ(drawn.substr(at + clear.size(), 1).find_first_not_of("0123456789"),
                  std::string::npos)
            << drawn;
    }
    m_terminal.type({"C-c"});
    m_terminal.finish();
}

TEST_F(TerminalScan, ARunOfSeveralMessagesEndsWithASummary) {
    auto const several = plainText(m_terminal.screen(program() + mbox()));
    EXPECT_NE(several.find("3 messages: 1 spam, 1 ham, 1 without a verdict, 0 not judged\n"),
              std::string::npos)
        << several;
    EXPECT_EQ(plainText(m_terminal.screen(program() + "--no-summary " + mbox())).find("3 messages"),
              std::string::npos);
    auto const one = plainText(m_terminal.screen(program() + m_folder.write("one", spam())));
    EXPECT_EQ(one.find("1 message"), std::string::npos) << one;
}

} // namespace

} // namespace Quorvane::Testing
