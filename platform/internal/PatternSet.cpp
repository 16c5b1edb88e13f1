// SPDX-License-Identifier: Apache-2.0
#include "platform/internal/PatternSet.h"

#include "include2/Exception.h"
#include "platform/ForkBarrier.h"
#include "platform/internal/PatternList.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <re2/re2.h>
#include <re2/set.h>
#include <sched.h>

namespace Quorvane {

namespace {

constexpr int badConfiguration = 3;

// What the common automaton may take, twice RE2's default: a list of some thousand lines stays
// within it. It is a ceiling; the automaton grows with the names it sees, and one that reaches the
// ceiling starts again. So names made up to make it grow cost time, not memory.
constexpr std::int64_t automatonMemory = std::int64_t{16} << 20U;

// What one expression may take: repetitions such as ".{1000}" make a short line large.
constexpr std::int64_t expressionMemory = std::int64_t{1} << 20U;

// The instructions, of 16 bytes each, that all expressions of a set may compile to. RE2 gives them
// a quarter of an automaton's memory, so a list that is taken fits into one.
constexpr int maxInstructions = automatonMemory / 4 / 16;

// More cores than this share automatons, which bounds the memory on large machines.
constexpr unsigned int replicaCount = 8;

re2::RE2::Options s_options(std::int64_t memory) {
    re2::RE2::Options options;
    options.set_encoding(re2::RE2::Options::EncodingLatin1);
    options.set_max_mem(memory);
    options.set_never_capture(true);
    options.set_log_errors(false);
    return options;
}

re2::StringPiece s_piece(std::string_view text) {
    return {text.data(), text.size()};
}

[[noreturn]] void s_refuse(Pattern const& pattern, std::string const& sourceName,
                           std::string const& reason) {
    throw Exception("the expression \"" + pattern.m_expression + "\" cannot be used: " + reason +
                        "; correct it or put \"#\" in front of the line",
                    badConfiguration, sourceName.c_str(), pattern.m_line);
}

std::unique_ptr<re2::RE2 const> s_expression(Pattern const& pattern,
                                             std::string const& sourceName) {
    auto expression =
        std::make_unique<re2::RE2 const>(pattern.m_expression, s_options(expressionMemory));
    if (!expression->ok()) {
        s_refuse(pattern, sourceName, expression->error());
    }
    return expression;
}

} // namespace

// Null when the expressions are too many for one automaton.
struct alignas(64) PatternSet::Replica {
    void build(std::vector<std::unique_ptr<re2::RE2 const>> const& expressions) {
        auto set =
            std::make_unique<re2::RE2::Set>(s_options(automatonMemory), re2::RE2::UNANCHORED);
        for (auto const& expression : expressions) {
            set->Add(expression->pattern(), nullptr);
        }
        if (set->Compile()) {
            m_set = std::move(set);
        }
        m_isBuilt.store(true, std::memory_order_release);
    }

    std::atomic<bool> m_isBuilt{false}; // saves most calls of call_once
    std::once_flag m_once;
    std::unique_ptr<re2::RE2::Set const> m_set;
};

PatternSet::PatternSet(std::vector<Pattern> const& patterns, std::string const& sourceName) {
    m_expressions.reserve(patterns.size());
    int instructions = 0;
    for (auto const& pattern : patterns) {
        m_expressions.push_back(s_expression(pattern, sourceName));
        instructions += m_expressions.back()->ProgramSize();
        if (instructions > maxInstructions) {
            s_refuse(pattern, sourceName, "the list takes too much memory up to here");
        }
    }
    m_replicas = std::make_unique<Replica[]>(replicaCount);
}

PatternSet::~PatternSet() = default;

bool PatternSet::matches(std::string_view text) const {
    if (m_expressions.empty()) {
        return false;
    }
    ForkBarrier const barrier;
    auto const& set = replica().m_set;
    re2::RE2::Set::ErrorInfo error{re2::RE2::Set::kOutOfMemory};
    if (set != nullptr && set->Match(s_piece(text), nullptr, &error)) {
        return true;
    }
    return error.kind != re2::RE2::Set::kNoError && matchesOneByOne(text);
}

bool PatternSet::matchesOneByOne(std::string_view text) const {
    return std::any_of(m_expressions.begin(), m_expressions.end(), [text](auto const& expression) {
        return re2::RE2::PartialMatch(s_piece(text), *expression);
    });
}

PatternSet::Replica& PatternSet::replica() const {
    // A failure is -1, which picks some replica, and any is right.
    auto& replica = m_replicas[static_cast<unsigned int>(sched_getcpu()) % replicaCount];
    if (!replica.m_isBuilt.load(std::memory_order_acquire)) {
        std::call_once(replica.m_once, [&] { replica.build(m_expressions); });
    }
    return replica;
}

} // namespace Quorvane
