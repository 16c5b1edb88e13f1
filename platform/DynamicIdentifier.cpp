// SPDX-License-Identifier: Apache-2.0
#include "platform/DynamicIdentifier.h"

#include "include2/Exception.h"
#include "platform/internal/BuiltInPatterns.h"
#include "platform/internal/PatternList.h"
#include "platform/internal/PatternSet.h"
#include "platform/Snapshot.h"
#include "platform/Strings.h"

#include <string_view>
#include <utility>

using Quorvane::PatternList;
using Quorvane::PatternSet;

namespace Telvanis {

struct DynamicIdentifier::Patterns {
    explicit Patterns(PatternList const& list)
        : m_patterns(list.m_patterns, list.m_sourceName),
          m_counterPatterns(list.m_counterPatterns, list.m_sourceName) {}

    bool match(std::string_view name) const {
        return m_patterns.matches(name) && !m_counterPatterns.matches(name);
    }

    PatternSet m_patterns;
    PatternSet m_counterPatterns;
};

namespace {

constexpr int badConfiguration = 3;

bool s_isUpper(char c) {
    return c >= 'A' && c <= 'Z';
}

// Looks at all bytes whatever they are: most names have none, and the loop becomes vector
// instructions.
bool s_hasUpper(std::string_view text) {
    unsigned int count = 0;
    for (char const c : text) {
        count += s_isUpper(c) ? 1U : 0U;
    }
    return count > 0;
}

// The dot that marks a fully qualified name in DNS says nothing about the machine.
std::string_view s_withoutTrailingDot(std::string_view name) {
    if (!name.empty() && name.back() == '.') {
        name.remove_suffix(1);
    }
    return name;
}

using SharedIdentifier = boost::shared_ptr<DynamicIdentifier>;
using IdentifierSnapshot = Quorvane::Snapshot<SharedIdentifier, SharedIdentifier>;

// The same identifier under a count that belongs to one thread.
SharedIdentifier s_underOwnCount(std::shared_ptr<SharedIdentifier const> const& identifier) {
    return {identifier->get(), [identifier](DynamicIdentifier*) {}};
}

// Never destroyed: threads may still scan while the process ends.
IdentifierSnapshot& s_slot() {
    static auto* const slot = new IdentifierSnapshot(
        std::make_shared<SharedIdentifier const>(DynamicIdentifier::builtIn()), s_underOwnCount);
    return *slot;
}

} // namespace

DynamicIdentifier::DynamicIdentifier(std::unique_ptr<Patterns const> patterns)
    : m_patterns(std::move(patterns)) {}

DynamicIdentifier::~DynamicIdentifier() = default;

boost::shared_ptr<DynamicIdentifier> DynamicIdentifier::compile(std::string const& patterns,
                                                                std::string const& sourceName) {
    auto const list = Quorvane::parsePatternList(patterns, sourceName);
    return SharedIdentifier(new DynamicIdentifier(std::make_unique<Patterns const>(list)));
}

boost::shared_ptr<DynamicIdentifier> DynamicIdentifier::load(std::string const& path) {
    return compile(Quorvane::readPatternFile(path), path);
}

boost::shared_ptr<DynamicIdentifier> DynamicIdentifier::builtIn() {
    // Never destroyed: scans may still ask while the process ends.
    static auto const* const list =
        new auto(compile(std::string(Quorvane::builtInDynamicPatterns()), "built-in patterns"));
    return *list;
}

bool DynamicIdentifier::match(std::string const& name) const {
    if (!s_hasUpper(name)) {
        return m_patterns->match(s_withoutTrailingDot(name));
    }
    std::string lower(name);
    Quorvane::stringToLowerNoCopy(lower);
    return m_patterns->match(s_withoutTrailingDot(lower));
}

boost::shared_ptr<DynamicIdentifier> DynamicIdentifierSingleton::instance(bool /*reload*/) {
    return s_slot().read();
}

void DynamicIdentifierSingleton::install(SharedIdentifier const& identifier) {
    if (identifier == nullptr) {
        throw Quorvane::Exception("an empty dynamic identifier cannot be installed",
                                  badConfiguration, nullptr, 0);
    }
    s_slot().publish(std::make_shared<SharedIdentifier const>(identifier));
}

} // namespace Telvanis
