#!/usr/bin/env python3
"""Writes the sample programs beside this script: bracket.nc, relief.nc and engraving.nc.

With --check nothing is written; the exit status is 1 if a file differs from what would be written.
With --raster MOVES FILE only a relief of that many cutting moves is written, for measuring: the features keep
their size and the block grows, so that the surface left is in proportion to the moves.
"""

import math
import pathlib
import sys

SAFE = 5.0


def number(value):
    """The number as posts write it: at most three decimals, no trailing zeros, a point even after whole ones."""
    text = f"{value:.3f}".rstrip("0")
    return "0." if text in ("-0.", "0.") else text


class Program:
    """The lines of a program, with G codes and coordinates left out while they repeat."""

    def __init__(self, title, notes):
        self.lines = ["%", f"O{title[0]} ({title[1]})"] + [f"({note})" for note in notes]
        self.lines.append("G21 G17 G90 G40 G49 G80 G94 G54")
        self.place = {}
        self.code = None
        self.feed = None

    def add(self, text):
        self.lines.append(text)

    def tool(self, tool, name, speed):
        if self.code is not None:
            self.lines += ["M9", "M5"]
        self.lines += [f"({name})", f"T{tool} M6", f"S{speed} M3", "M8"]
        self.code = None

    def end(self):
        self.lines += ["M9", "M5", "M30", "%"]

    def _go(self, code, axes, extra="", feed=None):
        words = []
        is_arc = code in ("G2", "G3")
        for axis in "XYZ":
            if axis in axes and (is_arc and axis != "Z" or number(axes[axis]) != self.place.get(axis)):
                words.append(axis + number(axes[axis]))
                self.place[axis] = number(axes[axis])
        if not words:
            return
        if code != self.code:
            words.insert(0, code)
            self.code = code
        if extra:
            words.append(extra)
        if feed is not None and feed != self.feed:
            words.append(f"F{feed}")
            self.feed = feed
        self.lines.append(" ".join(words))

    def rapid(self, **axes):
        self._go("G0", axes)

    def line(self, feed, **axes):
        self._go("G1", axes, feed=feed)

    def arc(self, code, feed, x, y, i=None, j=None, r=None, z=None):
        axes = {"X": x, "Y": y}
        if z is not None:
            axes["Z"] = z
        self._go(code, axes, f"R{number(r)}" if r is not None else f"I{number(i)} J{number(j)}", feed)

    def retract(self):
        self.rapid(Z=SAFE)


def levels(bottom, step):
    count = math.ceil(-bottom / step)
    return [bottom * (n + 1) / count for n in range(count)]


# The bracket: an L of 84 x 60 mm out of a plate of 96 x 72 x 10 mm.


def clear_corner(p):
    """The corner of the plate outside the L, in rows from the open side."""
    p.add("(CORNER)")
    for z in levels(-10.0, 2.0):
        p.rapid(X=102, Y=72)
        p.line(300, Z=z)
        rows = range(72, 31, -4)
        for n, y in enumerate(rows):
            p.line(900, Y=y)
            p.line(900, X=41 if n % 2 == 0 else 100)
        p.retract()


def profile(p):
    """Round the L, outside, climbing; the corners by centre and by radius in turn."""
    p.add("(PROFILE)")
    for n, z in enumerate(levels(-10.0, 2.0)):
        by_radius = n % 2 == 1

        def corner(code, x, y, i, j):
            if by_radius:
                p.arc(code, 700, x, y, r=abs(i) + abs(j))
            else:
                p.arc(code, 700, x, y, i=i, j=j)

        p.rapid(X=-6, Y=36)
        p.line(300, Z=z)
        p.line(700, X=2)
        p.line(700, Y=60)
        corner("G2", 12, 70, 10, 0)
        p.line(700, X=30)
        corner("G2", 40, 60, 0, -10)
        p.line(700, Y=34)
        corner("G3", 44, 30, 4, 0)
        p.line(700, X=84)
        corner("G2", 94, 20, 0, -10)
        p.line(700, Y=12)
        corner("G2", 84, 2, -10, 0)
        p.line(700, X=12)
        corner("G2", 2, 12, 0, 10)
        p.line(700, Y=36)
        p.line(700, X=-6)
        p.retract()


