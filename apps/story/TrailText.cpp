// SPDX-License-Identifier: Apache-2.0
#include "apps/story/TrailText.h"

#include <array>
#include <cstddef>

namespace Quorvane {

namespace {

struct RoleWords {
    char const* m_name;
    char const* m_text;
};

// In the order of HopRole.
constexpr auto roles = std::to_array<RoleWords>({
    {"unreadable", "cannot be read: the scan fails"},
    {"internal", "our own relay, skipped"},
    {"trusted", "trusted relay, skipped"},
    {"authenticated", "authenticated submission, skipped"},
    {"trustedPartner", "a relay that filters already: the walk ends here"},
    {"ipv6End", "IPv6: the walk ends here"},
    {"scoredEnd", "the walk ends here"},
    {"listed", "not judged: the scan failed"},
    {"privateAddress", "private address"},
    {"noAddress", "no address"},
    {"firstPublic", "first public hop, judged"},
    {"analysed", "public, judged"},
    {"publicNotJudged", "public"},
    {"notLookedAt", "not looked at"},
});
static_assert(roles.size() == static_cast<std::size_t>(HopRole::notLookedAt) + 1);

RoleWords const& s_words(HopRole role) {
    return roles.at(static_cast<std::size_t>(role));
}

} // namespace

char const* roleName(HopRole role) {
    return s_words(role).m_name;
}

std::string roleText(RecordedHop const& hop) {
    std::string const text = s_words(hop.role).m_text;
    return hop.role == HopRole::scoredEnd
               ? "reputation score " + std::to_string(hop.score) + ": " + text
               : text;
}

} // namespace Quorvane
