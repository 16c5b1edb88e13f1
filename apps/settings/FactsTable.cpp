// SPDX-License-Identifier: Apache-2.0
#include "apps/settings/FactsTable.h"

#include <array>

namespace Quorvane {

namespace {

constexpr auto table = std::to_array<SettingRow<MessageFacts>>({
    settingRow<&MessageFacts::m_envelopeFrom>(
        {"env-from", SettingKind::text, "A", "envelope sender, as the host knows it"}),
    settingRow<&MessageFacts::m_headerFrom>({"header-from", SettingKind::text, "A", "author"}),
    settingRow<&MessageFacts::m_recipient>({"recipient", SettingKind::text, "A", "recipient"}),
    settingRow<&MessageFacts::m_currentReceived>({"current-received", SettingKind::text, "TEXT",
                                                  "Received header that is about to be added"}),
    settingRow<&MessageFacts::m_currentIsForged>(
        {"current-forged", SettingKind::integer, "N",
         "are its names forged? 0, 1, or -1: ask DNS (0)"}),
    settingRow<&MessageFacts::m_clientScore>(
        {"client-score", SettingKind::integer, "N", "reputation score of the client (0)"}),
    settingRow<&MessageFacts::m_messageStatus>(
        {"message-status", SettingKind::integer, "N", "status of the message; rules see 3 (0)"}),
});

} // namespace

std::span<SettingRow<MessageFacts> const> factRows() {
    return table;
}

} // namespace Quorvane