def square_pocket(p):
    """18 x 20 mm with corners of radius 5, ramped into along its middle."""
    p.add("(POCKET)")
    p.rapid(X=21, Y=43)
    p.rapid(Z=1)
    top = 0.0
    for z in levels(-5.0, 1.25):
        p.line(300, Z=top)
        p.line(400, Y=45, Z=z)
        p.line(600, Y=43)
        p.line(600, X=16)
        p.line(600, Y=39)
        p.arc("G3", 600, 17, 38, i=1, j=0)
        p.line(600, X=25)
        p.arc("G3", 600, 26, 39, r=1)
        p.line(600, Y=49)
        p.arc("G3", 600, 25, 50, i=-1, j=0)
        p.line(600, X=17)
        p.arc("G3", 600, 16, 49, r=1)
        p.line(600, Y=43)
        p.line(600, X=21)
        top = z
    p.retract()


def round_pocket(p):
    """A counterbore of radius 8 and a through hole of radius 5, both on helices."""
    p.add("(COUNTERBORE)")
    for radius, bottom, top in ((4.0, -6.0, 0.0), (1.0, -10.0, -6.0)):
        p.rapid(X=21 + radius, Y=16)
        p.rapid(Z=1)
        p.line(300, Z=top)
        turns = 6 if top == 0.0 else 4
        for n in range(turns):
            p.arc("G3", 500, 21 + radius, 16, i=-radius, j=0, z=top + (bottom - top) * (n + 1) / turns)
        p.arc("G3", 500, 21 + radius, 16, i=-radius, j=0)
        p.line(500, X=21, Y=16)
        p.retract()


def slot(p):
    """30 x 12 mm with round ends."""
    p.add("(SLOT)")
    p.rapid(X=54, Y=16)
    p.rapid(Z=1)
    top = 0.0
    for n, z in enumerate(levels(-4.0, 1.0)):
        p.line(300, Z=top)
        p.line(400, X=72, Z=z)
        p.line(600, X=54)
        p.line(600, Y=14)
        p.line(600, X=72)
        if n % 2 == 0:
            p.arc("G3", 600, 72, 18, i=0, j=2)
        else:
            p.arc("G3", 600, 74, 16, r=2)
            p.arc("G3", 600, 72, 18, r=2)
        p.line(600, X=54)
        p.arc("G3", 600, 54, 14, i=0, j=-2)
        p.line(600, Y=16)
        top = z
    p.retract()


def holes(p):
    p.add("(HOLES)")
    p.rapid(X=42, Y=16)
    p.retract()
    p.add("G99 G83 Z-10. R2. Q2. F200")
    p.add("X84. Y11.")
    p.add("Y21.")
    p.add("G80")
    p.add("(ROW OF THREE)")
    p.add("G0 Z5.")
    p.add("X3. Y60.")
    p.add("G91 G98 G73 X9. Y0. R-3. Z-12. Q3. L3")
    p.add("G80 G90")
    p.add("G0 Z25.")


def bracket():
    p = Program(("1001", "BRACKET"), ["STOCK 96 X 72 X 10, ZERO AT THE FRONT LEFT TOP CORNER",
                                      "T1 = 8 MM END MILL", "T2 = 5 MM FLAT DRILL"])
    p.tool(1, "8 MM END MILL", 8000)
    p.rapid(X=102, Y=72)
    p.rapid(Z=SAFE)
    clear_corner(p)
    profile(p)
    square_pocket(p)
    round_pocket(p)
    slot(p)
    p.rapid(Z=25)
    p.tool(2, "5 MM FLAT DRILL", 3000)
    holes(p)
    p.end()
    return p.lines


