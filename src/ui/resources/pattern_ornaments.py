"""The built-in patterns that are single ornaments."""

import math

from pattern_canvas import TAU, Canvas, smooth, sprouts, swung, volute


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
