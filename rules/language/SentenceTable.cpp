// SPDX-License-Identifier: Apache-2.0
//
// The table of sentences: the words of each kind of attribute, and what each attribute puts into
// them.
#include "rules/format/AttributeTable.h"
#include "rules/language/Sentences.h"

#include <span>

namespace Quorvane::Rules {

namespace {

// What attributes of one kind say, $A and $B standing for what they are about.
struct Words {
    std::int32_t m_value;
    std::string_view m_is;
    std::string_view m_isNot;
};

// --- $A is a relay, $B the first part of the names of what is known of it ---

constexpr Words heloIsDomain[] = {
    {Code::yes, "the name $A announced{$BHelo} looks like a full host name or an address",
     "$A announced no name that looks like a full host name or an address"},
    {Code::no, "the name $A announced{$BHelo} is no full host name",
     "$A announced a full host name, an address, or nothing"},
    {Code::unknown, "$A announced no name", "$A announced a name{$BHelo}"},
};

constexpr Words heloResolves[] = {
    {Code::yes, "the name $A announced{$BHelo} exists in DNS",
     "the name $A announced{$BHelo} is not known to exist in DNS"},
    {Code::no, "the name $A announced{$BHelo} was not found in DNS",
     "the name $A announced{$BHelo} exists in DNS, or is none that can be looked up"},
    {Code::literal, "$A announced an address{$BHelo} instead of a name",
     "$A did not announce an address"},
    {Code::notApplicable, "$A announced no full host name that can be looked up in DNS",
     "$A announced a full host name or an address"},
};

constexpr Words heloDynamic[] = {
    {Code::yes, "the host name $A announced{$BHelo} looks dynamically assigned",
     "$A announced no host name that looks dynamically assigned"},
    {Code::no, "the host name $A announced{$BHelo} does not look dynamically assigned",
     "the name $A announced{$BHelo} looks dynamically assigned, or is no full host name"},
    {Code::literal, "$A announced an address{$BHelo} instead of a host name",
     "$A did not announce an address"},
    {Code::notApplicable, "$A announced no full host name",
     "$A announced a full host name or an address"},
};

constexpr Words reverseDynamic[] = {
    {Code::yes, "the reverse name of $A{$BReverse} looks dynamically assigned",
     "no reverse name that looks dynamically assigned was recorded for $A"},
    {Code::no, "the reverse name of $A{$BReverse} does not look dynamically assigned",
     "the reverse name of $A{$BReverse} looks dynamically assigned, or was not recorded"},
    {Code::unknown, "no reverse name was recorded for $A{$BAddress}",
     "a reverse name{$BReverse} was recorded for $A"},
};

// --- $A and $B are names ---

constexpr Words relation[] = {
    {Code::yes, "$A is related to $B", "$A is not known to be related to $B"},
    {Code::no, "$A is not related to $B", "$A may be related to $B"},
    {Code::unknown, "$A cannot be compared with $B: one of them is missing",
     "$A can be compared with $B"},
};

constexpr Words relationToAny[] = {
    {Code::yes, "$A is related to $B of a relay",
     "$A is not known to be related to $B of any relay"},
    {Code::no, "$A is not related to $B of any relay", "$A may be related to $B of a relay"},
    {Code::unknown, "$A cannot be compared with $B of any relay: something is missing",
     "$A can be compared with $B of a relay"},
};

constexpr Words relationToBoth[] = {
    {Code::yes, "$A is related to both $B", "$A is not known to be related to both $B"},
    {Code::no, "$A is not related to both $B", "$A may be related to both $B"},
    {Code::notApplicable, "$A cannot be compared with both $B: one of them is missing or no name",
     "$A can be compared with both $B"},
};

// --- counters; $A is what a relay must have done, $B the sentence when none did ---

constexpr Words counter[] = {
    {0, "$B", "at least one examined relay $A"},
    {1, "one examined relay $A", "not exactly one examined relay $A"},
};
constexpr Words otherCount = {0, "{value} examined relays $A",
                              "not exactly {value} examined relays $A"};

// --- for one attribute ---

constexpr Words forged[] = {
    {Code::yes,
     "the reverse name of $A{$BReverse} is forged: it leads to another address than the relay's "
     "own{$BAddress}",
     "nothing says that the reverse name of $A{$BReverse} is forged"},
    {Code::no, "nothing says that the reverse name of $A{$BReverse} is forged",
     "the reverse name of $A{$BReverse} is taken for forged"},
};
constexpr Words otherForged = {
    0, "the host says {value} when asked whether the reverse name of $A{$BReverse} is forged",
    "the host does not say {value} when asked whether the reverse name of $A{$BReverse} is "
    "forged"};

// Most attributes of two values: $A holds, $B holds.
constexpr Words yesNo[] = {
    {Code::yes, "$A", "$B"},
    {Code::no, "$B", "$A"},
};

constexpr Words sameAddress[] = {
    {Code::yes, "the deepest relay has the address of the first one{firstAddress}",
     "no deeper relay has the address of the first one{firstAddress}"},
    {Code::no,
     "the deepest relay{deepAddress} has another address than the first one{firstAddress}",
     "no deeper relay has another address than the first one{firstAddress}"},
    {Code::unknown, "no public relay stood right behind the first one",
     "a public relay{deepAddress} stood right behind the first one"},
};

constexpr Words reserved[] = {{0, "$N is 0", "$N is not 0"}};

// Values that no scan gives; $N is the name of the attribute.
constexpr Words plain = {0, "$N is {value}", "$N is not {value}"};

// A deep hop that there is not.
constexpr std::string_view noDeepHop = "no public relay stood right behind the first one";
constexpr std::string_view aDeepHop = "a public relay stood right behind the first one";

struct Row {
    Attribute::Index m_attribute;
    std::span<Words const> m_words;
    std::string_view m_a;
    std::string_view m_b;
    Words const* m_other = &plain; // for values without words of their own
};

constexpr std::string_view first = "the first relay";
constexpr std::string_view deep = "the deepest relay";
constexpr std::string_view firstHelo = "the name the first relay announced{firstHelo}";
constexpr std::string_view deepHelo = "the name the deepest relay announced{deepHelo}";
constexpr std::string_view firstReverse = "the reverse name of the first relay{firstReverse}";
constexpr std::string_view deepReverse = "the reverse name of the deepest relay{deepReverse}";
constexpr std::string_view firstBoth =
    "the announced name{firstHelo} and the reverse name{firstReverse} of the first relay";
constexpr std::string_view author = "the author's domain{authorDomain}";
constexpr std::string_view envelope = "the envelope sender's domain{envelopeDomain}";
constexpr std::string_view messageId = "the domain of the Message-ID{messageIdDomain}";

constexpr Row rows[] = {
    {Attribute::firstHeloIsDomain, heloIsDomain, first, "first"},
    {Attribute::deepHeloIsDomain, heloIsDomain, deep, "deep"},
    {Attribute::hopsHeloNoDomain, counter, "announced no full host name",
     "every examined relay announced a full host name or an address", &otherCount},
    {Attribute::firstHeloResolves, heloResolves, first, "first"},
    {Attribute::reserved4, reserved, "", ""},
    {Attribute::firstHeloDynamic, heloDynamic, first, "first"},
    {Attribute::deepHeloDynamic, heloDynamic, deep, "deep"},
    {Attribute::firstHeloMatchesReverse, relation, firstHelo, "its reverse name{firstReverse}"},
    {Attribute::deepHeloMatchesReverse, relation, deepHelo, "its reverse name{deepReverse}"},
    {Attribute::hopsHeloMismatchesReverse, counter,
     "had an announced name that is not known to be related to the reverse name",
     "the announced name of every examined relay is related to its reverse name", &otherCount},
    {Attribute::firstReverseDynamic, reverseDynamic, first, "first"},
    {Attribute::deepReverseDynamic, reverseDynamic, deep, "deep"},
    {Attribute::hopsReverseDynamic, counter, "had a reverse name that looks dynamically assigned",
     "no examined relay had a reverse name that looks dynamically assigned", &otherCount},
    {Attribute::hopsReverseNoDomain, counter, "had no full reverse name",
     "every examined relay had a full reverse name", &otherCount},
    {Attribute::firstForged, forged, first, "first", &otherForged},
    {Attribute::messageIdHasDot, yesNo, "the Message-ID names a full domain{messageIdDomain}",
     "the Message-ID names no full domain"},
    {Attribute::messageIdMatchesReverse, relationToAny, messageId, "both names"},
    {Attribute::messageIdMatchesHelo, relationToAny, messageId, "the announced name"},
    {Attribute::fromMatchesEnvelope, relation, author, envelope},
    {Attribute::fromMatchesMessageId, relation, author, messageId},
    {Attribute::firstFromMatchesReverse, relation, author, firstReverse},
    {Attribute::deepFromMatchesReverse, relation, author, deepReverse},
    {Attribute::fromMatchesReverse, relationToAny, author, "the reverse name"},
    {Attribute::firstFromMatchesHelo, relation, author, firstHelo},
    {Attribute::deepFromMatchesHelo, relation, author, deepHelo},
    {Attribute::fromMatchesHelo, relationToAny, author, "the announced name"},
    {Attribute::firstFromMatchesBoth, relationToBoth, author, firstBoth},
    {Attribute::fromMatchesBoth, relationToAny, author, "both names"},
    {Attribute::firstEnvelopeMatches, relationToBoth, envelope, firstBoth},
    {Attribute::envelopeDomainResolves, yesNo,
     "the envelope sender's domain{envelopeDomain} exists in DNS",
     "the envelope sender's domain{envelopeDomain} was not found in DNS"},
    {Attribute::reserved30, reserved, "", ""},
    {Attribute::heloIsRecipientNotEnvelope, yesNo,
     "the first relay announced a name{firstHelo} of the recipient's domain{recipientDomain}, "
     "which is not the sender's",
     "the name the first relay announced{firstHelo} does not pretend to be of the recipient's "
     "domain{recipientDomain}"},
    {Attribute::deepSameAddress, sameAddress, "", ""},
    {Attribute::chainBroken, yesNo,
     "the trail behind the first relay is broken: an older hop was recorded by another relay than "
     "the newer one names",
     "the trail behind the first relay is not broken"},
    {Attribute::reserved34, reserved, "", ""},
    {Attribute::reserved35, reserved, "", ""},
    {Attribute::statusIndicated, yesNo, "the host gave the message status 3",
     "the host did not give the message status 3"},
    {Attribute::hopBehindFirst, yesNo, "there was a hop behind the first relay{firstAddress}",
     "there was no hop behind the first relay{firstAddress}"},
};
static_assert(std::size(rows) == attributeCount);

std::string s_replaced(std::string text, std::string_view what, std::string_view by) {
    for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
        text.replace(at, what.size(), by);
    }
    return text;
}

std::string s_about(Row const& row, std::string_view words) {
    auto const text = s_replaced(s_replaced(std::string(words), "$A", row.m_a), "$B", row.m_b);
    return s_replaced(text, "$N", attributeTable[row.m_attribute].m_name);
}

void s_addRow(std::vector<Sentence>& table, Row const& row) {
    auto const& facts = attributeTable[row.m_attribute];
    bool const mayBeMissing = facts.m_values.contains(Code::notAnalysed) &&
                              !facts.m_values.m_isCounter && !facts.m_values.m_isOpen;
    auto const orMissing = mayBeMissing ? ", or " + std::string(noDeepHop) : std::string();
    for (auto const& words : row.m_words) {
        table.push_back({row.m_attribute, words.m_value, s_about(row, words.m_is),
                         s_about(row, words.m_isNot) + orMissing});
    }
    if (mayBeMissing) {
        table.push_back(
            {row.m_attribute, Code::notAnalysed, std::string(noDeepHop), std::string(aDeepHop)});
    }
    table.push_back({row.m_attribute, std::nullopt, s_about(row, row.m_other->m_is),
                     s_about(row, row.m_other->m_isNot)});
}

std::vector<Sentence> s_makeTable() {
    std::vector<Sentence> table;
    for (auto const& row : rows) {
        s_addRow(table, row);
    }
    return table;
}

} // namespace

std::vector<Sentence> const& sentenceTable() {
    static std::vector<Sentence> const table = s_makeTable();
    return table;
}

} // namespace Quorvane::Rules
