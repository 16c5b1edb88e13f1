// SPDX-License-Identifier: Apache-2.0
#include "platform/LogMessages.h"

#include <algorithm>
#include <iterator>

namespace Quorvane {

namespace {

constexpr LogMessage messages[] = {
    {50332195, LogLevel::error, "no engine is installed, so the message was not judged"},
    {50332196, LogLevel::error, "the scan failed, so the message was not judged"},
    {50332198, LogLevel::error, "the rules cannot be loaded, so no new engine was installed"},
    {50332199, LogLevel::error, "an engine cannot be built, so no new engine was installed"},
    {50332201, LogLevel::error, "the engine cannot be installed"},
    {LogId::started, LogLevel::information, "started"},
    {LogId::stopping, LogLevel::information, "stopping"},
    {LogId::reloaded, LogLevel::information, "settings and rules were reloaded"},
    {LogId::reloadRefused, LogLevel::error, "nothing was reloaded"},
    {LogId::rulesLoaded, LogLevel::information, "newer rules were loaded"},
    {LogId::rulesRefused, LogLevel::error, "newer rules cannot be loaded, the old ones stay"},
    {LogId::noRules, LogLevel::error, "no message is judged until there are rules"},
    {LogId::messageJudged, LogLevel::information, "message"},
    {LogId::messageFailed, LogLevel::error, "a message could not be handled"},
    {LogId::namesUnusable, LogLevel::warning, "rules are shown without names"},
};

constexpr std::string_view cutMark = "...";

std::string s_words(int id) {
    auto const* const message = findLogMessage(id);
    return message != nullptr ? message->m_words : "message " + std::to_string(id);
}

std::string s_printable(char c) {
    static constexpr char digits[] = "0123456789abcdef";
    auto const byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 && byte < 0x7f) {
        return {c};
    }
    return {'\\', 'x', digits[byte >> 4U], digits[byte & 0x0fU]};
}

// Never cuts an escape in two.
void s_appendBounded(std::string& line, std::string_view text) {
    std::size_t lastCut = line.size();
    for (char const c : text) {
        auto const shown = s_printable(c);
        if (line.size() + shown.size() > maxLogLine) {
            line.resize(lastCut);
            line += cutMark;
            return;
        }
        line += shown;
        if (line.size() + cutMark.size() <= maxLogLine) {
            lastCut = line.size();
        }
    }
}

} // namespace

LogMessage const* findLogMessage(int id) {
    auto const* const found =
        std::find_if(std::begin(messages), std::end(messages),
                     [id](LogMessage const& message) { return message.m_id == id; });
    return found == std::end(messages) ? nullptr : found;
}

LogLevel logLevel(int id) {
    auto const* const message = findLogMessage(id);
    return message != nullptr ? message->m_level : LogLevel::warning;
}

std::string logLine(int id, std::string_view detail) {
    auto line = s_words(id);
    if (detail.find_first_not_of(' ') != std::string_view::npos) {
        line += ": ";
        s_appendBounded(line, detail);
    }
    return line;
}

} // namespace Quorvane
