// SPDX-License-Identifier: Apache-2.0
#include "apps/show/NodeText.h"
#include "apps/show/SvgText.h"
#include "apps/show/TreePicture.h"
#include "apps/text/MadeBy.h"

namespace Quorvane::Show {

namespace {

// Pixels.
constexpr double margin = 24.0;
constexpr double lineHeight = 18.0;
constexpr double titleHeight = 30.0;
constexpr double lesserSize = 11.0;
constexpr double titleSize = 20.0;

// What the rules are called, a legend and the elite rules stand above the tree.
class SvgWriter {
  public:
    explicit SvgWriter(Drawing const& drawing)
        : m_drawing(drawing), m_rules(drawing.m_rules),
          m_tree(treePicture(drawing, Digits::significant)), m_width(m_tree.m_width + 2 * margin) {}

    std::string write() {
        head();
        auto const height = m_top + m_tree.m_height + margin;
        auto const size = svgNumber(m_width) + "\" height=\"" + svgNumber(height) +
                          "\" viewBox=\"0 0 " + svgNumber(m_width) + ' ' + svgNumber(height);
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
               "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" +
               size + "\" role=\"img\">\n<!-- " + madeBy + " -->\n<title>" +
               svgText(m_rules.m_name) + "</title>\n<style>\n" + std::string(shadesStyle()) +
               std::string(svgStyle()) + std::string(pictureStyle()) +
               "</style>\n<rect class=\"paper\" width=\"100%\" height=\"100%\"/>\n" + m_text +
               "<g transform=\"translate(" + svgNumber(margin) + ' ' + svgNumber(m_top) + ")\">\n" +
               m_tree.m_svg + "</g>\n</svg>\n";
    }

  private:
    void head() {
        auto y = margin + 14;
        m_text += svgLabel({margin, y, "title", m_rules.m_name, roomFrom(margin), titleSize});
        y += titleHeight;
        if (m_rules.m_loadProblem) {
            m_text += svgLabel({margin, y, "warn",
                                "No host would load these rules: " + *m_rules.m_loadProblem,
                                roomFrom(margin)});
            y += lineHeight;
        }
        legend(y);
        y += titleHeight;
        for (auto const& line : eliteLines(m_rules)) {
            m_text += svgLabel({margin, y, "", line, roomFrom(margin)});
            y += lineHeight;
        }
        m_top = y + margin / 2;
    }

    void legend(double y) {
        constexpr double start = margin + 72;
        m_text += svgLabel({margin, y, "lesser", "sure of ham", start - margin - 8, lesserSize});
        constexpr double side = 14;
        for (std::size_t shade = 0; shade < shadeCount; ++shade) {
            m_text += "<rect class=\"s" + std::to_string(shade) + "\" x=\"" +
                      svgNumber(start + side * static_cast<double>(shade)) + "\" y=\"" +
                      svgNumber(y - 11) + "\" width=\"14\" height=\"14\"/>\n";
        }
        auto const* const measured =
            m_drawing.m_traffic != nullptr ? "the measured mail" : "the training mail";
        constexpr double end = start + side * shadeCount + 8;
        m_text += svgLabel({end, y, "lesser",
                            std::string("sure of spam; the thicker a line, the more of ") +
                                measured + " goes this way",
                            roomFrom(end), lesserSize});
    }

    double roomFrom(double left) const { return m_width - left - margin; }

    Drawing const& m_drawing;
    ShownRules const& m_rules;
    TreePicture m_tree;
    double m_width;
    double m_top = 0.0;
    std::string m_text;
};

} // namespace

std::string svgDrawing(Drawing const& drawing) {
    return SvgWriter(drawing).write();
}

} // namespace Quorvane::Show
