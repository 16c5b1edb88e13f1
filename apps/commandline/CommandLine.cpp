// SPDX-License-Identifier: Apache-2.0
#include "apps/commandline/CommandLine.h"

#include "apps/commandline/ProgramError.h"
#include "apps/commandline/ValueNames.h"
#include "rules/language/Nearest.h"

#include <algorithm>
#include <boost/algorithm/string/join.hpp>
#include <optional>
#include <utility>

namespace Quorvane {

namespace {

using Texts = CommandLine::Texts;

// "-:2" and "-/x" are parts of standard input.
bool s_looksLikeOption(std::string const& word) {
    return word.size() > 1 && word[0] == '-' && word[1] != ':' && word[1] != '/';
}

std::string s_label(CommandRow const& command, OptionRow const& row) {
    auto const& arguments = command.m_arguments;
    bool const isArgument =
        std::any_of(arguments.begin(), arguments.end(),
                    [&row](OptionRow const& one) { return one.m_name == row.m_name; });
    return isArgument ? std::string(row.m_name) : row.dashed();
}

// "unknown option --frce; did you mean --force?": `word` is what was written, `start` stands before
// the names of the rows.
template<typename Row>
std::string s_unknown(std::string const& what, std::string const& word, std::string const& start,
                      std::vector<Row> const& rows) {
    Texts known;
    for (auto const& row : rows) {
        known.push_back(start + std::string(row.m_name));
    }
    auto const nearest = std::string(Rules::nearestWord(word, {known.begin(), known.end()}));
    return "unknown " + what + (nearest.empty() ? "" : "; did you mean " + nearest + "?");
}

class Reader {
  public:
    Reader(CommandRow const& command, Texts words)
        : m_command(command), m_words(std::move(words)), m_line(command) {}

    CommandLine read() {
        while (m_at < m_words.size()) {
            readWord(m_words[m_at++]);
        }
        takeArguments();
        if (!m_line.has(helpRow.m_name) && !m_line.has(versionRow.m_name)) {
            requireAll(m_command.m_arguments);
            requireAll(m_command.m_options);
        }
        return std::move(m_line);
    }

  private:
    void readWord(std::string const& word) {
        if (m_areArguments || !s_looksLikeOption(word)) {
            m_arguments.push_back(word);
        } else if (word == "--") {
            m_areArguments = true;
        } else {
            readOption(word);
        }
    }

    void readOption(std::string const& word) {
        bool const isLong = word[1] == '-';
        auto const end = isLong ? std::min(word.find('='), word.size()) : 2;
        auto const* const row = find(word.substr(0, end));
        if (row == nullptr) {
            auto const name = word.substr(0, end);
            throw UsageError(s_unknown("option " + name, name, "--", m_command.m_options));
        }
        bool const hasValue = end < word.size();
        if (row->isFlag() && hasValue) {
            throw UsageError(row->dashed() + " takes no value");
        }
        if (hasValue) {
            m_line.add(*row, word.substr(end + (isLong ? 1 : 0)));
        } else {
            readValues(*row);
        }
    }

    void readValues(OptionRow const& row) {
        bool const isNeeded = !row.isFlag() && !row.isValueOptional();
        if (isNeeded && !isValue(true)) {
            throw UsageError(row.dashed() + " needs a value: " + std::string(row.m_valueName));
        }
        if (row.isFlag() || row.isValueAttached() || !isValue(isNeeded)) {
            m_line.add(row, "");
            return;
        }
        do {
            m_line.add(row, m_words[m_at++]);
        } while (row.is(Takes::several) && isValue(false));
    }

    // Whether the next word is a value. A required value may look like an option, such as -1.
    bool isValue(bool isNeeded) const {
        if (m_at == m_words.size()) {
            return false;
        }
        auto const& word = m_words[m_at];
        return !s_looksLikeOption(word) || (isNeeded && word != "--" && find(word) == nullptr);
    }

    void takeArguments() {
        auto const& rows = m_command.m_arguments;
        for (std::size_t i = 0; i < m_arguments.size(); ++i) {
            auto const last = rows.size() - 1;
            if (i >= rows.size() && (rows.empty() || !rows[last].is(Takes::repeatable))) {
                throw UsageError("unexpected argument \"" + m_arguments[i] + '"');
            }
            m_line.add(rows[std::min(i, last)], m_arguments[i]);
        }
    }

    void requireAll(std::vector<OptionRow> const& rows) const {
        for (auto const& row : rows) {
            if (row.is(Takes::required) && !m_line.has(row.m_name)) {
                throw UsageError(s_label(m_command, row) + " is missing");
            }
        }
    }

    // "--name" or "-n"; null when there is none.
    OptionRow const* find(std::string const& word) const {
        auto const& rows = m_command.m_options;
        auto const found = std::find_if(rows.begin(), rows.end(), [&word](OptionRow const& row) {
            return row.dashed() == word ||
                   (row.m_letter != '\0' && word == std::string{'-', row.m_letter});
        });
        return found == rows.end() ? nullptr : &*found;
    }

    CommandRow const& m_command;
    Texts m_words;
    std::size_t m_at = 0;
    Texts m_arguments;
    bool m_areArguments = false; // all words from here on
    CommandLine m_line;
};

} // namespace

std::string CommandLine::text(std::string_view name, std::string const& otherwise) const {
    auto const found = m_given.find(name);
    return found == m_given.end() ? otherwise : found->second.back();
}

CommandLine::Texts CommandLine::texts(std::string_view name) const {
    auto const found = m_given.find(name);
    return found == m_given.end() ? Texts() : found->second;
}

void CommandLine::add(OptionRow const& row, std::string const& text) {
    auto const literals = literalsOf(row.m_valueName);
    auto const isWord = !literals.empty() && literals == alternativesOf(row.m_valueName);
    bool const isLeftOut = row.isValueOptional() && text.empty();
    bool const isRead = row.isFlag() || isLeftOut || row.is(Takes::anyText);
    // Probably an unset variable of a script; it must not mean the folder that hosts read.
    if (!isRead && text.empty()) {
        throw UsageError(s_label(*m_command, row) + ": the value is empty");
    }
    if (!isRead && isWord && std::find(literals.begin(), literals.end(), text) == literals.end()) {
        throw UsageError(s_label(*m_command, row) + ": \"" + text + "\" is not one of " +
                         boost::algorithm::join(literals, "|") +
                         Rules::didYouMean(text, {literals.begin(), literals.end()}));
    }
    auto& texts = m_given[std::string(row.m_name)];
    if (!row.is(Takes::repeatable)) {
        texts.clear();
    }
    texts.push_back(text);
}

CommandLine parseCommandLine(ProgramTable const& program, std::vector<std::string> const& words) {
    auto const& commands = program.m_commands;
    if (commands.empty() || (!words.empty() && s_looksLikeOption(words[0]))) {
        return Reader(program.m_own, words).read();
    }
    if (words.empty()) {
        throw UsageError("a command is missing");
    }
    auto const found = std::find_if(commands.begin(), commands.end(),
                                    [&words](auto const& row) { return row.m_name == words[0]; });
    if (found == commands.end()) {
        throw UsageError(s_unknown("command \"" + words[0] + '"', words[0], "", commands));
    }
    return Reader(*found, {words.begin() + 1, words.end()}).read();
}

} // namespace Quorvane
