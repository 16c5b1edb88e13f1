// SPDX-License-Identifier: Apache-2.0
#include "apps/page/Escape.h"
#include "apps/page/Jumps.h"
#include "apps/page/Page.h"
#include "apps/show/NodeText.h"
#include "apps/show/Page.h"
#include "apps/show/SvgText.h"
#include "apps/show/TreePicture.h"
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
    std::vector<Page::Jump> jumps{{"nodes", "The tree"}, {"rules", "Elite rules"}};
    if (!messages.empty()) {
        jumps.insert(jumps.begin(), {"try", "Messages", true});
    }
    return Page::jumps(jumps);
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

std::string s_barsLegend(Drawing const& drawing) {
    std::string const text =
        "In the outline a bar is as long as the share of the training mail that reaches the node; "
        "its orange part is spam and its blue part ham, as in the whole bars of the drawing.";
    return drawing.m_traffic == nullptr
               ? text + " The thicker a line of the drawing, the more of this mail goes there."
               : text + " The second bar is the measured mail; the thicker a line of the drawing, "
                        "the more of the measured mail goes there.";
}

std::string s_legend(Drawing const& drawing) {
    std::string shades;
    for (std::size_t shade = 0; shade < shadeCount; ++shade) {
        shades += "<span class=\"s" + std::to_string(shade) + "\"></span>";
    }
    return "<p class=\"legend\">sure of ham <span class=\"shades\" aria-hidden=\"true\">" + shades +
           "</span> sure of spam</p>\n<details class=\"muted\"><summary>How to read "
           "this</summary>\n"
           "<p>The walk enters the first child whose test holds; the deepest node that it reaches "
           "decides. Colours show the probability of spam "
           "that a node gives. " +
           s_barsLegend(drawing) +
           " In tests: <code>not-analysed</code> means that there was no such hop, "
           "<code>n/a</code> that the question does not arise, <code>unknown</code> that a part of "
           "the comparison is missing.</p></details>\n";
}

constexpr char search[] =
    R"(<div class="controls scripted-only no-print"><input id="search" type="search" placeholder="Search: words, attribute, node, rule" aria-label="Search tree and elite rules"><span id="found" role="status"></span></div>
)";

constexpr char zoom[] =
    R"(<div class="controls scripted-only no-print" role="group" aria-label="Size of the drawing"><button id="zoom-out" type="button" aria-label="Smaller">&minus;</button><button id="zoom-in" type="button" aria-label="Larger">+</button><button id="zoom-fit" type="button">Whole tree</button><button id="zoom-read" type="button">Readable</button><output id="zoom"></output><span class="muted keys">Ctrl and the wheel; + - 0 1</span></div>
)";

constexpr char levels[] =
    R"(<div class="controls scripted-only no-print"><button id="open-level" type="button">Open a level</button><button id="close-all" type="button">Close all</button></div>
)";

// Screen readers read the outline, which says the same and more.
std::string s_picture(Drawing const& drawing) {
    auto const picture = treePicture(drawing, Digits::fixed);
    constexpr double frame = 8.0; // for the outlines of marked boxes
    return "<div id=\"drawing\" class=\"scroll\" role=\"region\" tabindex=\"0\" "
           "aria-label=\"Drawing of the tree\"><svg aria-hidden=\"true\" viewBox=\"" +
           svgNumber(-frame) + ' ' + svgNumber(-frame) + ' ' +
           svgNumber(picture.m_width + 2 * frame) + ' ' + svgNumber(picture.m_height + 2 * frame) +
           "\">\n" + picture.m_svg + "</svg></div>\n";
}

std::string s_treeSection(Drawing const& drawing) {
    auto const unreached = unreachedText(drawing.m_rules);
    return std::string("<section>\n<h2 id=\"nodes\">The tree</h2>\n") + search +
           "<div class=\"tree-parts\">\n<div>\n" + zoom + s_picture(drawing) + s_legend(drawing) +
           "</div>\n<div>\n" + levels + pageTree(drawing) +
           (unreached.empty() ? "" : "<p>" + unreached + "</p>\n") + "</div>\n</div>\n</section>\n";
}

} // namespace

std::string pageName(std::optional<Rules::RuleName> const& name) {
    if (!name) {
        return {};
    }
    auto const sentence = name->m_sentence.empty() ? "" : " " + Page::isolated(name->m_sentence);
    return "<span class=\"named\"><b>" + Page::text(name->m_name) + "</b>" + sentence + "</span>";
}

std::string htmlDrawing(Drawing const& drawing, PageExtras const& extras) {
    auto const& rules = drawing.m_rules;
    auto const messages = pageMessages(extras);
    Page::Document document;
    document.m_title = "Rules: " + rules.m_name;
    document.m_style =
        std::string(shadesStyle()) + std::string(pictureStyle()) + std::string(pageStyle());
    document.m_script = pageScript();
    document.m_asksOrigin = extras.m_served.has_value();
    document.m_body = "<header class=\"top\">\n<h1>Rules</h1>\n<p class=\"muted\">" +
                      Page::isolated(rules.m_name) + "</p>\n" + s_facts(drawing) +
                      s_problem(rules) + s_whereToJudge(rules, extras) + "</header>\n" +
                      s_jumps(messages) + "<main>\n" + messages + s_treeSection(drawing) +
                      "<section>\n<h2 id=\"rules\">Elite rules</h2>\n" + pageEliteTable(drawing) +
                      "</section>\n</main>\n<footer class=\"end\">Written by qvrules show. The "
                      "page loads nothing and sends nothing" +
                      (extras.m_served ? " but messages to the program that serves it" : "") +
                      ".</footer>\n" + Page::dataElement("data", pageData(extras));
    return Page::html(document);
}

} // namespace Quorvane::Show
