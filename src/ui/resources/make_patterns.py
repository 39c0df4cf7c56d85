#!/usr/bin/env python3
"""Writes the built-in patterns (patterns/*.ptr), Python's standard library only.

    make_patterns.py MARLOWEN_CLI [NAME...]

Heights are computed here in cells, rounded to 1/64 so that they pack well, and handed to marlowen-cli,
which writes the pattern files. Row 0 is the lowest. Borders and textures repeat without a seam.
"""

import math
import pathlib
import struct
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
STEP = 64
TAU = 2 * math.pi


def clamp(value, low=0.0, high=1.0):
    return max(low, min(high, value))


def smooth(edge0, edge1, value):
    t = clamp((value - edge0) / (edge1 - edge0))
    return t * t * (3 - 2 * t)


def bell(x, width):
    return math.exp(-(x / width) ** 2)


class Canvas:
    """A grid of heights; what is put on it keeps the highest. With `repeat` it goes on at the other
    end of each row."""

    def __init__(self, width, height, repeat=False):
        self.width = width
        self.height = height
        self.repeat = repeat
        self.rows = [[0.0] * width for _ in range(height)]

    def paint(self, box, function):
        """function(x, y) -> height or 0, for the cells of a box (left, low, right, high)."""
        left, low, right, high = box
        if not self.repeat:
            left, right = max(0, left), min(self.width - 1, right)
        for y in range(max(0, int(low)), min(self.height - 1, int(high)) + 1):
            row = self.rows[y]
            for x in range(int(left), int(right) + 1):
                value = function(x + 0.5, y + 0.5)
                at = x % self.width
                if value > row[at]:
                    row[at] = value

    def everywhere(self, function):
        self.paint((0, 0, self.width - 1, self.height - 1), function)

    def dome(self, x, y, radius, height, base=0.0):
        def at(px, py):
            d = ((px - x) ** 2 + (py - y) ** 2) / radius ** 2
            return base + height * math.sqrt(1 - d) if d < 1 else 0.0
        self.paint((x - radius - 1, y - radius - 1, x + radius + 1, y + radius + 1), at)

    def tube(self, points, groove=0.0):
        """A round bead along points (x, y, radius, height, base); `groove` hollows its middle."""
        for x, y, radius, height, base in points:
            def at(px, py, x=x, y=y, radius=radius, height=height, base=base):
                d = ((px - x) ** 2 + (py - y) ** 2) / radius ** 2
                if d >= 1:
                    return 0.0
                return base + height * math.sqrt(1 - d)
            self.paint((x - radius - 1, y - radius - 1, x + radius + 1, y + radius + 1), at)
        if groove > 0:
            self.carve([(x, y, radius * 0.45, height * groove) for x, y, radius, height, _ in points])

    def carve(self, points):
        """A groove along points (x, y, radius, depth), no cell deepened twice."""
        deepest = {}
        for x, y, radius, depth in points:
            for cy in range(int(y - radius), int(y + radius) + 2):
                for cx in range(int(x - radius), int(x + radius) + 2):
                    d = math.hypot(cx + 0.5 - x, cy + 0.5 - y) / radius
                    if d < 1:
                        cut = depth * (1 - d * d) ** 1.5
                        key = (cx % self.width if self.repeat else cx, cy)
                        deepest[key] = max(deepest.get(key, 0.0), cut)
        for (cx, cy), cut in deepest.items():
            if 0 <= cx < self.width and 0 <= cy < self.height and self.rows[cy][cx] > 0:
                self.rows[cy][cx] = max(1.0, self.rows[cy][cx] - cut)

    def leaf(self, place, size, form=None):
        """place (x, y, angle) is the foot; size (length, half width, height, base)."""
        x, y, angle = place
        length, width, height, base = size
        form = {"veins": 7, "vein": 0.10, "rib": 0.22, "full": 0.75, "bend": 0.0, "lobes": 0,
                "hollow": 0.0, **(form or {})}
        cos, sin = math.cos(angle), math.sin(angle)

        def at(px, py):
            dx, dy = px - x, py - y
            u = (dx * cos + dy * sin) / length
            if not 0 < u < 1:
                return 0.0
            v = -dx * sin + dy * cos - form["bend"] * width * math.sin(math.pi * u)
            half = width * math.sin(math.pi * u ** form["full"]) ** 0.8
            if form["lobes"]:
                half *= 0.55 + 0.45 * abs(math.sin(math.pi * form["lobes"] * u)) ** 0.7
            if half <= 0 or abs(v) >= half:
                return 0.0
            s = abs(v) / half
            body = math.sqrt(1 - s * s) * (0.45 + 0.55 * math.sin(math.pi * min(1.0, u * 0.9 + 0.08)))
            body *= 1 - form["hollow"] * bell(s - 0.45, 0.3)
            vein = form["vein"] * math.cos(TAU * (form["veins"] * u - 1.6 * s)) * s * (1 - s)
            rib = form["rib"] * bell(v / width, 0.07 + 0.05 * (1 - u)) * (1 - u)
            crease = 0.16 * bell(v / width, 0.16) * (1 - u * 0.5)
            return base + height * max(0.02, body + vein * 2 - crease + rib)
        reach = length + 2 * width
        self.paint((x - reach, y - reach, x + reach, y + reach), at)

    def petals(self, count, reach, size, turn=0.0, form=None):
        """Leaves all round the middle, from reach[0] to reach[1]."""
        for i in range(count):
            a = turn + TAU * i / count
            foot = (self.width / 2 + reach[0] * math.cos(a), self.height / 2 + reach[0] * math.sin(a), a)
            self.leaf(foot, (reach[1] - reach[0], *size), form)


