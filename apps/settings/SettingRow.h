// SPDX-License-Identifier: Apache-2.0
//
// SettingRow: one setting of a program: its name in the settings file and, after "--", on the
// command line, and the field of a record that holds its value. The settings file, the command
// line, --show-config, the help, the manual page and the completion all draw on such rows. The
// record is the program's own:
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

// What there is to say about a setting, whatever record it belongs to.
struct SettingFacts {
    std::string_view m_name;
    SettingKind m_kind;
    std::string_view m_valueName; // as ValueNames.h has it
    std::string_view m_help;
    // It says how rules judge, whatever the mail and the relays are.
    bool m_isOfRules = false;
};

template<typename Record>
struct SettingRow {
    SettingFacts m_facts;
    // Throws a SettingsError for a text that the field could hold and the setting does not take;
    // null: it takes all.
    void (*m_check)(std::string const& text);
    // Takes one value; of a list one more element. Throws a SettingsError.
    void (*m_assign)(Record& record, std::string const& text);
    // The value or the elements as assign would take them.
    SettingTexts (*m_show)(Record const& record);
    // Puts the default back; a list is empty then.
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

// The field is a member of the record, or an inner one of that member.
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
