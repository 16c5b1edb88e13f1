// SPDX-License-Identifier: Apache-2.0
//
// The words of each kind of attribute. What each attribute puts into them is in SentenceTable.cpp.
#pragma once

#include "rules/format/AttributeTable.h"

#include <cstdint>
#include <string_view>

namespace Quorvane::Rules::SentenceWords {

// The sentences of one kind of attribute; $A and $B are replaced by what the attribute is about.
struct Words {
    std::int32_t m_value;
    std::string_view m_is;
    std::string_view m_isNot;
};

// --- $A is a relay, $B the first part of the names of what is known of it ---

inline constexpr Words heloIsDomain[] = {
    {Code::yes, "the name $A announced{$BHelo} looks like a full host name or an address",
     "$A announced no name that looks like a full host name or an address"},
    {Code::no, "the name $A announced{$BHelo} is not a full host name",
     "$A announced a full host name, an address, or nothing"},
    {Code::unknown, "$A announced no name", "$A announced a name{$BHelo}"},
};

inline constexpr Words heloResolves[] = {
    {Code::yes, "the name $A announced{$BHelo} exists in DNS",
     "the name $A announced{$BHelo} is not known to exist in DNS"},
    {Code::no, "the name $A announced{$BHelo} was not found in DNS",
     "the name $A announced{$BHelo} exists in DNS, or cannot be looked up"},
    {Code::literal, "$A announced an address{$BHelo} instead of a name",
     "$A did not announce an address"},
    {Code::notApplicable, "$A announced no full host name that can be looked up in DNS",
     "$A announced a full host name or an address"},
};

inline constexpr Words heloDynamic[] = {
    {Code::yes, "the host name $A announced{$BHelo} looks dynamically assigned",
     "$A announced no host name that looks dynamically assigned"},
    {Code::no, "the host name $A announced{$BHelo} does not look dynamically assigned",
     "the name $A announced{$BHelo} looks dynamically assigned, or is not a full host name"},
    {Code::literal, "$A announced an address{$BHelo} instead of a host name",
     "$A did not announce an address"},
    {Code::notApplicable, "$A announced no full host name",
     "$A announced a full host name or an address"},
};

inline constexpr Words reverseDynamic[] = {
    {Code::yes, "the reverse name of $A{$BReverse} looks dynamically assigned",
     "no reverse name that looks dynamically assigned was recorded for $A"},
    {Code::no, "the reverse name of $A{$BReverse} does not look dynamically assigned",
     "the reverse name of $A{$BReverse} looks dynamically assigned, or was not recorded"},
    {Code::unknown, "no reverse name was recorded for $A{$BAddress}",
     "a reverse name{$BReverse} was recorded for $A"},
};

// --- $A and $B are names ---

inline constexpr Words relation[] = {
    {Code::yes, "$A is related to $B", "$A is not known to be related to $B"},
    {Code::no, "$A is not related to $B", "$A may be related to $B"},
    {Code::unknown, "$A cannot be compared with $B: one of them is missing",
     "$A can be compared with $B"},
};

inline constexpr Words relationToAny[] = {
    {Code::yes, "$A is related to $B of a relay",
     "$A is not known to be related to $B of any relay"},
    {Code::no, "$A is not related to $B of any relay", "$A may be related to $B of a relay"},
    {Code::unknown, "$A cannot be compared with $B of any relay: something is missing",
     "$A can be compared with $B of a relay"},
};

inline constexpr Words relationToBoth[] = {
    {Code::yes, "$A is related to both $B", "$A is not known to be related to both $B"},
    {Code::no, "$A is not related to both $B", "$A may be related to both $B"},
    {Code::notApplicable,
     "$A cannot be compared with both $B: one of them is missing or is not a name",
     "$A can be compared with both $B"},
};

// --- counters; $A is what a relay must have done, $B the sentence when none did ---

inline constexpr Words counter[] = {
    {0, "$B", "at least one examined relay $A"},
    {1, "one examined relay $A", "not exactly one examined relay $A"},
};
inline constexpr Words otherCount = {0, "{value} examined relays $A",
                                     "not exactly {value} examined relays $A"};

// --- for one attribute ---

inline constexpr Words forged[] = {
    {Code::yes,
     "the reverse name of $A{$BReverse} is forged: it leads to another address than the relay's "
     "own{$BAddress}",
     "nothing says that the reverse name of $A{$BReverse} is forged"},
    {Code::no, "nothing says that the reverse name of $A{$BReverse} is forged",
     "the reverse name of $A{$BReverse} is treated as forged"},
};
inline constexpr Words otherForged = {
    0, "the host says {value} when asked whether the reverse name of $A{$BReverse} is forged",
    "the host does not say {value} when asked whether the reverse name of $A{$BReverse} is "
    "forged"};

// Most attributes of two values: $A holds, $B holds.
inline constexpr Words yesNo[] = {
    {Code::yes, "$A", "$B"},
    {Code::no, "$B", "$A"},
};

inline constexpr Words sameAddress[] = {
    {Code::yes, "the deepest relay has the address of the first one{firstAddress}",
     "no deeper relay has the address of the first one{firstAddress}"},
    {Code::no,
     "the deepest relay{deepAddress} has another address than the first one{firstAddress}",
     "no deeper relay has another address than the first one{firstAddress}"},
    {Code::unknown, "no public relay stood right after the first one",
     "a public relay{deepAddress} stood right after the first one"},
};

inline constexpr Words reserved[] = {{0, "$N is 0", "$N is not 0"}};

// Values that no scan gives; $N is the name of the attribute.
inline constexpr Words plain = {0, "$N is {value}", "$N is not {value}"};

} // namespace Quorvane::Rules::SentenceWords
