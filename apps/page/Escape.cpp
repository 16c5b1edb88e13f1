// SPDX-License-Identifier: Apache-2.0
#include "apps/page/Escape.h"

#include "apps/text/Utf8.h"

#include <array>
#include <glib.h>
#include <memory>
#include <utility>

namespace Quorvane::Page {

namespace {

// A script element ends at "</script" and changes its meaning at "<!--"; in JSON these characters
// stand within strings only, where an escape means the same. The two separators end a line in
// JavaScript but not in JSON.
constexpr std::array<std::pair<std::string_view, std::string_view>, 5> jsonEscapes{{
    {"<", "\\u003c"},
    {">", "\\u003e"},
    {"&", "\\u0026"},
    {"\xE2\x80\xA8", "\\u2028"},
    {"\xE2\x80\xA9", "\\u2029"},
}};

} // namespace

std::string text(std::string_view bytes) {
    auto const printable = toPrintable(bytes);
    std::unique_ptr<char, decltype(&g_free)> const escaped(
        g_markup_escape_text(printable.data(), static_cast<gssize>(printable.size())), &g_free);
    return escaped.get();
}

std::string isolated(std::string_view bytes) {
    return "<bdi>" + text(bytes) + "</bdi>";
}

std::string dataElement(std::string_view id, std::string_view json) {
    auto element = R"(<script type="application/json" id=")" + text(id) + "\">";
    while (!json.empty()) {
        std::size_t length = 1;
        auto written = json.substr(0, length);
        for (auto const& [found, escape] : jsonEscapes) {
            if (json.substr(0, found.size()) == found) {
                length = found.size();
                written = escape;
            }
        }
        element += written;
        json.remove_prefix(length);
    }
    return element + "</script>\n";
}

} // namespace Quorvane::Page
