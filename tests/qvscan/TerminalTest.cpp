// SPDX-License-Identifier: Apache-2.0
// What a person sees: qvscan in a real terminal, played by tmux.
#include "qvscan/ScanFixture.h"

#include <chrono>
#include <sys/stat.h>

namespace Quorvane::Testing {

namespace {

// Far longer than anything takes on a loaded machine.
constexpr std::chrono::seconds patience{120};

// The text of a screen without escape sequences.
std::string s_plain(std::string const& text) {
    std::string plain;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\x1B') {
            at = text.find('m', at);
        } else {
            plain += text[at];
        }
    }
    return plain;
}

class Terminal : public ScanTest {
  protected:
    ~Terminal() override { tmux({"kill-server"}); }

    // Runs a shell command in a terminal of 120 columns.
    void start(std::string const& command) {
        // A server of its own: one that was asked to end may still answer.
        ++m_runs;
        auto const script =
            m_folder.write("run.sh", "trap : INT; " + command + "; echo \"status $?\"; exec cat\n");
        tmux({"-f", "/dev/null", "new-session", "-d", "-x", "120", "-y", "40", "sh " + script});
    }

    // The screen with its escape sequences.
    std::string capture() const { return tmux({"capture-pane", "-p", "-e"}); }

    // The screen once it shows `text`; the test has failed when it never does.
    std::string captureWith(std::string const& text) const {
        auto const deadline = std::chrono::steady_clock::now() + patience;
        auto shown = capture();
        while (s_plain(shown).find(text) == std::string::npos) {
            if (std::chrono::steady_clock::now() > deadline) {
                ADD_FAILURE() << "the terminal never shows \"" << text << "\" but\n" << shown;
                break;
            }
            shown = capture();
        }
        return shown;
    }

    // Waits for the end of the command; the last screen.
    std::string finish() const {
        auto const shown = captureWith("status ");
        tmux({"kill-server"});
        return shown;
    }

    std::string screen(std::string const& command) {
        start(command);
        return finish();
    }

    std::string tmux(Arguments const& arguments) const {
        Arguments all{"-S", socket()};
        all.insert(all.end(), arguments.begin(), arguments.end());
        return runProgram(QV_TMUX_PROGRAM, all).m_output;
    }

    // qvscan with the fixture's rules.
    std::string program() const {
        return std::string(QV_SCAN_PROGRAM) + " --root " + root() + " --dns off ";
    }

    std::string mbox() const {
        constexpr char separator[] = "From x@example.invalid Mon Jan  1 00:00:00 2024\n";
        return m_folder.write("box", separator + spam() + "\n" + separator + ham() + "\n" +
                                         separator + none());
    }

    std::string pipe() const {
        auto path = m_folder.path("pipe");
        EXPECT_EQ(::mkfifo(path.c_str(), 0600), 0);
        return path;
    }

  private:
    std::string socket() const { return m_folder.path() / ("tmux" + std::to_string(m_runs)); }

    int m_runs = 0;
};

TEST_F(Terminal, ShowsAlignedColouredText) {
    auto const box = mbox();
    auto const text = screen(program() + box);
    EXPECT_NE(text.find("\x1B[31mspam"), std::string::npos) << text;
    EXPECT_NE(text.find("\x1B[32mham"), std::string::npos) << text;
    auto plain = s_plain(text);
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
TEST_F(Terminal, ColumnsAreFittedIntoItAndTheSourceIsNeverCut) {
    auto const message =
        m_folder.write("m.eml", hop("a.example", std::string(150, 'r') + ".example", "192.0.2.7") +
                                    "From: a@" + std::string(60, 's') + ".example\n\n");
    auto const shown =
        s_plain(screen("cd " + m_folder.path().string() + "; " + program() + "m.eml"));
    auto const line = shown.substr(0, shown.find("m.eml\n") + 5);
    EXPECT_NE(line.find("rrr...  sss"), std::string::npos) << shown;
    EXPECT_NE(line.find("sss...  2024-01-01 10:00  m.eml"), std::string::npos) << shown;
    EXPECT_LE(line.size() - line.rfind('\n') - 1, 120U) << shown;
    auto const folder = m_folder.path().string() + "/" + std::string(130, 'f');
    auto const name = folder + "/m.eml";
    screen("mkdir " + folder + "; cp " + message + " " + name);
    auto wrapped = s_plain(screen(program() + name));
    std::erase(wrapped, '\n');
    EXPECT_NE(wrapped.find(std::string(130, 'f') + "/m.eml"), std::string::npos) << wrapped;
}

TEST_F(Terminal, NoColorMeansNoColour) {
    auto const text = screen("NO_COLOR=1 " + program() + mbox());
    EXPECT_EQ(text.find('\x1B'), std::string::npos) << text;
    EXPECT_NE(text.find("spam 99 %"), std::string::npos) << text;
    EXPECT_NE(screen("NO_COLOR= " + program() + mbox()).find("\x1B[31mspam"), std::string::npos);
}

TEST_F(Terminal, TheEndOfATypedMessageIsTypedOnce) {
    start(program());
    tmux({"send-keys", "From: a@b.example", "Enter", "C-d"});
    EXPECT_NE(s_plain(finish()).find("none         -"), std::string::npos);
}

TEST_F(Terminal, ItSaysThatItWaitsForAMessage) {
    start(program());
    captureWith("qvscan: waiting for a message on standard input; Ctrl-D ends it");
    tmux({"send-keys", "From: a@b.example", "Enter", "C-d"});
    finish();
    // Whoever names an input, or pipes one in, knows where it comes from.
    EXPECT_EQ(s_plain(screen(program() + mbox())).find("waiting"), std::string::npos);
    EXPECT_EQ(s_plain(screen("cat " + mbox() + " | " + program())).find("waiting"),
              std::string::npos);
}

TEST_F(Terminal, FormatAskedForIsTheFormat) {
    EXPECT_NE(screen(program() + "--format json " + mbox()).find("{\"source\":"),
              std::string::npos);
}

// The terminal's driver turns the key into a signal. The program has shown its first records and
// waits for the rest of its input, a pipe that nobody writes to.
TEST_F(Terminal, ControlCEndsIt) {
    start(program() + mbox() + " " + pipe());
    captureWith(":3\n");
    tmux({"send-keys", "C-c"});
    EXPECT_NE(s_plain(finish()).find("status 130"), std::string::npos);
}

TEST_F(Terminal, ProgressIsDrawnWhileWorkIsLongAndTakenAway) {
    start(program() + mbox() + " " + pipe() + " > /dev/null");
    captureWith("3 messages  ");
    tmux({"send-keys", "C-c"});
    EXPECT_EQ(s_plain(finish()).find("messages"), std::string::npos);
}

} // namespace

} // namespace Quorvane::Testing
