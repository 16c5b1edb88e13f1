// SPDX-License-Identifier: Apache-2.0
#include "apps/show/NodeText.h"
#include "apps/story/RuleNaming.h"
#include "apps/text/Utf8.h"

#include <algorithm>
#include <functional>

namespace Quorvane::Show {

namespace {

constexpr std::size_t guideWidth = 3;
// Of the words of a test: with less the figures move below them.
constexpr std::size_t minTestWidth = 36;
// They can be told apart with any colour vision.
constexpr char orange[] = "38;5;208";
constexpr char blue[] = "38;5;39";
constexpr char dim[] = "2";
constexpr char bold[] = "1";

struct Guides {
    char const* m_through;
    char const* m_branch;
    char const* m_last;
    char const* m_cut; // instead of those for which there is no room
    char const* m_to;
    char const* m_back;
};
constexpr Guides boxes{"│  ", "├─ ", "└─ ", "⋯  ", "→ ", "↺ "};
constexpr Guides ascii{"|  ", "|- ", "`- ", ".. ", "-> ", "-> "};

// A column beside the tree.
struct Figure {
    std::string m_heading;
    // Of one node; empty where there is nothing to say.
    std::function<std::string(ShownNode const&)> m_text;
    // The first to go where there is no room for all.
    bool m_isLesser = false;
};

Figure s_count(char const* heading, std::int32_t DTNode::*count, bool isLesser) {
    return {heading,
            [count](ShownNode const& node) {
                return node.isCounted() ? countText(node.m_record.*count) : "";
            },
            isLesser};
}

Figure s_measured(char const* heading, Traffic const& traffic,
                  std::uint64_t Traffic::Use::*messages) {
    return {heading, [&traffic, messages](ShownNode const& node) {
                return percentText(traffic.share(traffic.node(node.m_number).*messages));
            }};
}

// Probability of spam first; counts where the file has any; measured shares where there are any.
std::vector<Figure> s_figures(Drawing const& drawing) {
    std::vector<Figure> figures{
        {"spam", [](ShownNode const& node) { return percentText(node.m_record.confidence); }},
        {"support", [](ShownNode const& node) {
             auto const support = node.m_record.support;
             return node.isRoot() && support == 0.0 ? "" : supportText(support);
         }}};
    auto const& nodes = drawing.m_rules.m_nodes;
    if (std::any_of(nodes.begin(), nodes.end(), std::mem_fn(&ShownNode::isCounted))) {
        figures.push_back(s_count("messages", &DTNode::value1, false));
        figures.push_back(s_count("spam", &DTNode::value2, true));
        figures.push_back(s_count("ham", &DTNode::value3, true));
    }
    if (drawing.m_traffic != nullptr) {
        figures.push_back(s_measured("measured", *drawing.m_traffic, &Traffic::Use::m_reached));
        figures.push_back(s_measured("decided", *drawing.m_traffic, &Traffic::Use::m_decided));
    }
    return figures;
}

class TreeWriter {
  public:
    TreeWriter(Drawing const& drawing, TextStyle const& style)
        : m_drawing(drawing), m_style(style), m_guides(style.m_isUtf8 ? boxes : ascii),
          m_figures(s_figures(drawing)) {
        measureFigures();
        if (isTooWide()) {
            std::erase_if(m_figures, [](auto const& figure) { return figure.m_isLesser; });
            measureFigures();
        }
        m_isNarrow = isTooWide();
        m_left = m_isNarrow ? m_style.m_width
                            : std::min(neededWidth(), m_style.m_width - m_figuresWidth);
    }

    std::string write() {
        if (!m_isNarrow) {
            headings();
        }
        node(0, "");
        return std::move(m_text);
    }

  private:
    void measureFigures() {
        m_widths.clear();
        m_figuresWidth = 0;
        for (auto const& figure : m_figures) {
            auto width = columns(figure.m_heading);
            for (auto const& node : m_drawing.m_rules.m_nodes) {
                width = std::max(width, columns(figure.m_text(node)));
            }
            m_widths.push_back(width);
            m_figuresWidth += width + 2;
        }
    }

    bool isTooWide() const { return m_style.m_width < m_figuresWidth + minTestWidth; }

    // Columns of the longest line when none is broken.
    std::size_t neededWidth() const {
        std::size_t width = minTestWidth;
        for (auto const& node : m_drawing.m_rules.m_nodes) {
            auto const words = std::to_string(node.m_number).size() + 2 + node.m_test.m_test.size();
            width = std::max(width, node.m_depth * guideWidth + words);
        }
        return width;
    }

    void headings() {
        std::string line(m_left, ' ');
        for (std::size_t i = 0; i < m_figures.size(); ++i) {
            line += "  " + rightAligned(m_figures[i].m_heading, m_widths[i]);
        }
        m_text += coloured(m_style, dim, line) + '\n';
    }

