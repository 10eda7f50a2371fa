"""Draws the curves of growth.py as an SVG: a panel for each, on scales of logarithms."""
import html
import math

COLUMNS, WIDTH, HEIGHT = 4, 232, 190
LEFT, RIGHT, TOP, BOTTOM = 46, 10, 24, 26
COLOURS = {"tessaron": "#0b62c4", "CmdTessaron": "#0d8f8f", "earlier": "#c43c0b", "srec_cat": "#b58900",
           "objcopy": "#6b3fa0"}
# What a command is measured beside: the same run without what the curve is about.
BESIDE = "#8a8a8a"


def line(points, colour, dashes=""):
    return '<polyline fill="none" stroke="%s" stroke-width="1.6"%s points="%s"/>' % (
        colour, ' stroke-dasharray="%s"' % dashes if dashes else "",
        " ".join("%.1f,%.1f" % point for point in points))


def text(x, y, content, anchor="middle", more=""):
    return '<text x="%.1f" y="%.1f" text-anchor="%s"%s>%s</text>' % (x, y, anchor, more, html.escape(content))


def seconds(power):
    return "%g s" % 10**power if power >= 0 else "%g ms" % 10**(power + 3)


def panel(curve, points):
    """The panel of a curve, whose upper left corner is the origin."""
    sizes = [point[0] for point in points["tessaron"]]
    # Cost in proportion to the work, from the first of the points that make the slope.
    size, time = points["tessaron"][-3][:2]
    proportional = time * sizes[-1] / size
    times = [proportional] + [point[1] for series in points.values() for point in series]
    low, high = math.floor(math.log10(min(times))), math.ceil(math.log10(max(times)))
    right, bottom = WIDTH - RIGHT, HEIGHT - BOTTOM

    def place(size, time):
        return (LEFT + (right - LEFT) * math.log(size / sizes[0]) / math.log(sizes[-1] / sizes[0]),
                bottom - (bottom - TOP) * (math.log10(time) - low) / (high - low))

    parts = [text(WIDTH / 2, 14, curve.name, more=' font-weight="bold"')]
    for power in range(low, high + 1):
        y = place(sizes[0], 10**power)[1]
        parts.append('<path d="M%d %.1fH%d" stroke="#e0e0e0"/>' % (LEFT, y, right))
        parts.append(text(LEFT - 4, y + 3, seconds(power), "end"))
    parts.append(text(LEFT, HEIGHT - 10, "{:,}".format(sizes[0]), "start"))
    parts.append(text(right, HEIGHT - 10, "{:,} {}".format(sizes[-1], curve.unit), "end"))
    parts.append(line([place(size, time), place(sizes[-1], proportional)], "#000000", "1 3"))
    for name, series in points.items():
        known = name in COLOURS
        parts.append(line([place(*point[:2]) for point in series], COLOURS.get(name, BESIDE),
                          "" if known else "4 3"))
    return "\n".join(parts)


def legend(curves):
    names = list(dict.fromkeys(name for _, points in curves for name in points if name in COLOURS))
    entries = [(name, COLOURS[name], "") for name in names]
    entries += [("the same without it", BESIDE, "4 3"), ("as the work grows", "#000000", "1 3")]
    parts = []
    for number, (name, colour, dashes) in enumerate(entries):
        x = 10 + (COLUMNS * WIDTH - 10) // len(entries) * number
        parts.append(line([(x, 16), (x + 24, 16)], colour, dashes) + text(x + 30, 20, name, "start"))
    return "\n".join(parts)


def draw(curves):
    """The picture of (curve, points by name of the command); points begin with size and seconds."""
    rows = -(-len(curves) // COLUMNS)
    width, height = COLUMNS * WIDTH, 30 + rows * HEIGHT
    panels = "\n".join('<g transform="translate(%d %d)">\n%s\n</g>' % (
        number % COLUMNS * WIDTH, 30 + number // COLUMNS * HEIGHT, panel(*curve))
        for number, curve in enumerate(curves))
    return ('<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 %d %d" font-family="sans-serif" '
            'font-size="10">\n<title>Processor time by the size of the work</title>\n'
            '<rect width="100%%" height="100%%" fill="#ffffff"/>\n%s\n%s\n</svg>\n'
            % (width, height, legend(curves), panels))
