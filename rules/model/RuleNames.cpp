// SPDX-License-Identifier: Apache-2.0
#include "rules/model/RuleNames.h"

#include "rules/format/RuleTests.h"

#include <algorithm>
#include <charconv>
#include <glib.h>
#include <optional>
#include <utility>

namespace Quorvane::Rules {

namespace {

constexpr std::string_view firstLine = "Names of Quorvane Deep Header rules, format 1";
constexpr std::string_view comment =
    "# For people: verdicts do not depend on this file. \"qvrules compile\" writes it.\n";

constexpr std::string_view nameWord = "name";
constexpr std::string_view sentenceWord = "because";
// In the order of RuleKey::Kind.
constexpr std::string_view kindWords[] = {"decide", "adjust", "node"};

std::string_view s_kindWord(RuleKey::Kind kind) {
    return kindWords[static_cast<std::size_t>(kind)];
}

bool s_isNameCharacter(char c) {
    return c >= ' ' && c <= '~' && std::string_view("\"\\;=").find(c) == std::string_view::npos;
}

bool s_hasBlankAtAnEnd(std::string_view text) {
    return text.front() == ' ' || text.back() == ' ';
}

bool s_isVisible(gunichar character) {
    switch (g_unichar_type(character)) {
    case G_UNICODE_CONTROL:
    case G_UNICODE_FORMAT: // all that change the direction are among them
    case G_UNICODE_LINE_SEPARATOR:
    case G_UNICODE_PARAGRAPH_SEPARATOR:
        return false;
    default:
        return true;
    }
}

// REQUIRES: UTF-8.
bool s_isVisible(std::string_view text) {
    for (auto const* at = text.data(); at != text.data() + text.size(); at = g_utf8_next_char(at)) {
        if (!s_isVisible(g_utf8_get_char(at))) {
            return false;
        }
    }
    return true;
}

std::string s_tooLong(std::size_t most, std::size_t length) {
    return "has at most " + std::to_string(most) + " characters; this one has " +
           std::to_string(length);
}

// --- reading the file ---

std::string_view s_trimmed(std::string_view line) {
    auto const begin = line.find_first_not_of(" \t\r");
    if (begin == std::string_view::npos) {
        return {};
    }
    return line.substr(begin, line.find_last_not_of(" \t\r") - begin + 1);
}

// What stands before the first blank of a trimmed line, and what after it.
std::pair<std::string_view, std::string_view> s_wordAndRest(std::string_view line) {
    auto const end = std::min(line.find_first_of(" \t"), line.size());
    return {line.substr(0, end), s_trimmed(line.substr(end))};
}

std::optional<std::int32_t> s_number(std::string_view text) {
    std::int32_t number = 0;
    auto const* const end = text.data() + text.size();
    auto const [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

std::optional<std::int32_t> s_code(RuleKey::Kind kind, std::string_view text) {
    bool const isLetter = kind == RuleKey::Kind::adjust && text.size() == 3 &&
                          text.front() == '\'' && text.back() == '\'' &&
                          isVisibleReason(static_cast<unsigned char>(text[1]));
    return isLetter ? std::optional<std::int32_t>(text[1]) : s_number(text);
}

class NamesReader {
  public:
    NamesRead read(std::string_view text) {
        while (m_read.m_problem.empty() && !text.empty()) {
            auto const end = std::min(text.find('\n'), text.size());
            ++m_line;
            line(s_trimmed(text.substr(0, end)));
            text.remove_prefix(std::min(end + 1, text.size()));
        }
        finishRule();
        if (m_line == 0) {
            fail("the file is empty");
        }
        if (!m_read.m_problem.empty()) {
            m_read.m_names.clear();
        }
        return std::move(m_read);
    }

  private:
    void line(std::string_view text) {
        if (m_line == 1) {
            if (text != firstLine) {
                fail("this is no file of rule names of format 1");
            }
            return;
        }
        if (text.empty() || text.front() == '#') {
            return;
        }
        auto const [word, rest] = s_wordAndRest(text);
        if (word == nameWord) {
            take(&RuleName::m_name, rest, nameProblem(rest));
        } else if (word == sentenceWord) {
            take(&RuleName::m_sentence, rest, sentenceProblem(rest));
        } else {
            beginRule(word, rest);
        }
    }

    void beginRule(std::string_view word, std::string_view rest) {
        finishRule();
        auto const* const known = std::find(std::begin(kindWords), std::end(kindWords), word);
        if (known == std::end(kindWords)) {
            fail("decide, adjust, node, name or because is expected");
            return;
        }
        auto const kind = static_cast<RuleKey::Kind>(known - std::begin(kindWords));
        auto const number = s_code(kind, rest);
        if (!number) {
            fail("the number of a rule or node is expected, or the letter of an adjusting rule");
            return;
        }
        auto const [place, isNew] = m_read.m_names.try_emplace({kind, *number});
        if (!isNew) {
            fail(keyText(place->first) + " is named twice");
        }
        m_rule = &*place;
    }

    void finishRule() {
        if (m_rule != nullptr && m_rule->second.m_name.empty()) {
            fail(keyText(m_rule->first) + " has no name");
        }
    }

    void take(std::string RuleName::*part, std::string_view text, std::string const& problem) {
        if (m_rule == nullptr) {
            fail("a line with decide, adjust or node is expected before it");
        } else if (!(m_rule->second.*part).empty()) {
            fail("this is said twice of " + keyText(m_rule->first));
        } else if (!problem.empty()) {
            fail(problem);
        } else {
            m_rule->second.*part = text;
        }
    }

    void fail(std::string const& problem) {
        if (m_read.m_problem.empty()) {
            m_read.m_problem = "line " + std::to_string(std::max(m_line, 1)) + ": " + problem;
        }
    }

    int m_line = 0;
    RuleNames::value_type* m_rule = nullptr; // the last one; null: none yet
    NamesRead m_read;
};

} // namespace

std::string nameProblem(std::string_view name) {
    if (name.empty()) {
        return "a name cannot be empty";
    }
    if (!std::all_of(name.begin(), name.end(), s_isNameCharacter)) {
        return "a name takes printable ASCII characters only, and none of \" \\ ; =";
    }
    if (name.size() > maxNameLength) {
        return "a name " + s_tooLong(maxNameLength, name.size());
    }
    return s_hasBlankAtAnEnd(name) ? "a name does not begin or end with a blank" : "";
}

std::string sentenceProblem(std::string_view sentence) {
    if (sentence.empty()) {
        return "a sentence cannot be empty";
    }
    if (g_utf8_validate_len(sentence.data(), sentence.size(), nullptr) == 0) {
        return "a sentence is text in UTF-8";
    }
    if (!s_isVisible(sentence)) {
        return "a sentence is one line without control characters and invisible ones";
    }
    auto const length = static_cast<std::size_t>(
        g_utf8_strlen(sentence.data(), static_cast<gssize>(sentence.size())));
    if (length > maxSentenceLength) {
        return "a sentence " + s_tooLong(maxSentenceLength, length);
    }
    return s_hasBlankAtAnEnd(sentence) ? "a sentence does not begin or end with a blank" : "";
}

std::string codeText(RuleKey::Kind kind, std::int32_t code) {
    bool const isLetter = kind == RuleKey::Kind::adjust && code > ' ' && code <= '~';
    return isLetter ? std::string("'") + static_cast<char>(code) + '\'' : std::to_string(code);
}

std::string keyText(RuleKey const& key) {
    return std::string(s_kindWord(key.m_kind)) + ' ' + codeText(key.m_kind, key.m_number);
}

std::string keyWords(RuleKey const& key) {
    return (key.m_kind == RuleKey::Kind::node ? "node " : "elite rule ") +
           codeText(key.m_kind, key.m_number);
}

Bytes namesText(RuleNames const& names) {
    auto text = std::string(firstLine) + '\n' + std::string(comment);
    for (auto const& [key, name] : names) {
        text += '\n' + keyText(key) + "\n    " + std::string(nameWord) + ' ' + name.m_name + '\n';
        if (!name.m_sentence.empty()) {
            text += "    " + std::string(sentenceWord) + ' ' + name.m_sentence + '\n';
        }
    }
    return text;
}

NamesRead readNames(std::string_view text) {
    return NamesReader().read(text);
}

NamesRead readNames(SpareFile const& file) {
    return file.m_content ? readNames(*file.m_content) : NamesRead{{}, file.m_problem};
}

} // namespace Quorvane::Rules
