// SPDX-License-Identifier: Apache-2.0
#include "apps/settings/SettingValue.h"

#include "apps/text/NumberText.h"
#include "include2/Exception.h"

#include <charconv>
#include <cmath>

namespace Quorvane {

namespace {

constexpr char s_stop[] = "stop";
constexpr char s_judge[] = "judge";

template<typename Number>
bool s_parses(std::string const& text, Number& value) {
    // std::from_chars does not accept a plus sign.
    bool const hasPlus = text.starts_with('+') && !text.starts_with("+-");
    auto const* const begin = text.data() + (hasPlus ? 1 : 0);
    auto const* const end = text.data() + text.size();
    auto const result = std::from_chars(begin, end, value);
    return result.ec == std::errc() && result.ptr == end;
}

} // namespace

double readNumber(std::string const& text) {
    double value = 0;
    if (!s_parses(text, value) || std::isnan(value)) {
        throw SettingsError("\"" + text + "\" is not a number");
    }
    return value;
}

double readNumber(std::string const& text, double low, double high) {
    auto const value = readNumber(text);
    if (value < low || value > high) {
        throw SettingsError("\"" + text + "\" is not a number from " + exactNumberText(low) +
                            " to " + exactNumberText(high));
    }
    return value;
}

long long readInteger(std::string const& text, long long low, long long high) {
    long long value = 0;
    if (!s_parses(text, value) || value < low || value > high) {
        throw SettingsError("\"" + text + "\" is not a whole number from " + std::to_string(low) +
                            " to " + std::to_string(high));
    }
    return value;
}

void readSetting(std::string const& text, double& field) {
    field = readNumber(text);
}

void readSetting(std::string const& text, EmailAddress& field) {
    field = EmailAddress::rfc5322Parse(text, true);
}

void readSetting(std::string const& text, IPPrefix& field) {
    try {
        field = IPPrefix::parse(text);
    } catch (Exception const& error) {
        throw SettingsError(error.stringParameter());
    }
}

void readSetting(std::string const& text, ReputationTable::Entry& field) {
    auto const equals = text.rfind('=');
    if (equals == std::string::npos) {
        throw SettingsError("\"" + text +
                            "\" is not a score; write PREFIX=N, as in 192.0.2.0/24=7");
    }
    readSetting(text.substr(0, equals), field.first);
    if (!s_parses(text.substr(equals + 1), field.second) || field.second < lowestScore ||
        field.second > highestScore) {
        throw SettingsError("\"" + text + "\": a score is a whole number from 0 to 9");
    }
}

void readSetting(std::string const& text, IPv6Relays& field) {
    if (text != s_stop && text != s_judge) {
        throw SettingsError("\"" + text + "\" does not say what IPv6 relays mean; write " + s_stop +
                            " or " + s_judge);
    }
    field = text == s_judge ? IPv6Relays::judge : IPv6Relays::stop;
}

SettingTexts settingTexts(std::string const& value) {
    return {value};
}

SettingTexts settingTexts(std::optional<std::string> const& value) {
    return {value.value_or("")};
}

SettingTexts settingTexts(double value) {
    return {exactNumberText(value)};
}

SettingTexts settingTexts(EmailAddress const& value) {
    return {value.isNull() ? "" : value.localPart() + "@" + value.domain()};
}

SettingTexts settingTexts(IPPrefix const& value) {
    return {value.asString()};
}

SettingTexts settingTexts(ReputationTable::Entry const& value) {
    return {value.first.asString() + "=" + std::to_string(value.second)};
}

SettingTexts settingTexts(IPv6Relays value) {
    return {value == IPv6Relays::judge ? s_judge : s_stop};
}

} // namespace Quorvane
