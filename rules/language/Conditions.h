// SPDX-License-Identifier: Apache-2.0
//
// The productions that the tree and the elite rules share: a condition and its parts, and a value
// that may be given once.
#pragma once

#include "rules/language/Syntax.h"
#include "rules/language/TokenReader.h"

#include <optional>
#include <string>

namespace Quorvane::Rules {

ConditionSyntax parseCondition(TokenReader& in);

// Records that `word`, which must be one of `known`, is not.
void rejectWord(TokenReader& in, Token const& word, std::vector<std::string_view> const& known,
                std::string const& where);

template<typename T>
void setOnce(TokenReader& in, std::optional<T>& slot, Token const& word, T value) {
    if (slot) {
        in.error(word.m_position, '"' + std::string(word.m_text) + "\" is given twice; keep one");
    }
    slot = std::move(value);
}

} // namespace Quorvane::Rules
