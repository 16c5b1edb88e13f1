// SPDX-License-Identifier: Apache-2.0
#include "apps/charts/Drawing.h"

#include "apps/page/Escape.h"
#include "apps/page/TextWidth.h"
#include "rules/evaluate/FigureText.h"

#include <array>

namespace Quorvane::Charts {

namespace {

std::string s_attribute(std::string_view name, std::string_view value) {
    return ' ' + std::string(name) + "=\"" + std::string(value) + '"';
}

std::string s_number(std::string_view name, double value) {
    return s_attribute(name, coordinate(value));
}

std::string s_points(std::vector<Point> const& points) {
    std::string list;
    for (auto const& point : points) {
        list += (list.empty() ? "" : " ") + coordinate(point.m_x) + ',' + coordinate(point.m_y);
    }
    return s_attribute("points", list);
}

std::string s_title(std::string_view tooltip) {
    return tooltip.empty() ? "" : "<title>" + Page::text(tooltip) + "</title>";
}

// As charts.css has it.
double s_size(std::string_view classes) {
    if (classes == "tick") {
        return 11.0;
    }
    return classes == "count" ? 10.0 : Page::drawnTextSize;
}

} // namespace

std::string coordinate(double value) {
    auto shown = Rules::fixedText(value, 1);
    if (shown.ends_with(".0")) {
        shown.resize(shown.size() - 2);
    }
    return shown == "-0" ? "0" : shown;
}

void Drawing::line(Point from, Point to, std::string_view classes) {
    add("line", classes,
        s_number("x1", from.m_x) + s_number("y1", from.m_y) + s_number("x2", to.m_x) +
            s_number("y2", to.m_y));
}

void Drawing::curve(std::vector<Point> const& points, std::string_view classes) {
    add("polyline", classes, s_points(points));
}

void Drawing::area(std::vector<Point> const& points, std::string_view classes) {
    add("polygon", classes, s_points(points));
}

void Drawing::rectangle(Box const& box, std::string_view classes, std::string_view tooltip) {
    add("rect", classes,
        s_number("x", box.m_left) + s_number("y", box.m_top) + s_number("width", box.m_width) +
            s_number("height", box.m_height),
        s_title(tooltip));
}

void Drawing::dot(Point centre, double radius, std::string_view classes, std::string_view tooltip) {
    add("circle", classes,
        s_number("cx", centre.m_x) + s_number("cy", centre.m_y) + s_number("r", radius),
        s_title(tooltip));
}

void Drawing::text(Point base, Anchor anchor, std::string_view content, std::string_view classes,
                   double room) {
    constexpr std::array anchors{"start", "middle", "end"};
    add("text", classes,
        s_number("x", base.m_x) + s_number("y", base.m_y) +
            s_attribute("text-anchor", anchors.at(static_cast<std::size_t>(anchor))) +
            Page::fittingAttributes(content, room, s_size(classes)),
        Page::text(content));
}

void Drawing::upwardText(Point base, std::string_view content, std::string_view classes,
                         double room) {
    add("text", classes,
        s_attribute("transform", "translate(" + coordinate(base.m_x) + ' ' + coordinate(base.m_y) +
                                     ") rotate(-90)") +
            Page::fittingAttributes(content, room, s_size(classes)),
        Page::text(content));
}

void Drawing::add(std::string const& tag, std::string_view classes, std::string const& attributes,
                  std::string const& content) {
    m_content += '<' + tag + s_attribute("class", classes) + attributes +
                 (content.empty() ? "/>\n" : '>' + content + "</" + tag + ">\n");
}

std::string Drawing::svg(Caption const& caption) const {
    auto const title = caption.m_id + "-title";
    auto const description = caption.m_id + "-description";
    return "<svg class=\"chart\" role=\"img\"" +
           s_attribute("aria-labelledby", title + ' ' + description) + viewBox() + ">\n<title" +
           s_attribute("id", title) + '>' + Page::text(caption.m_title) + "</title>\n<desc" +
           s_attribute("id", description) + '>' + Page::text(caption.m_description) + "</desc>\n" +
           m_content + "</svg>\n";
}

std::string Drawing::decoration(std::string_view classes) const {
    return "<svg" + s_attribute("class", "chart " + std::string(classes)) +
           s_attribute("aria-hidden", "true") + viewBox() + ">\n" + m_content + "</svg>\n";
}

std::string Drawing::viewBox() const {
    return s_attribute("viewBox", "0 0 " + coordinate(m_width) + ' ' + coordinate(m_height));
}

} // namespace Quorvane::Charts
