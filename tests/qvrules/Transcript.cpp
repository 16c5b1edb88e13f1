// SPDX-License-Identifier: Apache-2.0
#include "Transcript.h"

#include "support/Program.h"
#include "support/TemporaryFolder.h"

#include <sstream>

namespace Quorvane::Testing {

namespace {

constexpr char commandMark[] = "$ ";
constexpr char fileMark[] = "<<< ";
constexpr char fileEnd[] = ">>>";

bool s_startsWith(std::string const& line, std::string const& mark) {
    return line.compare(0, mark.size(), mark) == 0;
}

std::string s_marked(std::string const& text, std::string const& mark) {
    std::string marked;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        marked += mark + line;
        marked.erase(marked.find_last_not_of(' ') + 1); // no blanks at line ends
        marked += '\n';
    }
    return marked;
}

class Replay {
  public:
    Replay(std::string const& transcript, std::string programs)
        : m_lines(transcript), m_programs(std::move(programs)) {}

    std::string run() {
        for (std::string line; std::getline(m_lines, line);) {
            if (s_startsWith(line, fileMark)) {
                file(line);
            } else if (s_startsWith(line, commandMark)) {
                command(line);
            } else if (line.empty() || line[0] == '#') {
                m_text += line + '\n';
            } // the rest is what commands printed when it was recorded
        }
        return m_text;
    }

  private:
    void file(std::string const& head) {
        m_text += head + '\n';
        std::string content;
        std::string line;
        while (std::getline(m_lines, line) && line != fileEnd) {
            content += line + '\n';
        }
        m_text += content + fileEnd + '\n';
        m_folder.write(head.substr(std::string(fileMark).size()), content);
    }

    void command(std::string const& line) {
        auto const script = "cd '" + m_folder.path().string() + "' || exit\nPATH='" + m_programs +
                            "':$PATH\n" + line.substr(std::string(commandMark).size());
        auto const result = runProgram("/bin/sh", {"-c", script});
        m_text += line + '\n' + s_marked(result.m_output, "| ") + s_marked(result.m_errors, "2| ");
        if (result.m_status != 0) {
            m_text += "[status " + std::to_string(result.m_status) + "]\n";
        }
    }

    std::istringstream m_lines;
    std::string m_programs;
    TemporaryFolder m_folder;
    std::string m_text;
};

} // namespace

std::string replay(std::string const& transcript, std::string const& programs) {
    return Replay(transcript, programs).run();
}

} // namespace Quorvane::Testing
