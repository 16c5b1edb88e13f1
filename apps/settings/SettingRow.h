// SPDX-License-Identifier: Apache-2.0
//
// SettingRow: one setting of a program: its name in the settings file and, after "--", on the
// command line, and the field of a record that holds its value. The settings file, the command
// line, --show-config, the help, the manual page and the completion all use these rows. The
// record belongs to the program:
//
//   settingRow<&Site::m_relay>({"relay", SettingKind::text, "HOST", "next relay"})
//
// Plain functions without state.
#pragma once

#include "apps/settings/SettingValue.h"

#include <string>
#include <string_view>

namespace Quorvane {

enum class SettingKind {
    text,
    path, // in a settings file relative to the file's folder
    number,
    integer,
    list, // of texts; repeatable on the command line
};

// The facts of a setting that do not depend on its record.
struct SettingFacts {
    std::string_view m_name;
    SettingKind m_kind;
    std::string_view m_valueName; // as ValueNames.h has it
    std::string_view m_help;
    // It controls how rules judge, not what is known of mail and relays.
    bool m_isOfRules = false;
};

template<typename Record>
struct SettingRow {
    SettingFacts m_facts;
    // Throws a SettingsError for a text that fits the field but not the setting; null: all fit.
    void (*m_check)(std::string const& text);
    // Sets the value; adds one element to a list. Throws a SettingsError.
    void (*m_assign)(Record& record, std::string const& text);
    // The value or the elements, in the form that m_assign reads.
    SettingTexts (*m_show)(Record const& record);
    // Restores the default; a list becomes empty.
    void (*m_reset)(Record& record);
};

template<typename Record, typename Field>
Record recordOf(Field Record::*);

template<auto Member, auto... Inner>
auto& fieldOf(auto& record) {
    if constexpr (sizeof...(Inner) == 0) {
        return record.*Member;
    } else {
        return fieldOf<Inner...>(record.*Member);
    }
}

// The field is a member of the record, or a member of that member.
template<auto Member, auto... Inner>
constexpr auto settingRow(SettingFacts const& facts,
                          void (*check)(std::string const& text) = nullptr) {
    using Record = decltype(recordOf(Member));
    return SettingRow<Record>{
        facts, check,
        [](Record& record, std::string const& text) {
            readSetting(text, fieldOf<Member, Inner...>(record));
        },
        [](Record const& record) { return settingTexts(fieldOf<Member, Inner...>(record)); },
        [](Record& record) {
            Record fresh;
            fieldOf<Member, Inner...>(record) = fieldOf<Member, Inner...>(fresh);
        }};
}

} // namespace Quorvane