# The relief: ripples that run out from two places, in rows of a ball-nose cutter.


def relief_height(x, y):
    near = math.hypot(x - 11.0, y - 9.0)
    far = math.hypot(x - 24.0, y - 16.0)
    wave = math.cos(near * 0.9) * math.exp(-near / 14.0) + 0.6 * math.cos(far * 1.2) * math.exp(-far / 10.0)
    return max(-2.6, min(-0.2, -1.2 + 0.8 * wave))


def relief():
    p = Program(("1002", "RELIEF"), ["STOCK 32 X 24 X 8, ZERO AT THE FRONT LEFT TOP CORNER",
                                     "T1 = 3 MM BALL NOSE"])
    p.tool(1, "3 MM BALL NOSE", 18000)
    p.rapid(X=2, Y=2)
    p.rapid(Z=SAFE)
    p.rapid(Z=1)
    rows = [2.0 + 0.4 * n for n in range(51)]
    columns = [2.0 + 0.5 * n for n in range(57)]
    for n, y in enumerate(rows):
        for x in columns if n % 2 == 0 else reversed(columns):
            p.line(400 if p.code != "G1" else 1500, X=x, Y=y, Z=relief_height(x, y))
    p.rapid(Z=25)
    p.end()
    return p.lines


# The raster: waves without end, in rows of the same cutter over a square as large as the moves need.

RASTER_STEP, RASTER_ROW, RASTER_MARGIN = 0.5, 0.4, 2.0


def raster_height(x, y):
    return -1.3 + 0.6 * math.sin(0.9 * x + 0.5 * y) + 0.5 * math.sin(1.1 * y - 0.3 * x)


def raster_shape(moves):
    """Moves along a row, and rows. The steps from row to row are moves too, and so is the one into the block."""
    along = max(1, round(math.sqrt(moves * RASTER_ROW / RASTER_STEP)))
    return along, math.ceil(moves / (along + 1))


def raster(moves):
    along, rows = raster_shape(moves)
    width = along * RASTER_STEP + 2 * RASTER_MARGIN
    depth = (rows - 1) * RASTER_ROW + 2 * RASTER_MARGIN
    p = Program(("1004", "RASTER"), [f"STOCK {number(width)} X {number(depth)} X 8, ZERO AT THE FRONT LEFT TOP CORNER",
                                     "T1 = 3 MM BALL NOSE"])
    p.tool(1, "3 MM BALL NOSE", 18000)
    p.rapid(X=RASTER_MARGIN, Y=RASTER_MARGIN)
    p.rapid(Z=1)
    for n in range(moves):
        row, column = divmod(n, along + 1)
        x = RASTER_MARGIN + RASTER_STEP * (column if row % 2 == 0 else along - column)
        y = RASTER_MARGIN + RASTER_ROW * row
        p.line(1500, X=x, Y=y, Z=raster_height(x, y))
    p.rapid(Z=25)
    p.end()
    return p.lines


# The engraving: a rosette of arcs round three letters.


def turned(x, y, degrees):
    angle = math.radians(degrees)
    return x * math.cos(angle) - y * math.sin(angle), x * math.sin(angle) + y * math.cos(angle)


def petal(p, degrees, by_radius):
    """From the root out to the tip and back on two arcs, deepest half way."""
    root, tip, radius = 11.0, 24.0, 10.0
    half = (tip - root) / 2.0
    rise = radius - math.sqrt(radius * radius - half * half)
    places = [(root, 0.0), (root + half, rise), (tip, 0.0), (root + half, -rise), (root, 0.0)]
    points = [turned(x, y, degrees) for x, y in places]
    centres = [turned(root + half, side * (rise - radius), degrees) for side in (1, 1, -1, -1)]
    p.rapid(X=points[0][0], Y=points[0][1])
    p.rapid(Z=1)
    p.line(200, Z=-0.1)
    for n in range(4):
        (x, y), (from_x, from_y) = points[n + 1], points[n]
        # Ends are written to three decimals; the centre counts from the start as written.
        i, j = centres[n][0] - round(from_x, 3), centres[n][1] - round(from_y, 3)
        z = -0.6 if n % 2 == 0 else -0.1
        if by_radius:
            p.arc("G2", 500, x, y, r=radius, z=z)
        else:
            p.arc("G2", 500, x, y, i=i, j=j, z=z)
    p.retract()


