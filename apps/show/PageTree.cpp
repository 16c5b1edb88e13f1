// SPDX-License-Identifier: Apache-2.0
#include "apps/page/Escape.h"
#include "apps/show/NodeText.h"
#include "apps/show/Page.h"
#include "apps/text/NumberText.h"
#include "rules/evaluate/FigureText.h"

#include <algorithm>
#include <cmath>

namespace Quorvane::Show {

namespace {

// Deeper levels are not indented any more; the page has a class for each up to here.
constexpr std::size_t indentedLevels = 16;

// "25.0" of a share of 0.25, for the width of a bar of 100.
std::string s_width(double share) {
    return Rules::fixedText(100.0 * std::clamp(std::abs(share), 0.0, 1.0), 2);
}

std::string s_bar(double share, std::string const& kind) {
    return R"(<svg class="bar" viewBox="0 0 100 5" preserveAspectRatio="none" aria-hidden="true">)"
           R"(<rect class="rail" width="100" height="5"/><rect class=")" +
           kind + "\" width=\"" + s_width(share) + "\" height=\"5\"/></svg>";
}

std::string s_capital(std::string text) {
    if (!text.empty() && text[0] >= 'a' && text[0] <= 'z') {
        text[0] = static_cast<char>(text[0] - 'a' + 'A');
    }
    return text;
}

std::string s_span(std::string const& kind, std::string const& html) {
    return "<span class=\"" + kind + "\">" + html + "</span>";
}

class TreePageWriter {
  public:
    explicit TreePageWriter(Drawing const& drawing) : m_drawing(drawing) {}

    std::string write() {
        m_html = "<ul id=\"tree\" role=\"tree\" aria-label=\"The tree of the rules\">\n";
        node(0, {1, 1});
        return m_html + "</ul>\n";
    }

  private:
    // Which of how many siblings.
    struct Position {
        std::size_t m_place;
        std::size_t m_of;
    };

    void node(std::size_t index, Position position) { // NOLINT(misc-no-recursion)
        auto const& node = m_drawing.m_rules.m_nodes[index];
        auto const number = std::to_string(node.m_number);
        item(node.m_depth, position, " id=\"node-" + number + "\" data-number=\"" + number + '"',
             badge(node) + what(node) + figures(node));
        for (std::size_t slot = 0; slot < node.m_branches.size(); ++slot) {
            branch(node, slot);
        }
    }

    void branch(ShownNode const& node, std::size_t slot) { // NOLINT(misc-no-recursion)
        auto const& branch = node.m_branches[slot];
        Position const position{slot + 1, node.m_branches.size()};
        if (branch.m_kind == ShownBranch::Kind::node) {
            this->node(branch.m_index, position);
            return;
        }
        auto text = Page::text(branch.m_text);
        if (branch.m_kind != ShownBranch::Kind::end) {
            text = "<a class=\"to-node\" href=\"#node-" + std::to_string(branch.m_child) + "\">" +
                   text + "</a>";
        }
        item(node.m_depth + 1, position, "",
             s_span("badge", "") +
                 s_span("what", s_span(branch.isProblem() ? "trouble" : "words", text)));
    }

    void item(std::size_t depth, Position position, std::string const& attributes,
              std::string const& content) {
        m_html += "<li role=\"treeitem\" class=\"l" +
                  std::to_string(std::min(depth, indentedLevels)) + '"' + attributes +
                  " aria-level=\"" + std::to_string(depth + 1) + "\" aria-posinset=\"" +
                  std::to_string(position.m_place) + "\" aria-setsize=\"" +
                  std::to_string(position.m_of) + "\" tabindex=\"-1\"><div class=\"row\">" +
                  "<span class=\"twig\" aria-hidden=\"true\"></span>" + content + "</div></li>\n";
    }

    static std::string badge(ShownNode const& node) {
        double const confidence = node.m_record.confidence;
        auto const shade = "badge s" + std::to_string(shadeOf(confidence));
        return isShare(confidence)
                   ? s_span(shade, percentText(confidence) + s_span("hidden-text", " spam"))
                   : s_span(shade, "?");
    }

    static std::string what(ShownNode const& node) {
        auto html = s_span("words", Page::text(s_capital(node.m_test.m_sentence))) +
                    s_span("label", "node " + std::to_string(node.m_number));
        if (!node.isRoot()) {
            html += "<code>" + Page::text(node.m_test.m_condition) + "</code>";
        }
        if (node.m_depth > indentedLevels) {
            html += s_span("label", " level " + std::to_string(node.m_depth + 1));
        }
        if (!node.m_problem.empty()) {
            html += s_span("trouble", Page::text(node.m_problem));
        }
        return s_span("what", html);
    }

    std::string figures(ShownNode const& node) const {
        std::string html;
        if (double const confidence = node.m_record.confidence; !isShare(confidence)) {
            html += s_span("share", spamShareText(confidence));
        }
        if (node.m_share) {
            html += s_bar(*node.m_share, "training") +
                    s_span("share",
                           percentText(*node.m_share) + " of the training mail" + support(node));
        } else {
            html += s_span("share", "support " + supportText(node.m_record.support));
        }
        if (auto const counts = countsLine(node); !counts.empty()) {
            html += s_span("counts", counts);
        }
        return s_span("figures", html + measured(node));
    }

    static std::string support(ShownNode const& node) {
        return node.isRoot() ? "" : ", support " + supportText(node.m_record.support);
    }

    std::string measured(ShownNode const& node) const {
        if (m_drawing.m_traffic == nullptr) {
            return {};
        }
        auto const& traffic = *m_drawing.m_traffic;
        auto const& use = traffic.node(node.m_number);
        auto const decided =
            use.m_decided == 0 ? "" : ", decided " + percentText(traffic.share(use.m_decided));
        return s_bar(traffic.share(use.m_reached), "measured") +
               s_span("share", percentText(traffic.share(use.m_reached)) + " of the measured mail" +
                                   decided);
    }

    Drawing const& m_drawing;
    std::string m_html;
};

} // namespace

std::string pageTree(Drawing const& drawing) {
    return TreePageWriter(drawing).write();
}

} // namespace Quorvane::Show
