// SPDX-License-Identifier: Apache-2.0
//
// The 38 attributes that a message is turned into, and that every rule tests: index, name, what
// writes it, the values it can take and one line of meaning. The engine, the explain record, the
// rule language, the documentation and the tests all use this table.
//
// Rule files address attributes by index: never renumber. Value codes, as a rule: 1 yes or match,
// 0 no or mismatch, 2 unknown, 8 not applicable, 3 no hop was analysed; counters count hops.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace Quorvane {

inline constexpr std::size_t attributeCount = 38;

// Value codes of hops and attributes. Rule files contain them: never renumber or merge.
namespace Code {
inline constexpr std::int32_t no = 0;
inline constexpr std::int32_t yes = 1;
inline constexpr std::int32_t unknown = 2;
inline constexpr std::int32_t notAnalysed = 3;
inline constexpr std::int32_t notApplicable = 8;
// In the fields heloIsIP, heloDynamic and heloEqualsIP 2 means that the HELO name is an address
// literal, or that it equals the hop's address.
inline constexpr std::int32_t literal = 2;
} // namespace Code

// Named indices, for code that reads or writes one attribute.
namespace Attribute {
enum Index : std::size_t {
    firstHeloIsDomain = 0,
    deepHeloIsDomain = 1,
    hopsHeloNoDomain = 2,
    firstHeloResolves = 3,
    reserved4 = 4,
    firstHeloDynamic = 5,
    deepHeloDynamic = 6,
    firstHeloMatchesReverse = 7,
    deepHeloMatchesReverse = 8,
    hopsHeloMismatchesReverse = 9,
    firstReverseDynamic = 10,
    deepReverseDynamic = 11,
    hopsReverseDynamic = 12,
    hopsReverseNoDomain = 13,
    firstForged = 14,
    messageIdHasDot = 15,
    messageIdMatchesReverse = 16,
    messageIdMatchesHelo = 17,
    fromMatchesEnvelope = 18,
    fromMatchesMessageId = 19,
    firstFromMatchesReverse = 20,
    deepFromMatchesReverse = 21,
    fromMatchesReverse = 22,
    firstFromMatchesHelo = 23,
    deepFromMatchesHelo = 24,
    fromMatchesHelo = 25,
    firstFromMatchesBoth = 26,
    fromMatchesBoth = 27,
    firstEnvelopeMatches = 28,
    envelopeDomainResolves = 29,
    reserved30 = 30,
    heloIsRecipientNotEnvelope = 31,
    deepSameAddress = 32,
    chainBroken = 33,
    reserved34 = 34,
    reserved35 = 35,
    statusIndicated = 36,
    hopBehindFirst = 37,
};
} // namespace Attribute

// The stage of a scan that writes an attribute.
enum class AttributeWriter : std::uint8_t {
    nobody,
    headerFields,
    receivedChain,
    attributes,
    attributesWithLookup,
};

// The values an attribute can take.
struct AttributeValues {
    // Codes it takes; unused places repeat the first.
    std::array<std::int32_t, 5> m_codes;
    // A counter takes every value from 0 on.
    bool m_isCounter = false;
    // Any 32-bit value: the caller's forged flag is passed through unchanged.
    bool m_isOpen = false;

    constexpr bool contains(std::int32_t value) const {
        if (m_isOpen || (m_isCounter && value >= 0)) {
            return true;
        }
        for (auto const code : m_codes) {
            if (code == value) {
                return !m_isCounter;
            }
        }
        return false;
    }
};

struct AttributeFacts {
    std::size_t m_index;
    std::string_view m_name;
    AttributeValues m_values;
    AttributeWriter m_writer;
    // The value before a scan.
    std::int32_t m_start;
    std::string_view m_meaning;
};

