// SPDX-License-Identifier: Apache-2.0
#include "apps/settings/DnsList.h"

#include <sstream>

namespace Quorvane {

namespace {

// RFC 5782 section 2.1: what a list answers.
IPPrefix const& s_listAnswers() {
    static auto const prefix = IPPrefix::parse("127.0.0.0/8");
    return prefix;
}

bool s_isAnswer(IPPrefix const& prefix) {
    return s_listAnswers().contains(IPAddress::fromBytes(prefix.first())) &&
           s_listAnswers().contains(IPAddress::fromBytes(prefix.last()));
}

ReputationTable::Entry s_answer(std::string const& text) {
    ReputationTable::Entry answer;
    readSetting(text, answer);
    if (!s_isAnswer(answer.first)) {
        throw SettingsError("\"" + text + "\": lists answer with addresses in 127.0.0.0/8");
    }
    return answer;
}

} // namespace

void readSetting(std::string const& text, DnsList& field) {
    std::istringstream words(text);
    DnsList list;
    words >> list.m_zone;
    for (std::string word; words >> word;) {
        list.m_answers.push_back(s_answer(word));
    }
    if (list.m_answers.empty() || list.m_zone.find('=') != std::string::npos) {
        throw SettingsError("\"" + text +
                            "\" is not a DNS list; write its zone and its answers with their "
                            "scores, as in \"list.example 127.0.0.2=0 127.0.10.0/24=8\"");
    }
    field = list;
}

SettingTexts settingTexts(DnsList const& value) {
    auto text = value.m_zone;
    for (auto const& answer : value.m_answers) {
        text += ' ' + settingTexts(answer).front();
    }
    return {text};
}

} // namespace Quorvane
