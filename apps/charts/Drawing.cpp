// SPDX-License-Identifier: Apache-2.0
#include "apps/charts/Drawing.h"

#include "apps/page/Escape.h"
#include "apps/page/TextWidth.h"
#include "rules/evaluate/FigureText.h"

namespace Quorvane::Charts {

namespace {

std::string s_attribute(std::string_view name, std::string_view value) {
    return ' ' + std::string(name) + "=\"" + std::string(value) + '"';
}

std::string s_number(std::string_view name, double value) {
    return s_attribute(name, coordinate(value));
}

// As charts.css has it.
double s_size(std::string_view classes) {
    if (classes == "tick") {
        return 11.0;
    }
    return classes == "count" ? 10.0 : Page::drawnTextSize;
}

std::string_view s_word(Anchor anchor) {
    switch (anchor) {
    case Anchor::start:
        return "start";
    case Anchor::middle:
        return "middle";
    case Anchor::end:
        break;
    }
    return "end";
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
    m_content += "<line" + s_attribute("class", classes) + s_number("x1", from.m_x) +
                 s_number("y1", from.m_y) + s_number("x2", to.m_x) + s_number("y2", to.m_y) +
                 "/>\n";
}

void Drawing::curve(std::vector<Point> const& points, std::string_view classes) {
    polygon("polyline", points, classes);
}

void Drawing::area(std::vector<Point> const& points, std::string_view classes) {
    polygon("polygon", points, classes);
}

void Drawing::rectangle(Box const& box, std::string_view classes, std::string_view tooltip) {
    m_content += "<rect" + s_attribute("class", classes) + s_number("x", box.m_left) +
                 s_number("y", box.m_top) + s_number("width", box.m_width) +
                 s_number("height", box.m_height);
    close("rect", tooltip);
}

void Drawing::dot(Point centre, double radius, std::string_view classes, std::string_view tooltip) {
    m_content += "<circle" + s_attribute("class", classes) + s_number("cx", centre.m_x) +
                 s_number("cy", centre.m_y) + s_number("r", radius);
    close("circle", tooltip);
}

void Drawing::text(Point base, Anchor anchor, std::string_view content, std::string_view classes,
                   double room) {
    label(s_number("x", base.m_x) + s_number("y", base.m_y) +
              s_attribute("text-anchor", s_word(anchor)) +
              Page::fittingAttributes(content, room, s_size(classes)),
          content, classes);
}

void Drawing::upwardText(Point base, std::string_view content, std::string_view classes,
                         double room) {
    label(s_attribute("transform", "translate(" + coordinate(base.m_x) + ' ' +
                                       coordinate(base.m_y) + ") rotate(-90)") +
              Page::fittingAttributes(content, room, s_size(classes)),
          content, classes);
}

void Drawing::label(std::string const& place, std::string_view content, std::string_view classes) {
    m_content +=
        "<text" + s_attribute("class", classes) + place + '>' + Page::text(content) + "</text>\n";
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

void Drawing::polygon(std::string_view tag, std::vector<Point> const& points,
                      std::string_view classes) {
    std::string list;
    for (auto const& point : points) {
        list += (list.empty() ? "" : " ") + coordinate(point.m_x) + ',' + coordinate(point.m_y);
    }
    m_content += '<' + std::string(tag) + s_attribute("class", classes) +
                 s_attribute("points", list) + "/>\n";
}

void Drawing::close(std::string_view tag, std::string_view tooltip) {
    m_content += tooltip.empty()
                     ? "/>\n"
                     : "><title>" + Page::text(tooltip) + "</title></" + std::string(tag) + ">\n";
}

} // namespace Quorvane::Charts
