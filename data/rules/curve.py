# SPDX-License-Identifier: Apache-2.0
"""A line chart as SVG: a line for each name over the same steps, values from 0 to 1."""
import html

WIDTH, HEIGHT, LEFT, TOP, BOTTOM, NAMES = 720, 360, 50, 20, 300, 480
COLOURS = ("#0b6fa4", "#c2410c", "#15803d", "#7e22ce", "#a16207", "#be185d")


def text(x, y, words, anchor="start", colour="#333"):
    return (f'<text x="{x:.0f}" y="{y:.0f}" text-anchor="{anchor}" fill="{colour}">'
            f"{html.escape(words)}</text>")


def height_of(value):
    return BOTTOM - value * (BOTTOM - TOP)


def axes(steps, places):
    for tenth in range(0, 11, 2):
        y = height_of(tenth / 10)
        yield f'<path d="M{LEFT} {y:.0f}H{NAMES - 10}" stroke="#ddd"/>'
        yield text(LEFT - 8, y + 4, f"{10 * tenth} %", "end")
    for place, step in zip(places, steps):
        yield text(place, BOTTOM + 20, step, "middle")


def names_apart(lines):
    """Heights for the names of the lines, in the order of their ends and never on each other."""
    heights, last = {}, -100.0
    for name, values in sorted(lines.items(), key=lambda line: -line[1][-1]):
        heights[name] = last = max(height_of(values[-1]), last + 16)
    return heights


def chart(title, steps, lines):
    """`lines`: name -> a value for each step."""
    places = [LEFT + 20 + i * (NAMES - LEFT - 50) / max(len(steps) - 1, 1)
              for i in range(len(steps))]
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" '
             f'font-family="sans-serif" font-size="13" role="img"><title>{html.escape(title)}</title>'
             f'<rect width="{WIDTH}" height="{HEIGHT}" fill="#fff"/>', *axes(steps, places)]
    heights = names_apart(lines)
    for colour, (name, values) in zip(COLOURS * len(lines), lines.items()):
        points = " ".join(f"{x:.0f},{height_of(value):.0f}" for x, value in zip(places, values))
        parts.append(f'<polyline points="{points}" fill="none" stroke="{colour}" stroke-width="2"/>')
        parts.append(text(NAMES, heights[name] + 4, name, colour=colour))
    parts += [text(WIDTH / 2, HEIGHT - 10, title, "middle"), "</svg>"]
    return "\n".join(parts) + "\n"
