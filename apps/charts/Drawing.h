// SPDX-License-Identifier: Apache-2.0
//
// Drawing: an SVG element being drawn. Colours come from the classes of charts.css, so that one
// drawing serves light and dark pages. Coordinates are CSS pixels from the upper left corner; text
// is escaped here. A plain value.
#pragma once

#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace Quorvane::Charts {

struct Point {
    double m_x = 0.0;
    double m_y = 0.0;
};

struct Box {
    double m_left = 0.0;
    double m_top = 0.0;
    double m_width = 0.0;
    double m_height = 0.0;

    double right() const { return m_left + m_width; }
    double bottom() const { return m_top + m_height; }
};

enum class Anchor { start, middle, end };

// What screen readers say of a drawing. The id of the two texts is unique on the page: letters,
// digits and hyphens.
struct Caption {
    std::string m_id;
    std::string m_title;
    std::string m_description;
};

// For text that stands alone.
inline constexpr double anyRoom = std::numeric_limits<double>::infinity();

class Drawing {
  public:
    Drawing(double width, double height) : m_width(width), m_height(height) {}

    // `classes` are ours. A tooltip is plain text; empty for none.
    void line(Point from, Point to, std::string_view classes);
    void curve(std::vector<Point> const& points, std::string_view classes);
    void area(std::vector<Point> const& points, std::string_view classes);
    void rectangle(Box const& box, std::string_view classes, std::string_view tooltip = {});
    void dot(Point centre, double radius, std::string_view classes, std::string_view tooltip = {});
    // It is kept within `room` pixels, whatever the reader's font is.
    void text(Point base, Anchor anchor, std::string_view content, std::string_view classes,
              double room = anyRoom);
    // Runs upwards from `base`.
    void upwardText(Point base, std::string_view content, std::string_view classes,
                    double room = anyRoom);

    // The whole element; a decoration is hidden from screen readers.
    std::string svg(Caption const& caption) const;
    std::string decoration(std::string_view classes) const;

  private:
    std::string viewBox() const;
    void add(std::string const& tag, std::string_view classes, std::string const& attributes,
             std::string const& content = {});

    double m_width;
    double m_height;
    std::string m_content;
};

// A coordinate as text: with a tenth of a pixel at most, in any locale.
std::string coordinate(double value);

} // namespace Quorvane::Charts
