// SPDX-License-Identifier: Apache-2.0
//
// PatternSet: does any of many regular expressions match somewhere in a text? Expressions are in
// RE2's default syntax and match byte by byte, so that a byte of any value is a character.
//
// A PatternSet never changes for those who use it: share it read-only between threads. Inside, the
// automaton is kept once for each of a few cores, because RE2 counts the readers of an automaton in
// it, and that count would travel between the cores with every name.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace re2 {
class RE2;
} // namespace re2

namespace Quorvane {

struct Pattern;

class PatternSet {
  public:
    // Throws an Exception of category 3 for the first expression that RE2 does not take, with
    // `sourceName`, the line and RE2's reason.
    PatternSet(std::vector<Pattern> const& patterns, std::string const& sourceName);
    PatternSet(PatternSet const&) = delete;
    PatternSet& operator=(PatternSet const&) = delete;
    ~PatternSet();

    // Linear in the length of `text`. Always the right answer: where the common automaton needs
    // more memory than it may have, the expressions are tried one by one.
    bool matches(std::string_view text) const;

  private:
    struct Replica;

    bool matchesOneByOne(std::string_view text) const;
    Replica& replica() const;

    std::vector<std::unique_ptr<re2::RE2 const>> m_expressions;
    std::unique_ptr<Replica[]> m_replicas;
};

} // namespace Quorvane
