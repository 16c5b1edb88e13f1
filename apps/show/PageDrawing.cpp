// SPDX-License-Identifier: Apache-2.0
#include "apps/page/Escape.h"
#include "apps/page/Page.h"
#include "apps/show/NodeText.h"
#include "apps/show/Page.h"
#include "apps/text/NumberText.h"

namespace Quorvane::Show {

namespace {

std::string s_fact(std::string const& name, std::string const& value) {
    return "<div><dt>" + name + "</dt><dd>" + value + "</dd></div>";
}

std::string s_facts(Drawing const& drawing) {
    auto const& rules = drawing.m_rules;
    auto html = s_fact("version", rules.m_version ? std::to_string(*rules.m_version) : "none") +
                s_fact("elite rules", groupedText(rules.m_elite.size())) +
                s_fact("nodes", groupedText(rules.m_nodes.size())) +
                s_fact("leaves", groupedText(rules.leafCount())) +
                s_fact("depth", groupedText(rules.depth()));
    if (auto const& root = rules.m_nodes.front(); root.isCounted()) {
        html += s_fact("training messages", countText(root.m_record.value1)) +
                s_fact("spam among them", countText(root.m_record.value2));
    }
    if (drawing.m_traffic != nullptr) {
        html += s_fact("measured messages", groupedText(drawing.m_traffic->m_messages)) +
                s_fact("no rule decided", groupedText(drawing.m_traffic->m_undecided)) +
                s_fact("not judgeable", groupedText(drawing.m_traffic->m_notJudgeable));
    }
    return "<dl class=\"facts\">" + html + "</dl>\n";
}

std::string s_jumps(std::string const& messages) {
    return std::string("<nav class=\"jumps no-print\" aria-label=\"Parts of the page\">") +
           (messages.empty() ? "" : "<a class=\"scripted-only\" href=\"#try\">Messages</a>") +
           "<a href=\"#rules\">Elite rules</a><a href=\"#nodes\">The tree</a></nav>\n";
}

// A page in a file has nobody to ask.
std::string s_whereToJudge(ShownRules const& rules, PageExtras const& extras) {
    return rules.m_loadProblem || extras.m_served
               ? ""
               : "<p class=\"muted no-print\"><code>qvrules show RULES --serve</code> judges "
                 "messages in the browser.</p>\n";
}

std::string s_problem(ShownRules const& rules) {
    return rules.m_loadProblem
               ? "<div class=\"panel problem-box\">No host would load these rules: " +
                     Page::text(*rules.m_loadProblem) + "</div>\n"
               : "";
}

std::string s_legend(Drawing const& drawing) {
    std::string shades;
    for (std::size_t shade = 0; shade < shadeCount; ++shade) {
        shades += "<span class=\"s" + std::to_string(shade) + "\"></span>";
    }
    std::string const mail = drawing.m_traffic != nullptr
                                 ? "training mail (grey) and of the measured mail (blue)"
                                 : "training mail";
    return "<p class=\"muted\">The walk enters the first child whose test holds; the deepest node "
           "that it reaches decides. Colours show the probability of spam that a node gives, bars "
           "how much of the " +
           mail +
           " reaches it. In tests: <code>not-analysed</code> means that there was no such hop, "
           "<code>n/a</code> that the question does not arise, <code>unknown</code> that a part of "
           "the comparison is missing.</p>\n<p class=\"legend\">sure of ham <span class=\"shades\" "
           "aria-hidden=\"true\">" +
           shades + "</span> sure of spam</p>\n";
}

std::string s_controls() {
    return "<div class=\"controls scripted-only no-print\"><input id=\"search\" type=\"search\" "
           "placeholder=\"Search: words, attribute, node, rule\" "
           "aria-label=\"Search tree and elite rules\">"
           "<button id=\"open-all\" type=\"button\">Open all</button>"
           "<button id=\"close-all\" type=\"button\">Close all</button>"
           "<span id=\"found\" role=\"status\"></span></div>\n";
}

} // namespace

std::string htmlDrawing(Drawing const& drawing, PageExtras const& extras) {
    auto const& rules = drawing.m_rules;
    auto const messages = pageMessages(extras);
    auto const unreached = unreachedText(rules);
    Page::Document document;
    document.m_title = "Rules: " + rules.m_name;
    document.m_style = std::string(shadesStyle()) + std::string(pageStyle());
    document.m_script = pageScript();
    document.m_asksOrigin = extras.m_served.has_value();
    document.m_body =
        "<header class=\"top\">\n<h1>Rules</h1>\n<p class=\"muted\">" +
        Page::isolated(rules.m_name) + "</p>\n" + s_facts(drawing) + s_problem(rules) +
        s_jumps(messages) + s_whereToJudge(rules, extras) + "</header>\n<main>\n" + messages +
        "<section>\n<h2 id=\"rules\">Elite rules</h2>\n" + pageEliteTable(drawing) +
        "</section>\n<section>\n<h2 id=\"nodes\">The tree</h2>\n" + s_legend(drawing) +
        s_controls() + pageTree(drawing) + (unreached.empty() ? "" : "<p>" + unreached + "</p>\n") +
        "</section>\n</main>\n<footer class=\"end\">Written by qvrules show. The "
        "page loads nothing and sends nothing" +
        (extras.m_served ? " but messages to the program that serves it" : "") + ".</footer>\n" +
        Page::dataElement("data", pageData(extras));
    return Page::html(document);
}

} // namespace Quorvane::Show
