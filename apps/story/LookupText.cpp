// SPDX-License-Identifier: Apache-2.0
#include "apps/story/LookupText.h"

#include <array>
#include <cstddef>

namespace Quorvane {

namespace {

struct Words {
    char const* m_name;
    char const* m_text;
};

// In the order of LookupResult.
constexpr auto results = std::to_array<Words>({
    {"notAsked", "not asked"},
    {"answered", "exists"},
    {"doesNotExist", "does not exist"},
    {"failed", "the look-up failed"},
    {"late", "no answer before the deadline"},
});
static_assert(results.size() == static_cast<std::size_t>(LookupResult::late) + 1);

// In the order of RecordedLookup::Question.
constexpr auto questions =
    std::to_array<char const*>({"reverseName", "announcedName", "envelopeDomain"});

} // namespace

char const* questionName(RecordedLookup::Question question) {
    return questions.at(static_cast<std::size_t>(question));
}

char const* lookupName(LookupResult result) {
    return results.at(static_cast<std::size_t>(result)).m_name;
}

char const* lookupText(LookupResult result) {
    return results.at(static_cast<std::size_t>(result)).m_text;
}

} // namespace Quorvane
