// SPDX-License-Identifier: Apache-2.0
#include "apps/settings/FactsTable.h"

#include "apps/settings/SettingsTable.h"

#include <algorithm>
#include <array>
#include <limits>

namespace Quorvane {

namespace {

template<typename Number>
Number s_number(std::string const& text) {
    return static_cast<Number>(
        readInteger(text, std::numeric_limits<Number>::min(), std::numeric_limits<Number>::max()));
}

EmailAddress s_address(std::string const& text) {
    return EmailAddress::rfc5322Parse(text, true);
}

constexpr auto table = std::to_array<FactKey>({
    {"env-from", "A", "envelope sender, as the host knows it",
     [](MessageFacts& f, std::string const& t) { f.m_envelopeFrom = s_address(t); }},
    {"header-from", "A", "author",
     [](MessageFacts& f, std::string const& t) { f.m_headerFrom = s_address(t); }},
    {"recipient", "A", "recipient",
     [](MessageFacts& f, std::string const& t) { f.m_recipient = s_address(t); }},
    {"current-received", "TEXT", "Received header that is about to be added",
     [](MessageFacts& f, std::string const& t) { f.m_currentReceived = t; }},
    {"current-forged", "N", "are its names forged? 0, 1, or -1: ask DNS (0)",
     [](MessageFacts& f, std::string const& t) {
         f.m_currentIsForged = s_number<std::int32_t>(t);
     }},
    {"client-score", "N", "reputation score of the client (0)",
     [](MessageFacts& f, std::string const& t) { f.m_clientScore = s_number<std::uint32_t>(t); }},
    {"message-status", "N", "status of the message; rules see 3 (0)",
     [](MessageFacts& f, std::string const& t) { f.m_messageStatus = s_number<std::int32_t>(t); }},
});

} // namespace

std::span<FactKey const> factKeys() {
    return table;
}

FactKey const* findFact(std::string_view name) {
    auto const found = std::find_if(table.begin(), table.end(),
                                    [name](FactKey const& key) { return key.m_name == name; });
    return found == table.end() ? nullptr : &*found;
}

} // namespace Quorvane
