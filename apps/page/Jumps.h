// SPDX-License-Identifier: Apache-2.0
//
// The links to the parts of a page. They stay at the top of the screen while the page scrolls. Pure
// function.
#pragma once

#include <string>
#include <vector>

namespace Quorvane::Page {

struct Jump {
    std::string m_id;   // ours: letters, digits and hyphens
    std::string m_name; // plain text, ours
    bool m_needsScript = false;
};

// Stands between header and main.
std::string jumps(std::vector<Jump> const& all);

} // namespace Quorvane::Page
