// SPDX-License-Identifier: Apache-2.0
#include "apps/page/Jumps.h"

#include "apps/page/Escape.h"

namespace Quorvane::Page {

std::string jumps(std::vector<Jump> const& all) {
    std::string links;
    for (auto const& jump : all) {
        links += std::string("<a") + (jump.m_needsScript ? " class=\"scripted-only\"" : "") +
                 " href=\"#" + jump.m_id + "\">" + text(jump.m_name) + "</a>";
    }
    return "<nav class=\"jumps no-print\" aria-label=\"Parts of the page\"><div>" + links +
           "</div></nav>\n";
}

} // namespace Quorvane::Page
