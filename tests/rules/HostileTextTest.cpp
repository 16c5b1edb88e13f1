// SPDX-License-Identifier: Apache-2.0
//
// Whatever a text holds, compiling it ends, and what compiles can be printed and compiled again.
#include "RuleGenerators.h"
#include "rules/check/Checker.h"
#include "rules/language/Compiler.h"
#include "rules/language/RuleText.h"

namespace Quorvane::Testing {
namespace {

// Mostly words of the language, so that the parser gets deep into its productions.
rc::Gen<std::string> s_piece() {
    auto const word = rc::gen::element<std::string>(
        "version", "elite", "first", "also-tree", "adjust", "decide", "type", "code", "support",
        "always", "when", "and", "tree", "node", "confidence", "counts", "leaf", "slots", "readme",
        "elite-tail", "tree-tail", "bits", "inf", "test", "first_forged", "chain_broken", "yes",
        "n/a", "name", "because", "names-file");
    auto const sign = rc::gen::element<std::string>("{", "}", ":", "==", "!=", "->", "(", ")", "\n",
                                                    "#", "'", "'d'", "\"", "\"00\"", "=", "\\");
    auto const number =
        rc::gen::element<std::string>("0", "1", "5", "37", "38", "-1", "0.5", "1e400", "0x7ff8",
                                      "+", "2147483648", "499", "-inf");
    auto const bytes = rc::gen::container<std::string>(rc::gen::arbitrary<char>());
    return rc::gen::weightedOneOf<std::string>({{6, word}, {4, sign}, {3, number}, {1, bytes}});
}

RC_GTEST_PROP(HostileTextTest, CompilingEndsWithErrorsOrWithASetThatCanBePrinted, ()) {
    std::string text;
    for (auto const& piece : *rc::gen::container<std::vector<std::string>>(s_piece())) {
        text += piece + ' ';
    }
    // On the heap in its exact size, so that a sanitizer sees a read one byte too far.
    std::vector<char> const exact(text.begin(), text.end());
    auto const compiled = Rules::compileRules({exact.data(), exact.size()});
    Rules::showErrors("text", text, compiled.m_errors);
    if (compiled.m_errors.empty()) {
        Rules::checkRules(compiled.m_set, DeepHeaderSettings());
        auto const again = Rules::compileRules(Rules::ruleText(compiled.m_set));
        RC_ASSERT(again.m_errors.empty());
    }
}

// A good text with one piece put in somewhere: most parses go wrong late.
RC_GTEST_PROP(HostileTextTest, AGoodTextWithAStrangePieceIsCompiledOrRefused, ()) {
    RuleSet set;
    set.setVersion(1);
    genTree(set);
    set.m_elite = genElite();
    set.m_names.m_content = Rules::namesText(genNames(set));
    auto text = Rules::ruleText(set);
    text.insert(*rc::gen::inRange<std::size_t>(0, text.size() + 1), *s_piece());
    auto const compiled = Rules::compileRules(text);
    for (auto const& error : compiled.m_errors) {
        RC_ASSERT(error.m_position.m_line >= 1U);
        RC_ASSERT(error.m_position.m_column >= 1U);
        RC_ASSERT(!error.m_text.empty());
    }
}

} // namespace
} // namespace Quorvane::Testing
