// SPDX-License-Identifier: Apache-2.0
//
// The table of sentences: what each attribute puts into the words of its kind.
#include "rules/language/Sentences.h"
#include "rules/language/SentenceWords.h"

#include <span>

namespace Quorvane::Rules {

namespace {

using namespace SentenceWords;

// A deep hop that there is not.
constexpr std::string_view noDeepHop = "no public relay stood right after the first one";
constexpr std::string_view aDeepHop = "a public relay stood right after the first one";

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
     "the trail after the first relay is broken: an older hop was recorded by another relay than "
     "the newer one names",
     "the trail after the first relay is not broken"},
    {Attribute::reserved34, reserved, "", ""},
    {Attribute::reserved35, reserved, "", ""},
    {Attribute::statusIndicated, yesNo, "the host gave the message status 3",
     "the host did not give the message status 3"},
    {Attribute::hopBehindFirst, yesNo, "there was a hop after the first relay{firstAddress}",
     "there was no hop after the first relay{firstAddress}"},
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