def swung(start, angle, length, curvature, radius, height, base=lambda t: 0.0):
    """Points of a bead that leaves `start`; curvature, radius, height and base are functions of the
    share of its length."""
    x, y = start
    points = []
    steps = max(2, int(length / 0.8))
    for i in range(steps + 1):
        t = i / steps
        points.append((x, y, radius(t), height(t), base(t)))
        angle += curvature(t) * length / steps
        x += math.cos(angle) * length / steps
        y += math.sin(angle) * length / steps
    return points


def volute(canvas, start, angle, length, side, radius, height):
    """A scroll that winds up at its end around a ball; side 1 turns left, -1 right."""
    turning, power = 10.6, 1.45
    points = swung(start, angle, length, lambda t: side * turning * (power + 1) * t ** power / length,
                   lambda t: radius * (1 - 0.6 * t), lambda t: height * (0.8 + 0.2 * t))
    canvas.tube(points, 0.3)
    x, y = points[-1][:2]
    canvas.dome(x, y, radius * 0.8, height * 1.2)
    return points


# Single ornaments

def rosette():
    c = Canvas(384, 384)
    c.petals(12, (40, 186), (34, 20, 1), TAU / 24, {"hollow": 0.25, "rib": 0.0, "full": 1.35, "veins": 5})
    c.petals(12, (26, 140), (27, 24, 8), 0.0, {"hollow": 0.25, "rib": 0.0, "full": 1.35, "veins": 4})
    c.petals(8, (10, 84), (24, 22, 18), 0.2, {"hollow": 0.2, "rib": 0.0, "full": 1.3, "vein": 0.05})
    c.dome(192, 192, 32, 20, 22)
    for ring, count in ((0, 1), (10, 6), (20, 12)):
        for i in range(count):
            a = TAU * i / count
            c.dome(192 + ring * math.cos(a), 192 + ring * math.sin(a), 5.2, 4, 40 - ring * 0.35)
    return c


