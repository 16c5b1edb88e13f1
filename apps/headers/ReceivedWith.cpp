// SPDX-License-Identifier: Apache-2.0
#include "apps/headers/ReceivedWith.h"

#include <algorithm>
#include <glib.h>
#include <set>
#include <utility>
#include <vector>

namespace Quorvane {

namespace {

constexpr auto npos = std::string_view::npos;
constexpr std::size_t longestProtocol = 40;

struct Words {
    std::vector<std::string_view> m_list; // outside of comments
    std::string m_comments;               // lower-cased, each between "(" and ")"
};

bool s_isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// Comments may hold comments (RFC 5322 section 3.2.2); a text that ends in one ends it, too.
class WordReader {
  public:
    explicit WordReader(std::string_view text) : m_text(text) {}

    Words read() {
        for (std::size_t at = 0; at < m_text.size(); ++at) {
            take(at);
        }
        endWord(m_text.size());
        return std::move(m_words);
    }

  private:
    void take(std::size_t at) {
        char const c = m_text[at];
        if (c == '(') {
            endWord(at);
            ++m_depth;
        }
        if (m_depth > 0) {
            m_words.m_comments += s_isBlank(c) ? ' ' : g_ascii_tolower(c);
        } else if (s_isBlank(c)) {
            endWord(at);
        } else if (m_start == npos) {
            m_start = at;
        }
        if (c == ')' && m_depth > 0) {
            --m_depth;
        }
    }

    void endWord(std::size_t end) {
        if (m_start != npos) {
            m_words.m_list.push_back(m_text.substr(m_start, end - m_start));
            m_start = npos;
        }
    }

    std::string_view m_text;
    Words m_words;
    std::size_t m_depth = 0;
    std::size_t m_start = npos;
};

std::string s_lower(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), g_ascii_tolower);
    return lower;
}

// The words that begin the other parts of the header.
bool s_isKeyword(std::string_view word) {
    static std::set<std::string> const keywords{"by", "for", "from", "id", "tls", "via", "with"};
    return keywords.contains(s_lower(word));
}

std::string s_protocol(std::vector<std::string_view> const& words) {
    auto at = std::find_if(words.begin(), words.end(),
                           [](std::string_view word) { return s_lower(word) == "with"; });
    std::string protocol;
    while (at != words.end() && ++at != words.end() && !s_isKeyword(*at) &&
           protocol.size() + at->size() < longestProtocol) {
        protocol += (protocol.empty() ? "" : " ") + std::string(*at);
    }
    return protocol;
}

bool s_isEncrypted(std::string const& protocol) {
    static std::set<std::string> const known{
        "esmtps", "esmtpsa",   "lmtps",      "lmtpsa",    "smtps",
        "https",  "utf8smtps", "utf8smtpsa", "utf8lmtps", "utf8lmtpsa",
    };
    return known.contains(s_lower(protocol));
}

// "1.3" at the start of `text`, as in "v1.3 with cipher", "1_3)" and "v1:AES256-SHA"; empty for
// another text, such as the rest of a host name.
std::string s_version(std::string_view text) {
    bool const hasLetter = text.starts_with('v');
    text.remove_prefix(hasLetter ? 1 : 0);
    if (text.empty() || !g_ascii_isdigit(text[0])) {
        return {};
    }
    std::string version(1, text[0]);
    text.remove_prefix(1);
    bool const hasMinor =
        text.size() > 1 && (text[0] == '.' || text[0] == '_') && g_ascii_isdigit(text[1]);
    if (hasMinor) {
        version += std::string(".") + text[1];
        text.remove_prefix(2);
    }
    bool const isWhole = text.empty() || std::string_view(" ),:;").find(text[0]) != npos;
    return isWhole && (hasLetter || hasMinor) ? version : "";
}

// In comments: "(using TLSv1.3 with cipher ...)", "(version=TLS1_3, cipher=...)", "(TLS1.2:...)".
std::string s_tlsVersion(std::string_view comments) {
    constexpr std::string_view name = "tls";
    for (auto at = comments.find(name); at != npos; at = comments.find(name, at + 1)) {
        bool const isStart = at == 0 || std::string_view(" (=:").find(comments[at - 1]) != npos;
        auto version = isStart ? s_version(comments.substr(at + name.size())) : "";
        if (!version.empty()) {
            return version;
        }
    }
    return {};
}

} // namespace

// The date comes last, after a semicolon.
ReceivedWith receivedWith(std::string_view value) {
    auto const words = WordReader(value.substr(0, value.rfind(';'))).read();
    ReceivedWith with{s_protocol(words.m_list), {}};
    if (auto const version = s_tlsVersion(words.m_comments); !version.empty()) {
        with.m_tls = "TLS " + version;
    } else if (s_isEncrypted(with.m_protocol)) {
        with.m_tls = "TLS";
    }
    return with;
}

} // namespace Quorvane
