#!/usr/bin/python3 -B
# SPDX-License-Identifier: Apache-2.0
"""bench/report.py BUILD PAGE: measures what a scan costs and how that grows, and writes it into PAGE.

The tables stand between "<!-- table NAME -->" and "<!-- end -->"; the drawing, beside the page as
performance.svg. With QV_BENCH_MAIL=FOLDER the messages are those below the folder.
"""
import collections
import html
import json
import math
import pathlib
import re
import subprocess
import sys
import tempfile

BENCH = pathlib.Path(__file__).resolve().parent
WIDTH, HEIGHT, LEFT, RIGHT, TOP, BOTTOM = 720, 420, 70, 500, 20, 360
COLOURS = ("#0b6fa4", "#c2410c", "#888", "#15803d", "#7e22ce")


def scanTable(rows):
    yield "| work | times its floor | allocations |"
    yield "| --- | --- | --- |"
    for row in rows:
        if row["group"] in ("one Received header", "one message"):
            yield (f"| {row['group']}: {row['row']} | {row['ratio']:.2f} "
                   f"| {row['allocations']:.1f} |")


def threadTable(rows):
    yield "| work | CPU time of a message with two threads, times that with one |"
    yield "| --- | --- |"
    for row in rows:
        if row["group"].startswith("two threads, ") and row["row"].endswith("threads:2"):
            yield f"| {row['group'].removeprefix('two threads, ')} | {row['ratio']:.2f} |"


def curves(program):
    points = collections.defaultdict(list)
    for line in subprocess.run([program], stdout=subprocess.PIPE, text=True,
                               check=True).stdout.splitlines():
        name, size, seconds = line.split(",")
        points[name].append((int(size), float(seconds)))
    return points


def exponent(points):
    """Of the power of the size that fits all points best (least squares of the logarithms)."""
    logs = [(math.log(size), math.log(seconds)) for size, seconds in points]
    means = [sum(values) / len(logs) for values in zip(*logs)]
    return (sum((x - means[0]) * (y - means[1]) for x, y in logs)
            / sum((x - means[0]) ** 2 for x, _ in logs))


def curveTable(lines):
    yield "| size | from | to | exponent | in the last step |"
    yield "| --- | --- | --- | --- | --- |"
    for name, points in lines.items():
        yield (f"| {name} | {points[0][0]:,}: {time(points[0][1])} | {points[-1][0]:,}: "
               f"{time(points[-1][1])} | {exponent(points):.2f} | {exponent(points[-2:]):.2f} |")


def time(seconds):
    for unit, factor in (("s", 1), ("ms", 1e3), ("µs", 1e6)):
        if seconds * factor >= 1:
            break
    return f"{seconds * factor:.3g} {unit}"


def drawing(lines):
    """Logarithms of both; each line above its first point."""
    decades = max(math.log10(points[-1][0]) for points in lines.values())
    growth = max(math.log10(points[-1][1] / points[0][1]) for points in lines.values())

    def x(size):
        return LEFT + math.log10(size) / decades * (RIGHT - LEFT)

    def y(factor):
        return BOTTOM - math.log10(factor) / growth * (BOTTOM - TOP)

    yield (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" '
           'font-family="sans-serif" font-size="13" role="img"><title>How cost grows with size'
           f'</title><rect width="{WIDTH}" height="{HEIGHT}" fill="#fff"/>')
    for decade in range(int(decades) + 1):
        yield (f'<text x="{x(10 ** decade):.0f}" y="{BOTTOM + 20}" text-anchor="middle" '
               f'fill="#333">{10 ** decade:,}</text>')
    for decade in range(int(growth) + 1):
        yield (f'<path d="M{LEFT} {y(10 ** decade):.0f}H{RIGHT}" stroke="#ddd"/>'
               f'<text x="{LEFT - 8}" y="{y(10 ** decade) + 4:.0f}" text-anchor="end" fill="#333">'
               f'× {10 ** decade:,}</text>')
    yield (f'<text x="{(LEFT + RIGHT) / 2}" y="{BOTTOM + 45}" text-anchor="middle" fill="#333">'
           'size; cost, times that of the smallest size</text>')
    last = BOTTOM + 20.0
    for colour, (name, points) in zip(COLOURS, sorted(lines.items(), key=lambda line:
                                                      line[1][-1][1] / line[1][0][1])):
        places = [(x(size), y(max(seconds / points[0][1], 1))) for size, seconds in points]
        last = min(places[-1][1], last - 18)
        yield (f'<polyline points="{" ".join(f"{a:.0f},{b:.0f}" for a, b in places)}" fill="none" '
               f'stroke="{colour}" stroke-width="2"/><text x="{RIGHT + 8}" y="{last + 4:.0f}" '
               f'fill="{colour}">{html.escape(name)}</text>')
    yield "</svg>\n"


def replace(page, name, lines):
    table = "\n".join(lines)
    page, count = re.subn(rf"(<!-- table {name} -->\n).*?(<!-- end -->)",
                          lambda found: found[1] + table + "\n" + found[2], page, flags=re.S)
    if count != 1:
        sys.exit(f"report: the page has no table {name}")
    return page


def main():
    build, path = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    with tempfile.NamedTemporaryFile() as record:
        subprocess.run([BENCH / "ratios", "--json", record.name, build / "bin/bench_scan",
                        "--benchmark_filter=one Rec|one mess|two threads"], check=True)
        rows = json.load(record)
    lines = curves(build / "bin/cost_curves")
    page = path.read_text(encoding="utf-8")
    for name, table in (("scan", scanTable(rows)), ("threads", threadTable(rows)),
                        ("growth", curveTable(lines))):
        page = replace(page, name, table)
    path.write_text(page, encoding="utf-8")
    path.with_name("performance.svg").write_text("\n".join(drawing(lines)), encoding="utf-8")


if __name__ == "__main__":
    main()