def dahlia():
    c = Canvas(384, 384)
    for ring in range(7):
        outer = 188 - ring * 24
        c.petals(20 - 2 * (ring // 2), (max(6, outer - 80), outer), (max(8, 21 - 1.8 * ring), 15, 1 + 6.5 * ring),
                 ring * 0.157, {"hollow": 0.5, "rib": 0.0, "full": 1.2, "vein": 0.0})
    c.dome(192, 192, 16, 8, 42)
    return c


def fern_leaf():
    c = Canvas(288, 448)
    middle = 144
    # From the tip down, each pair of lobes over the one above it.
    for i in range(9, -1, -1):
        t = i / 9
        y = 30 + 330 * t
        spread = 1.02 - 0.62 * t
        length = 128 - 62 * t
        for side in (-1, 1):
            foot = (middle + side * 3, y, math.pi / 2 - side * spread)
            c.leaf(foot, (length, 27 - 11 * t, 19 - 4 * t, 9 - 7 * t),
                   {"bend": side * 0.65, "veins": 4, "hollow": 0.3, "rib": 0.18, "full": 1.15})
    c.leaf((middle, 330, math.pi / 2), (110, 26, 22, 3), {"hollow": 0.2, "full": 0.9})
    c.tube([(middle, 14 + y, 13 - 9.5 * y / 400, 27 - 12 * y / 400, 3) for y in range(0, 396)], 0.25)
    return c


def oak_leaf():
    c = Canvas(256, 416)
    c.leaf((128, 50, math.pi / 2), (350, 118, 24, 2),
           {"lobes": 5, "veins": 0, "vein": 0.0, "full": 0.92, "rib": 0.0, "hollow": 0.15})
    grooves = []
    for i in range(5):
        y = 66 + 66 * i
        for side in (-1, 1):
            reach = (56, 78, 88, 72, 40)[i]
            for turn, share in ((0.95, 1.0), (0.62, 0.6), (1.25, 0.55)):
                start = (128, y + (0 if share == 1.0 else 6))
                grooves += [(px, py, 4.5 - 2 * k / reach, 3.6 * share) for k, (px, py, *_) in enumerate(
                    swung(start, math.pi / 2 - side * turn, reach * share, lambda t: side * 0.006,
                          lambda t: 0, lambda t: 0))]
    c.carve(grooves)
    c.tube([(128 + 5 * math.sin(y / 40), 8 + y, 8 - 6 * y / 360, 16 - 8 * y / 360, 12 * smooth(0, 60, y))
            for y in range(360)])
    return c


def wreath():
    c = Canvas(416, 416)
    centre, radius = 208, 158
    for side in (-1, 1):
        stem = [(centre + side * radius * math.sin(a), centre - radius * math.cos(a), 5, 9, 1)
                for a in [i * 0.005 for i in range(40, 575)]]
        c.tube(stem)
        for i in range(15):
            a = 0.22 + i * 0.186
            x, y = centre + side * radius * math.sin(a), centre - radius * math.cos(a)
            along = a if side > 0 else math.pi - a
            for turn in (0.55, -0.55, 0.0):
                length = (62 if turn else 70) * (1 - 0.018 * i)
                c.leaf((x, y, along + turn), (length, 14.5, 13, 7 if turn else 11),
                       {"veins": 5, "hollow": 0.1, "full": 0.85})
            if i % 2 == 0:
                out = radius + 25
                c.dome(centre + side * out * math.sin(a + 0.06), centre - out * math.cos(a + 0.06), 7.5, 13, 3)
    c.tube([(centre - 34 + i, centre - radius - 2 + 5 * math.cos(i / 34 * math.pi), 10, 15, 4) for i in range(69)], 0.2)
    return c


def shell():
    c = Canvas(464, 352)
    x0, y0, ribs = 232, 46, 11

    def at(x, y):
        dx, dy = x - x0, y - y0
        a = math.atan2(dx, dy)
        r = math.hypot(dx, dy)
        if abs(a) > 1.36 or r < 2:
            return 0.0
        wave = math.cos(a / 1.36 * math.pi * ribs)
        edge = 268 * (1 - 0.085 * a * a) + 7 * wave
        u = r / edge
        if u >= 1:
            return 0.0
        body = 44 * math.sqrt(1 - (2 * u ** 0.8 - 1) ** 2) * (1 - 0.28 * (a / 1.36) ** 2)
        rib = 7.5 * u * (math.sqrt(max(0.0, 0.5 + 0.5 * wave)) - 0.5)
        ring = 1.0 * math.cos(u ** 1.6 * TAU * 9) * u
        return max(1.0, body + rib + ring) * smooth(0, 0.03, 1 - u) ** 0.3
    c.everywhere(at)
    for side in (-1, 1):
        c.leaf((x0, 34, math.pi / 2 - side * 1.5), (104, 22, 15, 2), {"vein": 0.0, "rib": 0.0, "full": 0.7})
    c.dome(x0, 40, 30, 26, 6)
    return c


def sprouts(c, points, rows, side):
    """Leaves along a bead: (share of its length, turn from its direction, length)."""
    for share, turn, size in rows:
        i = int(share * len(points))
        (px, py), (nx, ny) = points[i][:2], points[i + 2][:2]
        c.leaf((px, py, math.atan2(ny - py, nx - px) + side * turn), (size, size * 0.24, 16, 1),
               {"bend": side * (0.7 if turn > 0 else -0.7), "veins": 5, "hollow": 0.25})


def scroll():
    c = Canvas(576, 336)
    for heading in (0.72, math.pi + 0.72):
        points = volute(c, (288, 168), heading, 640, -1, 16, 24)
        sprouts(c, points, ((0.06, 0.75, 74), (0.15, 0.75, 80), (0.25, 0.8, 70), (0.10, -0.8, 58),
                            (0.34, 0.85, 54)), 1)
    c.petals(6, (4, 44), (14, 13, 18), 0.3, {"hollow": 0.2, "rib": 0.0, "full": 1.2, "vein": 0.0})
    c.dome(288, 168, 13, 12, 26)
    return c


def corner():
    c = Canvas(384, 384)
    for side, heading in ((1, -0.18), (-1, math.pi / 2 + 0.18)):
        points = volute(c, (64, 64), heading, 640, side, 16, 24)
        sprouts(c, points, ((0.10, -0.6, 50), (0.24, -0.6, 48), (0.12, 0.7, 62), (0.24, 0.75, 66)), side)
    for turn, length in ((0.62, 84), (-0.62, 84), (0.33, 116), (-0.33, 116), (0.0, 150)):
        c.leaf((58, 58, math.pi / 4 + turn), (length, 20, 20, 8 if turn else 12),
               {"veins": 6, "hollow": 0.2, "bend": turn * 0.6})
    c.dome(62, 62, 28, 24, 14)
    return c


def palmette():
    c = Canvas(352, 384)
    for i in range(5, 0, -1):
        for side in (-1, 1):
            a = side * i * 0.27
            length = 262 - 19 * i - 2.2 * i * i
            c.leaf((176, 70, math.pi / 2 - a), (length, 21, 22, 3 + i),
                   {"full": 1.55, "veins": 0, "vein": 0.0, "hollow": 0.55, "rib": 0.1, "bend": side * 0.7})
    c.leaf((176, 70, math.pi / 2), (280, 23, 25, 9), {"full": 1.55, "vein": 0.0, "hollow": 0.55, "rib": 0.1})
    for side in (-1, 1):
        heading = -0.35 if side > 0 else math.pi + 0.35
        volute(c, (176 + side * 8, 58), heading, 300, side, 13, 24)
    c.dome(176, 74, 26, 22, 14)
    c.tube([(150 + i, 42, 12, 18, 2) for i in range(53)], 0.2)
    return c


def knot():
    c = Canvas(384, 384)
    count = 2400
    points = []
    for i in range(count):
        t = TAU * i / count
        r = 122 + 52 * math.cos(5 * t)
        points.append((192 + r * math.cos(2 * t), 192 + r * math.sin(2 * t), 17, 15, 9 + 8 * math.sin(5 * t)))
    c.tube(points)
    lows = [(x, y, 3.2, 5.0, base) for x, y, _, _, base in points]
    # The groove only where the band is on top.
    c.carve([(x, y, r, d) for x, y, r, d, base in lows
             if c.rows[int(y)][int(x)] < base + 15.6])
    return c


def quatrefoil():
    c = Canvas(384, 384)
    centres = [(192 + 72 * math.cos(a), 192 + 72 * math.sin(a)) for a in (0, TAU / 4, TAU / 2, 3 * TAU / 4)]

    def inside(x, y):
        lobes = max(96 - math.hypot(x - cx, y - cy) for cx, cy in centres)
        return max(lobes, 74 - max(abs(x - 192), abs(y - 192)) - 40)

    def at(x, y):
        d = inside(x, y)
        if d <= 0:
            return 0.0
        rim = 22 * math.sqrt(max(0.0, 1 - ((d - 13) / 13) ** 2)) if d < 26 else 0.0
        bead = 12 * math.sqrt(max(0.0, 1 - ((d - 33) / 6) ** 2)) if 27 < d < 39 else 0.0
        return max(4.0 if d > 1 else 0.5, rim, bead)
    c.everywhere(at)
    for i in range(4):
        a = TAU * i / 4
        c.leaf((192 + 16 * math.cos(a), 192 + 16 * math.sin(a), a), (108, 27, 22, 6), {"veins": 6, "hollow": 0.2})
        c.leaf((192 + 16 * math.cos(a + TAU / 8), 192 + 16 * math.sin(a + TAU / 8), a + TAU / 8),
               (62, 15, 15, 6), {"veins": 4})
    c.dome(192, 192, 22, 16, 16)
    return c


# Borders: 4 inches of them, to be put side by side

def rope():
    c = Canvas(512, 112, True)

    def at(x, y):
        v = (y - 56) / 50
        strand = (x / 64 - 0.62 * math.asin(clamp(v, -1, 1)) / (math.pi / 2)) % 1.0
        across = 2 * strand - 1
        full = 1 - 0.10 * across * across
        if abs(v) >= full:
            return 0.0
        thread = 0.7 * math.cos(TAU * (strand * 5 + x / 512 * 8))
        return 34 * math.sqrt(1 - (v / full) ** 2) * (0.62 + 0.38 * math.sqrt(1 - across * across)) + thread + 1
    c.everywhere(at)
    return c


def rope_ring():
    c = Canvas(384, 384)

    def at(x, y):
        a = math.atan2(y - 192, x - 192) / TAU * 30
        v = (math.hypot(x - 192, y - 192) - 158) / 27
        if abs(v) >= 1:
            return 0.0
        strand = (a - 0.62 * math.asin(v) / (math.pi / 2)) % 1.0
        across = 2 * strand - 1
        full = 1 - 0.10 * across * across
        if abs(v) >= full:
            return 0.0
        return 22 * math.sqrt(1 - (v / full) ** 2) * (0.6 + 0.4 * math.sqrt(1 - across * across)) + 1
    c.everywhere(at)
    return c


def egg_and_dart():
    c = Canvas(512, 144, True)
    c.everywhere(lambda x, y: 8 + 14 * math.sqrt(max(0.0, 1 - ((y - 130) / 13) ** 2)))
    c.everywhere(lambda x, y: 8 + 9 * math.sqrt(max(0.0, 1 - ((y - 8) / 7) ** 2)))
    for i in range(4):
        x = 64 + 128 * i
        ring = [(x + 50 * math.cos(a), 84 + 66 * math.sin(a), 7, 13, 8)
                for a in [math.pi * (1 + k / 150) for k in range(151)]]
        c.tube(ring + [(x + s * 50, 84 + k, 7, 13, 8) for s in (-1, 1) for k in range(34)])

        def egg(px, py, x=x):
            d = ((px - x) / 35) ** 2 + ((py - 78) / (48 if py < 78 else 36)) ** 2
            return 8 + 34 * math.sqrt(1 - d) if d < 1 else 0.0
        c.paint((x - 40, 20, x + 40, 126), egg)
        c.leaf((x + 64, 122, -math.pi / 2), (108, 13, 20, 8), {"vein": 0.0, "rib": 0.2, "full": 0.6})
    return c


def bead_and_reel():
    c = Canvas(512, 80, True)
    for i in range(4):
        x = 128 * i + 40

        def bead(px, py, x=x):
            d = ((px - x) / 38) ** 2 + ((py - 40) / 32) ** 2
            return 1 + 30 * math.sqrt(1 - d) if d < 1 else 0.0
        c.paint((x - 40, 0, x + 40, 80), bead)
        for k in range(2):
            def reel(px, py, x=x + 52 + 24 * k):
                u, v = (px - x) / 10, (py - 40) / 33
                if abs(u) >= 1 or abs(v) >= 1:
                    return 0.0
                return 1 + 26 * math.sqrt(1 - v * v) * (1 - u * u) ** 0.3
            c.paint((x + 40, 0, x + 90, 80), reel)
        c.paint((x - 64, 33, x + 64, 47), lambda px, py: 12 * math.sqrt(max(0.0, 1 - ((py - 40) / 7) ** 2)))
    return c


def guilloche():
    c = Canvas(512, 144, True)
    c.everywhere(lambda x, y: 12 * math.sqrt(max(0.0, 1 - ((y - 7) / 6) ** 2)))
    c.everywhere(lambda x, y: 12 * math.sqrt(max(0.0, 1 - ((y - 137) / 6) ** 2)))
    bands = []
    for side in (-1, 1):
        points = []
        for i in range(1400):
            t = i / 1400
            phase = TAU * 2 * t
            points.append((512 * t, 72 + side * 42 * math.cos(phase), 15, 13,
                           9 + side * 8 * math.sin(phase) ** 3))
        bands.append(points)
    for points in bands:
        c.tube(points)
    for points in bands:
        c.carve([(x, y, 8, 4.5) for x, y, _, _, base in points
                 if c.rows[int(y)][int(x) % 512] < base + 13.4])
    for i in range(4):
        x = 128 * i
        c.dome(x, 72, 17, 15, 2)
        c.dome(x, 72, 8, 7, 13)
    return c


def greek_key():
    c = Canvas(512, 144, True)
    unit, low = 16, 20
    # One meander, in steps of `unit`.
    path = [(0, 0), (7, 0), (7, 6), (2, 6), (2, 2), (5, 2), (5, 4)]
    back = [(0, 0), (0, 6)]
    segments = []
    for i in range(4):
        x = 128 * i
        for line in (path, back):
            for (ax, ay), (bx, by) in zip(line, line[1:]):
                segments.append((x + ax * unit, low + ay * unit, x + bx * unit, low + by * unit))
        segments.append((x - unit, low + 6 * unit, x, low + 6 * unit))

    def distance(px, py):
        best = 1e9
        for ax, ay, bx, by in segments:
            for shift in (-512, 0, 512):
                cx = clamp(px, min(ax, bx) + shift, max(ax, bx) + shift)
                cy = clamp(py, min(ay, by), max(ay, by))
                best = min(best, max(abs(px - cx), abs(py - cy)))
        return best

    def at(x, y):
        band = clamp((5.6 - distance(x, y)) / 3.0) * 12
        rail = 15 * clamp((5 - min(abs(y - 5), abs(y - 139))) / 3.0)
        return max(3.0, 3 + band, rail)
    c.everywhere(at)
    return c


def vine():
    c = Canvas(512, 160, True)
    points = [(i * 0.5, 80 + 34 * math.sin(TAU * i / 512), 7, 14, 1) for i in range(1024)]
    c.tube(points)
    for i in range(4):
        up = 1 if i % 2 == 0 else -1
        x = 64 + 128 * i
        y = 80 + 34 * up
        c.leaf((x, y, -up * 1.1), (92, 25, 18, 2), {"veins": 6, "hollow": 0.2, "bend": up * 0.4})
        c.leaf((x - 24, y - up * 6, -up * 2.3), (66, 18, 15, 2), {"veins": 5, "bend": -up * 0.4})
        c.tube(swung((x + 20, y - up * 6), up * 0.9, 96, lambda t, up=up: -up * (0.01 + 0.13 * t ** 2),
                     lambda t: 4.2 - 1.6 * t, lambda t: 10 - 3 * t, lambda t: 1))
    return c


# Textures: they repeat to all sides

def basket():
    c = Canvas(384, 384)
    band, strands = 48, 4

    def at(x, y):
        i, j = int(x // band), int(y // band)
        across, along = (y % band, x % band) if (i + j) % 2 == 0 else (x % band, y % band)
        s = (across / band * strands) % 1.0 * 2 - 1
        lift = math.sin(math.pi * along / band)
        edge = smooth(0, 0.06, min(along, band - along) / band)
        return 4 + edge * (5 + 15 * lift ** 0.8) * (0.55 + 0.45 * math.sqrt(1 - s * s * 0.96))
    c.everywhere(at)
    return c


def scales():
    c = Canvas(384, 384)
    side = 64

    def at(x, y):
        best = 0.0
        for row in range(-1, 14):
            shift = side / 2 if row % 2 else 0
            cy = row * side / 2
            column = round((x - shift) / side)
            cx = column * side + shift
            dx, dy = (x - cx) / (side * 0.5), (y - cy) / (side * 0.5)
            d = math.hypot(dx, dy)
            if d < 1 and dy <= 1:
                # Lower rows lie over the upper ones.
                height = 3 + 15 * (1 - (dy + 1) / 2) + 7 * math.sqrt(1 - d * d) + 2.5 * bell(dx, 0.12) * (1 - d)
                best = max(best, height)
        return best
    c.everywhere(at)
    return c


PATTERNS = {
    "Rosette": rosette, "Dahlia": dahlia, "Fern Leaf": fern_leaf, "Oak Leaf": oak_leaf,
    "Laurel Wreath": wreath, "Shell": shell, "Scroll": scroll, "Corner Scroll": corner,
    "Palmette": palmette, "Knot": knot, "Quatrefoil": quatrefoil, "Rope": rope, "Rope Ring": rope_ring,
    "Egg and Dart": egg_and_dart, "Bead and Reel": bead_and_reel, "Guilloche": guilloche,
    "Greek Key": greek_key, "Vine": vine, "Basket Weave": basket, "Scales": scales,
}


def write(cli, name, canvas):
    rows = [[round(value * STEP) / STEP for value in row] for row in canvas.rows]
    with tempfile.TemporaryDirectory() as folder:
        source = pathlib.Path(folder) / "heights.pfm"
        # The first row of the file is the top one.
        body = b"".join(struct.pack(f"<{canvas.width}f", *row) for row in reversed(rows))
        source.write_bytes(f"Pf\n{canvas.width} {canvas.height}\n-1.0\n".encode() + body)
        target = HERE / "patterns" / f"{name}.ptr"
        target.parent.mkdir(exist_ok=True)
        subprocess.run([cli, "convert", source, target, "--author", "Brindlemark"], check=True)


def main():
    for name in sys.argv[2:] or PATTERNS:
        write(sys.argv[1], name, PATTERNS[name]())


if __name__ == "__main__":
    main()
