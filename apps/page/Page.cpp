// SPDX-License-Identifier: Apache-2.0
#include "apps/page/Page.h"

#include "apps/page/Escape.h"

#include <array>
#include <glib.h>
#include <memory>
#include <stdexcept>

namespace Quorvane::Page {

namespace {

constexpr gsize sha256Size = 32;

// `tag` with `content`, which is ours, as it is.
std::string s_element(std::string const& tag, std::string const& content) {
    using namespace std::string_view_literals;
    if (content.find("</" + tag) != std::string::npos ||
        content.find_first_of("\r\0"sv) != std::string::npos) {
        throw std::invalid_argument("the " + tag +
                                    " of a page would end its element or change in it");
    }
    return '<' + tag + '>' + content + "</" + tag + ">\n";
}

std::string s_policy(std::string const& style, std::string const& script, bool asksOrigin) {
    return std::string(asksOrigin ? "connect-src 'self'; " : "") +
           "default-src 'none'; base-uri 'none'; form-action 'none'; style-src '" +
           contentHash(style) + "'; script-src " +
           (script.empty() ? "'none'" : '\'' + contentHash(script) + '\'');
}

} // namespace

std::string contentHash(std::string_view text) {
    std::unique_ptr<GChecksum, decltype(&g_checksum_free)> const checksum(
        g_checksum_new(G_CHECKSUM_SHA256), &g_checksum_free);
    // Byte type of the library; the empty text has no address to give.
    auto const* const bytes = reinterpret_cast<guchar const*>(text.empty() ? "" : text.data());
    g_checksum_update(checksum.get(), bytes, static_cast<gssize>(text.size()));
    std::array<guint8, sha256Size> digest{};
    gsize size = digest.size();
    g_checksum_get_digest(checksum.get(), digest.data(), &size);
    std::unique_ptr<char, decltype(&g_free)> const base64(g_base64_encode(digest.data(), size),
                                                          &g_free);
    return std::string("sha256-") + base64.get();
}

std::string html(Document const& document) {
    auto const style = std::string(theme()) + document.m_style;
    auto const& script = document.m_script;
    std::string page = "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n";
    page += "<meta http-equiv=\"Content-Security-Policy\" content=\"" +
            s_policy(style, script, document.m_asksOrigin) + "\">\n";
    page += "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
            "<meta name=\"color-scheme\" content=\"light dark\">\n"
            "<meta name=\"referrer\" content=\"no-referrer\">\n";
    page += "<title>" + text(document.m_title) + "</title>\n";
    page += s_element("style", style);
    page += "</head>\n<body>\n" + document.m_body;
    page += script.empty() ? "" : s_element("script", script);
    return page + "</body>\n</html>\n";
}

} // namespace Quorvane::Page
