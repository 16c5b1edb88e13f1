// SPDX-License-Identifier: Apache-2.0
//
// The values of settings as text. A text is read as a whole or refused; what is shown reads back as
// the same value. Pure functions.
#pragma once

#include "apps/commandline/ProgramError.h"
#include "platform/EmailAddress.h"
#include "platform/IPPrefix.h"
#include "platform/ReputationTable.h"
#include "platform/TrustedMTASet.h"
#include "rules/model/RuleError.h"

#include <concepts>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Quorvane {

// The scale of reputation scores is 0 to 9. One step beyond each end is taken as well: a score
// threshold of -1 or 10 is one that no score of the scale reaches, as the library compares scores
// without a sign.
inline constexpr int lowestScore = -1;
inline constexpr int highestScore = 10;

// A value that is wrong for its setting, or an error in a settings file.
class SettingsError : public ProgramError {
  public:
    explicit SettingsError(std::string const& text) : ProgramError(ExitStatus::config, text) {}
    // The text begins with the place.
    SettingsError(Rules::FilePlace place, std::string const& what)
        : ProgramError(ExitStatus::config, place.text() + what), m_place(std::move(place)) {}

    explicit SettingsError(Rules::RuleError const& error)
        : ProgramError(ExitStatus::config, error.what()), m_place(error.place()) {}

    // In a settings file, or one that settings name; empty where it is not known.
    Rules::FilePlace const& place() const { return m_place; }

  private:
    Rules::FilePlace m_place;
};

// They throw a SettingsError that shows the text and what is expected. The ends of a range belong
// to it.
double readNumber(std::string const& text);
double readNumber(std::string const& text, double low, double high);
long long readInteger(std::string const& text, long long low, long long high);

// Each reads a text into a field of a record, or throws a SettingsError. A list gets one more
// element; a text without an address makes the address null, like an empty envelope sender.
void readSetting(std::string const& text, double& field);
void readSetting(std::string const& text, EmailAddress& field);
void readSetting(std::string const& text, IPPrefix& field);
void readSetting(std::string const& text, ReputationTable::Entry& field); // "192.0.2.0/24=7"
void readSetting(std::string const& text, IPv6Relays& field);             // "stop" or "judge"

// A text or an optional text.
template<typename Field>
requires std::assignable_from<Field&, std::string const&>
void readSetting(std::string const& text, Field& field) {
    field = text;
}

template<std::integral Number>
void readSetting(std::string const& text, Number& field) {
    using Limits = std::numeric_limits<Number>;
    field = static_cast<Number>(readInteger(text, Limits::min(), Limits::max()));
}

template<typename Element>
void readSetting(std::string const& text, std::vector<Element>& list) {
    Element element;
    readSetting(text, element);
    list.push_back(element);
}

// The reverse.
using SettingTexts = std::vector<std::string>;
SettingTexts settingTexts(std::string const& value);
SettingTexts settingTexts(std::optional<std::string> const& value);
SettingTexts settingTexts(double value);
SettingTexts settingTexts(EmailAddress const& value);
SettingTexts settingTexts(IPPrefix const& value);
SettingTexts settingTexts(ReputationTable::Entry const& value);
SettingTexts settingTexts(IPv6Relays value);

template<std::integral Number>
SettingTexts settingTexts(Number value) {
    return {std::to_string(value)};
}

template<typename Element>
SettingTexts settingTexts(std::vector<Element> const& list) {
    SettingTexts texts;
    for (auto const& element : list) {
        texts.push_back(settingTexts(element).front());
    }
    return texts;
}

} // namespace Quorvane
