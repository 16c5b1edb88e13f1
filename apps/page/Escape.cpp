// SPDX-License-Identifier: Apache-2.0
#include "apps/page/Escape.h"

#include "apps/text/Utf8.h"

#include <glib.h>
#include <memory>

namespace Quorvane::Page {

std::string text(std::string_view bytes) {
    auto const printable = toPrintable(bytes);
    std::unique_ptr<char, decltype(&g_free)> const escaped(
        g_markup_escape_text(printable.data(), static_cast<gssize>(printable.size())), &g_free);
    return escaped.get();
}

std::string isolated(std::string_view bytes) {
    return "<bdi>" + text(bytes) + "</bdi>";
}

// A script element ends at "</script" and changes its meaning at "<!--"; in JSON "<" stands within
// strings only, where an escape means the same.
std::string dataElement(std::string_view id, std::string_view json) {
    auto element = R"(<script type="application/json" id=")" + text(id) + "\">";
    for (char const c : json) {
        element += c == '<' ? "\\u003c" : std::string(1, c);
    }
    return element + "</script>\n";
}

} // namespace Quorvane::Page