namespace Detail {
inline constexpr AttributeValues always0{{0, 0, 0, 0, 0}};
inline constexpr AttributeValues yesNo{{0, 1, 0, 0, 0}};
inline constexpr AttributeValues yesNoUnknown{{0, 1, 2, 0, 0}};
inline constexpr AttributeValues deepYesNoUnknown{{0, 1, 2, 3, 0}};
inline constexpr AttributeValues yesNoLiteralNa{{0, 1, 2, 8, 0}};
inline constexpr AttributeValues deepYesNoLiteralNa{{0, 1, 2, 8, 3}};
inline constexpr AttributeValues yesNoNa{{0, 1, 8, 0, 0}};
inline constexpr AttributeValues counter{{0, 0, 0, 0, 0}, true};
inline constexpr AttributeValues forged{{0, 1, 0, 0, 0}, false, true};
} // namespace Detail

// "First hop" is the first public relay of the trail, the one that sent the message to the
// trusted side; "deep hop" is the deepest relay of the first run of public ones.
inline constexpr std::array<AttributeFacts, attributeCount> attributeTable{{
    {0, "first_helo_is_domain", Detail::yesNoUnknown, AttributeWriter::attributes, 0,
     "the first hop announced a name that looks like a domain or an address literal"},
    {1, "deep_helo_is_domain", Detail::deepYesNoUnknown, AttributeWriter::attributes, 0,
     "the deep hop announced a name that looks like a domain or an address literal"},
    {2, "hops_helo_no_domain", Detail::counter, AttributeWriter::receivedChain, 0,
     "number of analysed hops whose announced name is not a domain"},
    {3, "first_helo_resolves", Detail::yesNoLiteralNa, AttributeWriter::attributesWithLookup, 0,
     "the name that the first hop announced exists in DNS (2: it is an address literal)"},
    {4, "reserved_4", Detail::always0, AttributeWriter::nobody, 0, "always 0"},
    {5, "first_helo_dynamic", Detail::yesNoLiteralNa, AttributeWriter::attributes, 0,
     "the name that the first hop announced looks dynamically assigned (2: an address literal)"},
    {6, "deep_helo_dynamic", Detail::deepYesNoLiteralNa, AttributeWriter::attributes, 0,
     "the name that the deep hop announced looks dynamically assigned (2: an address literal)"},
    {7, "first_helo_matches_reverse", Detail::yesNoUnknown, AttributeWriter::attributes, 0,
     "the announced name of the first hop is related to its reverse name"},
    {8, "deep_helo_matches_reverse", Detail::deepYesNoUnknown, AttributeWriter::attributes, 0,
     "the announced name of the deep hop is related to its reverse name"},
    {9, "hops_helo_mismatches_reverse", Detail::counter, AttributeWriter::receivedChain, 0,
     "number of analysed hops whose announced name is not known to match the reverse name"},
    {10, "first_reverse_dynamic", Detail::yesNoUnknown, AttributeWriter::attributes, 0,
     "the reverse name of the first hop looks dynamically assigned"},
    {11, "deep_reverse_dynamic", Detail::deepYesNoUnknown, AttributeWriter::attributes, 0,
     "the reverse name of the deep hop looks dynamically assigned"},
    {12, "hops_reverse_dynamic", Detail::counter, AttributeWriter::receivedChain, 0,
     "number of analysed hops with a dynamically assigned reverse name"},
    {13, "hops_reverse_no_domain", Detail::counter, AttributeWriter::receivedChain, 0,
     "number of analysed hops whose reverse name is missing or not a domain"},
    {14, "first_forged", Detail::forged, AttributeWriter::attributes, 0,
     "the reverse name of the first hop resolves, but not to the hop's address"},
    {15, "message_id_has_dot", Detail::yesNo, AttributeWriter::attributes, 0,
     "the domain of the Message-ID contains a dot"},
    {16, "message_id_matches_reverse", Detail::yesNoUnknown, AttributeWriter::receivedChain, 2,
     "the domain of the Message-ID is related to announced and reverse name of an analysed hop"},
    {17, "message_id_matches_helo", Detail::yesNoUnknown, AttributeWriter::receivedChain, 2,
     "the domain of the Message-ID is related to the announced name of an analysed hop"},
    {18, "from_matches_envelope", Detail::yesNoUnknown, AttributeWriter::attributes, 0,
     "the author's domain is related to the envelope sender's"},
    {19, "from_matches_message_id", Detail::yesNoUnknown, AttributeWriter::attributes, 0,
     "the author's domain is related to the domain of the Message-ID"},
    {20, "first_from_matches_reverse", Detail::yesNoUnknown, AttributeWriter::attributes, 0,
     "the author's domain is related to the reverse name of the first hop"},
    {21, "deep_from_matches_reverse", Detail::deepYesNoUnknown, AttributeWriter::attributes, 0,
     "the author's domain is related to the reverse name of the deep hop"},
    {22, "from_matches_reverse", Detail::yesNoUnknown, AttributeWriter::receivedChain, 2,
     "the author's domain is related to the reverse name of an analysed hop"},
    {23, "first_from_matches_helo", Detail::yesNoUnknown, AttributeWriter::attributes, 0,
     "the author's domain is related to the announced name of the first hop"},
    {24, "deep_from_matches_helo", Detail::deepYesNoUnknown, AttributeWriter::attributes, 0,
     "the author's domain is related to the announced name of the deep hop"},
    {25, "from_matches_helo", Detail::yesNoUnknown, AttributeWriter::receivedChain, 2,
     "the author's domain is related to the announced name of an analysed hop"},
    {26, "first_from_matches_both", Detail::yesNoNa, AttributeWriter::attributes, 0,
     "the author's domain is related to both names of the first hop"},
    {27, "from_matches_both", Detail::yesNoUnknown, AttributeWriter::receivedChain, 2,
     "the author's domain is related to both names of one analysed hop"},
    {28, "first_envelope_matches", Detail::yesNoNa, AttributeWriter::attributes, 0,
     "the envelope sender's domain is related to both names of the first hop"},
    {29, "envelope_domain_resolves", Detail::yesNo, AttributeWriter::attributesWithLookup, 0,
     "the envelope sender's domain exists in DNS"},
    {30, "reserved_30", Detail::always0, AttributeWriter::nobody, 0, "always 0"},
    {31, "helo_is_recipient_not_envelope", Detail::yesNo, AttributeWriter::attributes, 0,
     "the first hop announced a name of the recipient's domain, which is not the sender's"},
    {32, "deep_same_address", Detail::yesNoUnknown, AttributeWriter::attributes, 0,
     "the deep hop has the address of the first hop"},
    {33, "chain_broken", Detail::yesNo, AttributeWriter::receivedChain, 0,
     "after the first hop a relay says that it received the message from a host that is not the "
     "next one"},
    {34, "reserved_34", Detail::always0, AttributeWriter::nobody, 0, "always 0"},
    {35, "reserved_35", Detail::always0, AttributeWriter::nobody, 0, "always 0"},
    {36, "status_indicated", Detail::yesNo, AttributeWriter::headerFields, 0,
     "the host gave the message status 3"},
    {37, "hop_behind_first", Detail::yesNo, AttributeWriter::receivedChain, 0,
     "the trail goes on after the first hop"},
}};

namespace Detail {
constexpr bool isIndexedInOrder() {
    for (std::size_t i = 0; i < attributeTable.size(); ++i) {
        if (attributeTable[i].m_index != i) {
            return false;
        }
    }
    return true;
}
} // namespace Detail
static_assert(Detail::isIndexedInOrder());

// The index of the attribute called `name`; empty when there is none.
constexpr std::optional<std::size_t> attributeIndex(std::string_view name) {
    for (auto const& facts : attributeTable) {
        if (facts.m_name == name) {
            return facts.m_index;
        }
    }
    return std::nullopt;
}

// What a scan writes into an attribute of the deep hop when the trail has no such hop; empty for
// attributes of anything else.
constexpr std::optional<std::int32_t> valueWithoutDeepHop(AttributeFacts const& facts) {
    if (facts.m_values.contains(Code::notAnalysed) && !facts.m_values.m_isCounter &&
        !facts.m_values.m_isOpen) {
        return Code::notAnalysed;
    }
    return facts.m_index == Attribute::deepSameAddress ? std::optional(Code::unknown)
                                                       : std::nullopt;
}

} // namespace Quorvane