    // `mark`: the guide of this line; m_path holds those of the lines below it.
    void node(std::size_t index, std::string const& mark) { // NOLINT(misc-no-recursion)
        auto const& shown = m_drawing.m_rules.m_nodes[index];
        auto const number = std::to_string(shown.m_number) + "  ";
        auto const below = std::string(shown.m_branches.empty() ? "" : m_guides.m_through);
        auto const lines = wrapped(shown.m_test.m_test, testWidth(number.size()));
        for (std::size_t i = 0; i < lines.size(); ++i) {
            line(i == 0 ? guides(mark) : guides(after(mark)) + padded(below, number.size()),
                 i == 0 ? number : "", lines[i], i == 0 ? &shown : nullptr);
        }
        auto const under = guides(after(mark)) + padded(below, number.size());
        if (m_isNarrow) {
            plain(under, under, figuresInOneLine(shown), dim);
        }
        if (shown.m_name) {
            plain(under, under, nameAndSentence(&*shown.m_name), dim);
        }
        if (!shown.m_problem.empty()) {
            plain(under, under, "! " + shown.m_problem, orange);
        }
        branches(shown, mark);
    }

    void branches(ShownNode const& shown, std::string const& mark) { // NOLINT(misc-no-recursion)
        if (!mark.empty()) {
            m_path.push_back(after(mark));
        }
        for (auto const& branch : shown.m_branches) {
            bool const isLast = &branch == &shown.m_branches.back();
            this->branch(branch, isLast ? m_guides.m_last : m_guides.m_branch);
        }
        if (!mark.empty()) {
            m_path.pop_back();
        }
    }

    void branch(ShownBranch const& branch, std::string const& mark) { // NOLINT(misc-no-recursion)
        using Kind = ShownBranch::Kind;
        if (branch.m_kind == Kind::node) {
            node(branch.m_index, mark);
            return;
        }
        auto const* const sign = branch.m_kind == Kind::elsewhere ? m_guides.m_to
                                 : branch.m_kind == Kind::circle  ? m_guides.m_back
                                                                  : "! ";
        plain(guides(mark), guides(after(mark)), sign + branch.m_text,
              branch.isProblem() ? orange : "");
    }

    // What stands below a mark, on the lines of the same node and of those under it.
    std::string after(std::string const& mark) const {
        if (mark.empty()) {
            return "";
        }
        return mark == m_guides.m_last ? std::string(guideWidth, ' ') : m_guides.m_through;
    }

    // Guides take half of the words' room at most; of deeper ones the last are shown.
    std::string guides(std::string const& mark) const {
        auto const room = m_left / 2 / guideWidth;
        bool const isCut = m_path.size() + 1 > room;
        std::string text = isCut ? m_guides.m_cut : "";
        for (auto i = isCut ? m_path.size() + 2 - room : 0; i < m_path.size(); ++i) {
            text += m_path[i];
        }
        return text + mark;
    }

    std::size_t testWidth(std::size_t numberWidth) const {
        auto const shown = std::min(m_path.size() + 1, m_left / 2 / guideWidth);
        auto const taken = shown * guideWidth + numberWidth;
        return m_left > taken ? m_left - taken : 1;
    }

    void line(std::string const& guides, std::string const& number, std::string const& words,
              ShownNode const* node) {
        m_text += coloured(m_style, dim, guides) + coloured(m_style, bold, number) + words;
        if (node != nullptr && !m_isNarrow) {
            m_text.append(m_left - std::min(m_left, columns(guides + number + words)), ' ');
            for (std::size_t i = 0; i < m_figures.size(); ++i) {
                auto const text = m_figures[i].m_text(*node);
                m_text +=
                    coloured(m_style, colourOf(*node, i), "  " + rightAligned(text, m_widths[i]));
            }
            m_text.erase(m_text.find_last_not_of(' ') + 1);
        }
        m_text += '\n';
    }

    // A line of its own, wrapped where it is too long: the rest has other guides.
    void plain(std::string const& guides, std::string const& guidesUnder, std::string const& words,
               char const* colour) {
        auto const taken = columns(guides);
        auto const* before = &guides;
        for (auto const& line :
             wrapped(words, m_style.m_width - std::min(m_style.m_width - 1, taken))) {
            m_text += coloured(m_style, dim, *before) +
                      (*colour == '\0' ? line : coloured(m_style, colour, line)) + '\n';
            before = &guidesUnder;
        }
    }

    std::string figuresInOneLine(ShownNode const& node) const {
        std::string text;
        for (auto const& figure : m_figures) {
            auto const value = figure.m_text(node);
            if (!value.empty()) {
                text += (text.empty() ? "" : ", ") + figure.m_heading + ' ' + value;
            }
        }
        return text;
    }

    // The first figure is the spam share, the others are dim.
    static char const* colourOf(ShownNode const& node, std::size_t figure) {
        if (figure != 0) {
            return dim;
        }
        auto const shade = shadeOf(node.m_record.confidence);
        return shade == shadeCount - 1 ? orange : shade == 0 ? blue : "0";
    }

    Drawing const& m_drawing;
    TextStyle const& m_style;
    Guides const& m_guides;
    std::vector<Figure> m_figures;
    std::vector<std::size_t> m_widths;
    std::size_t m_figuresWidth = 0;
    std::size_t m_left = 0; // columns for guides, number and words
    bool m_isNarrow = false;
    std::vector<std::string> m_path;
    std::string m_text;
};

} // namespace

std::string textTree(Drawing const& drawing, TextStyle const& style) {
    return TreeWriter(drawing, style).write();
}

} // namespace Quorvane::Show