def ring(p, radius, depth):
    p.rapid(X=radius, Y=0)
    p.rapid(Z=1)
    p.line(200, Z=depth)
    p.arc("G3", 500, radius, 0, i=-radius, j=0)
    p.retract()


def ticks(p):
    for n in range(36):
        inner, outer = turned(26.2, 0, 10 * n), turned(27.4 if n % 3 else 28.2, 0, 10 * n)
        p.rapid(X=inner[0], Y=inner[1])
        p.rapid(Z=1)
        p.line(200, Z=-0.3)
        p.line(500, X=outer[0], Y=outer[1])
        p.retract()


def stroke(p, x, y, *steps):
    p.rapid(X=x, Y=y)
    p.rapid(Z=1)
    p.line(200, Z=-0.5)
    for step in steps:
        if len(step) == 2:
            p.line(500, X=step[0], Y=step[1])
        else:
            p.arc("G3", 500, step[0], step[1], i=step[2], j=step[3])
    p.retract()


def letters(p):
    p.add("(LETTERS)")
    stroke(p, -7, 3, (-3, 3), (-7, -3), (-3, -3))
    stroke(p, -1.8, 3, (-1.8, -1.2), (1.8, -1.2, 1.8, 0), (1.8, 3))
    stroke(p, 3.4, 3, (3.4, -3), (6.6, -3))


def engraving():
    p = Program(("1003", "ENGRAVING"), ["STOCK 60 X 60 X 5, ZERO AT THE MIDDLE OF THE TOP",
                                        "T3 = 6 MM V TOOL OF 60 DEGREES"])
    p.tool(3, "6 MM V TOOL OF 60 DEGREES", 20000)
    p.rapid(X=0, Y=0)
    p.rapid(Z=SAFE)
    letters(p)
    p.add("(ROSETTE)")
    for n in range(16):
        petal(p, 22.5 * n, n % 2 == 1)
    p.add("(RINGS)")
    for radius, depth in ((9.5, -0.4), (10.2, -0.2), (25.0, -0.4), (28.8, -0.3)):
        ring(p, radius, depth)
    p.add("(TICKS)")
    ticks(p)
    p.rapid(Z=25)
    p.end()
    return p.lines


def write_raster(moves, file):
    if not moves.isdigit() or not 1 <= int(moves) <= 10_000_000:
        print("--raster takes from 1 to 10000000 moves and a file", file=sys.stderr)
        return 1
    pathlib.Path(file).write_bytes(("\n".join(raster(int(moves))) + "\n").encode("ascii"))
    return 0


def main():
    if len(sys.argv) == 4 and sys.argv[1] == "--raster":
        return write_raster(sys.argv[2], sys.argv[3])
    check = sys.argv[1:] == ["--check"]
    folder = pathlib.Path(__file__).resolve().parent
    differs = False
    for name, lines in (("bracket", bracket()), ("relief", relief()), ("engraving", engraving())):
        text = ("\n".join(lines) + "\n").encode("ascii")
        path = folder / f"{name}.nc"
        if not check:
            path.write_bytes(text)
        elif not path.exists() or path.read_bytes() != text:
            print(f"{path.name} is not what generate.py writes", file=sys.stderr)
            differs = True
    return 1 if differs else 0


if __name__ == "__main__":
    sys.exit(main())
