// SPDX-License-Identifier: Apache-2.0
#include "apps/page/Escape.h"
#include "apps/settings/SettingsTable.h"
#include "apps/show/Page.h"
#include "apps/show/PageServer.h"
#include "apps/text/Utf8.h"

#include <algorithm>
#include <glib.h>
#include <memory>
#include <nlohmann/json.hpp>

namespace Quorvane::Show {

namespace {

using Json = nlohmann::ordered_json;

// Where a message is dropped, pasted or chosen.
constexpr char form[] =
    R"(<label for="pasted">A message, or attributes such as <code>first_helo_dynamic=yes</code>: drop a file anywhere on this page, or paste here.</label>
<textarea id="pasted" spellcheck="false" autocomplete="off" placeholder="first_reverse_dynamic=yes, first_helo_dynamic=yes"></textarea>
<div class="controls no-print"><button id="try-it" class="main" type="button">Judge</button><label class="file-button">Choose a file <input id="file" type="file" class="hidden-text"></label></div>
)";

constexpr char list[] =
    R"(<div class="controls" id="messages" hidden><label>Message <select id="message"></select></label></div>
)";

constexpr char answer[] =
    R"(<div id="answer"><div id="verdict" role="status"></div><div id="explanation"></div></div>)";

// "spam threshold" of "spam-threshold".
std::string s_label(std::string_view name) {
    std::string label(name);
    std::replace(label.begin(), label.end(), '-', ' ');
    return label;
}

// The program checks the values of the fields.
std::string s_settings(HostSettings const& settings) {
    std::string fields;
    for (auto const& row : settingRows()) {
        auto const& facts = row.m_facts;
        if (facts.m_isOfRules) {
            fields += "<label title=\"" + Page::text(facts.m_help) + "\">" + s_label(facts.m_name) +
                      " <input inputmode=\"decimal\" autocomplete=\"off\" name=\"" +
                      std::string(facts.m_name) + "\" value=\"" +
                      Page::text(row.m_show(settings).front()) + "\"></label>";
        }
    }
    return "<details id=\"settings\" class=\"no-print\"><summary>Settings</summary>"
           "<div class=\"controls\">" +
           fields + "</div></details>\n";
}

// JSON has no bytes, and the page sends them unchanged.
std::string s_base64(std::string const& bytes) {
    std::unique_ptr<char, decltype(&g_free)> const text(
        g_base64_encode(reinterpret_cast<guchar const*>(bytes.data()), bytes.size()), &g_free);
    return text.get();
}

Json s_message(PageMessage const& message) {
    if (!message.m_record.empty()) {
        return Json::parse(message.m_record);
    }
    return {{"source", toUtf8(message.m_source)}, {"headers", s_base64(message.m_headers)}};
}

} // namespace

std::string pageMessages(PageExtras const& extras) {
    bool const isServed = extras.m_served.has_value();
    if (!isServed && extras.m_messages.empty()) {
        return {};
    }
    return std::string("<section class=\"trial scripted-only\">\n<h2 id=\"try\">") +
           (isServed ? "Try a message" : "Messages") + "</h2>\n<div class=\"panel\">" +
           (isServed ? form : "") + list + (isServed ? s_settings(*extras.m_served) : "") + answer +
           "</div>\n</section>\n";
}

std::string pageData(PageExtras const& extras) {
    auto messages = Json::array();
    for (auto const& message : extras.m_messages) {
        messages.push_back(s_message(message));
    }
    return Json({{"messages", messages}, {"maxMessage", maxPostedMessage}}).dump();
}

} // namespace Quorvane::Show
