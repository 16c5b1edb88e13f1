// SPDX-License-Identifier: Apache-2.0
#include "rules/language/AttributePage.h"

#include "rules/format/ValueWords.h"

namespace Quorvane::Rules {

namespace {

std::string_view s_writer(AttributeWriter writer) {
    switch (writer) {
    case AttributeWriter::nobody:
        return "nobody";
    case AttributeWriter::headerFields:
        return "header fields";
    case AttributeWriter::receivedChain:
        return "received chain";
    case AttributeWriter::attributes:
        return "attributes";
    case AttributeWriter::attributesWithLookup:
        return "attributes, asks DNS";
    }
    return "";
}

std::string s_row(AttributeFacts const& facts) {
    return "| " + std::to_string(facts.m_index) + " | `" + std::string(facts.m_name) + "` | " +
           valueChoices(facts) + " | " + valueText(facts.m_index, facts.m_start) + " | " +
           std::string(s_writer(facts.m_writer)) + " | " + std::string(facts.m_meaning) + " |\n";
}

std::string s_wordRow(ValueWord const& word) {
    return "| `" + std::string(word.m_word) + "` | " + std::to_string(word.m_code) + " |\n";
}

} // namespace

std::string attributePage() {
    std::string page =
        "# The attributes\n\n"
        "Every rule tests these numbers and nothing else. The page is made from the "
        "attribute table\n"
        "(`qvrules attributes` prints it). Rule files name attributes by number: "
        "**never renumber**,\n"
        "and never give a value code a new meaning, since rule sets in the field "
        "are not rewritten\n"
        "when the engine is.\n\n"
        "\"First hop\" is the first public relay of the trail, the one that sent "
        "the message to the\n"
        "trusted side; \"deep hop\" is the deepest relay of the first run of public ones. Two "
        "names of\n"
        "at least three characters are related when the longer one holds the shorter one; of the\n"
        "shorter one the first label does not count when there are three labels or more.\n\n"
        "| word | code |\n| --- | --- |\n";
    for (auto const& word : valueWords) {
        page += s_wordRow(word);
    }
    page +=
        "\n`not-analysed` means that there was no such hop, `n/a` that the question does not arise "
        "(as whether a\n"
        "missing name is dynamic), and `unknown` that a part of the comparison is missing. "
        "`literal` is what 2\n"
        "means in the attributes that list it: the announced name is an address.\n\n"
        "| number | name | values | at start | written by | meaning |\n"
        "| --- | --- | --- | --- | --- | --- |\n";
    for (auto const& facts : attributeTable) {
        page += s_row(facts);
    }
    return page;
}

} // namespace Quorvane::Rules
