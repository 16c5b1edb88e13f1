// SPDX-License-Identifier: Apache-2.0
#include "apps/charts/Drawing.h"

#include <gtest/gtest.h>

namespace Quorvane::Testing {

using namespace Charts;

namespace {

TEST(Drawing, NamesItselfToScreenReaders) {
    Drawing const drawing(380, 12.34);
    EXPECT_EQ(drawing.svg({"roc", "A <title>", "B & C"}),
              "<svg class=\"chart\" role=\"img\" aria-labelledby=\"roc-title roc-description\" "
              "viewBox=\"0 0 380 12.3\">\n"
              "<title id=\"roc-title\">A &lt;title&gt;</title>\n"
              "<desc id=\"roc-description\">B &amp; C</desc>\n</svg>\n");
    EXPECT_EQ(drawing.decoration("bar"),
              "<svg class=\"chart bar\" aria-hidden=\"true\" viewBox=\"0 0 380 12.3\">\n</svg>\n");
}

TEST(Drawing, DrawsShapes) {
    Drawing drawing(10, 10);
    drawing.line({0, 1}, {2, 3}, "grid");
    drawing.curve({{0, 0}, {1.25, 2}}, "curve");
    drawing.area({{0, 0}, {1, 1}}, "under");
    drawing.rectangle({1, 2, 3, 4}, "fill", "a < b");
    drawing.dot({5, 6}, 4.5, "mark");
    auto const svg = drawing.decoration("x");
    EXPECT_EQ(svg.substr(svg.find('\n') + 1),
              "<line class=\"grid\" x1=\"0\" y1=\"1\" x2=\"2\" y2=\"3\"/>\n"
              "<polyline class=\"curve\" points=\"0,0 1.2,2\"/>\n"
              "<polygon class=\"under\" points=\"0,0 1,1\"/>\n"
              "<rect class=\"fill\" x=\"1\" y=\"2\" width=\"3\" height=\"4\">"
              "<title>a &lt; b</title></rect>\n"
              "<circle class=\"mark\" cx=\"5\" cy=\"6\" r=\"4.5\"/>\n</svg>\n");
}

TEST(Drawing, TextIsEscaped) {
    Drawing drawing(10, 10);
    drawing.text({1, 2}, Anchor::middle, "</svg>", "name");
    drawing.upwardText({3, 4}, "1 %", "value");
    drawing.text({5, 6}, Anchor::end, "nn", "tick", 12.0);
    auto const svg = drawing.decoration("x");
    EXPECT_EQ(svg.substr(svg.find('\n') + 1),
              "<text class=\"name\" x=\"1\" y=\"2\" text-anchor=\"middle\">&lt;/svg&gt;</text>\n"
              "<text class=\"value\" transform=\"translate(3 4) rotate(-90)\">1 %</text>\n"
              "<text class=\"tick\" x=\"5\" y=\"6\" text-anchor=\"end\" textLength=\"12\" "
              "lengthAdjust=\"spacingAndGlyphs\">nn</text>\n</svg>\n");
}

TEST(Drawing, CoordinatesAreShortAndKnowNoLocale) {
    EXPECT_EQ(coordinate(3.0), "3");
    EXPECT_EQ(coordinate(1234.56), "1234.6");
    EXPECT_EQ(coordinate(-0.04), "0");
    EXPECT_EQ(coordinate(-2.5), "-2.5");
}

} // namespace
} // namespace Quorvane::Testing
