// SPDX-License-Identifier: Apache-2.0
//
// Names of rules and nodes, and the sentences that say why they are there.
#include "rules/language/Productions.h"

namespace Quorvane::Rules {

namespace {

// Texts in a row are one, with a blank between them.
Bytes s_sentence(TokenReader& in) {
    auto sentence = in.string("a sentence in double quotes is expected");
    while (in.peek().m_kind == Token::Kind::string) {
        in.joinNextLine();
        sentence += ' ' + in.string("");
    }
    return sentence;
}

} // namespace

bool continuesWithNaming(TokenReader& in) {
    auto const& next = in.peek();
    if (!next.is("name") && !next.is("because")) {
        return false;
    }
    in.joinNextLine();
    return true;
}

bool acceptNaming(TokenReader& in, Token const& word, NamingSyntax& naming) {
    auto const place = in.peek().m_position;
    if (word.is("name")) {
        naming.m_name = {place, in.string("a name in double quotes is expected")};
        return true;
    }
    if (word.is("because")) {
        naming.m_sentence = {place, s_sentence(in)};
        return true;
    }
    return false;
}

} // namespace Quorvane::Rules
