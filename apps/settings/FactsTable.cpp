// SPDX-License-Identifier: Apache-2.0
#include "apps/settings/FactsTable.h"

#include <array>

namespace Quorvane {

namespace {

constexpr auto table = std::to_array<SettingRow<MessageFacts>>({
    settingRow<MessageFacts>(
        {"env-from", SettingKind::text, "A", "envelope sender, as the host knows it"},
        [](auto& f) -> auto& { return f.m_envelopeFrom; }),
    settingRow<MessageFacts>(
        {"header-from", SettingKind::text, "A", "author"},
        [](auto& f) -> auto& { return f.m_headerFrom; }),
    settingRow<MessageFacts>(
        {"recipient", SettingKind::text, "A", "recipient"},
        [](auto& f) -> auto& { return f.m_recipient; }),
    settingRow<MessageFacts>(
        {"current-received", SettingKind::text, "TEXT",
         "Received header that is about to be added"},
        [](auto& f) -> auto& { return f.m_currentReceived; }),
    settingRow<MessageFacts>(
        {"current-forged", SettingKind::integer, "N",
         "are its names forged? 0, 1, or -1: ask DNS (0)"},
        [](auto& f) -> auto& { return f.m_currentIsForged; }),
    settingRow<MessageFacts>(
        {"client-score", SettingKind::integer, "N", "reputation score of the client (0)"},
        [](auto& f) -> auto& { return f.m_clientScore; }),
    settingRow<MessageFacts>(
        {"message-status", SettingKind::integer, "N", "status of the message; rules see 3 (0)"},
        [](auto& f) -> auto& { return f.m_messageStatus; }),
});

} // namespace

std::span<SettingRow<MessageFacts> const> factRows() {
    return table;
}

} // namespace Quorvane
