"""The built-in patterns that repeat without a seam: borders along a row, textures to all sides."""

import math

from pattern_canvas import TAU, Canvas, bell, clamp, smooth, swung


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
