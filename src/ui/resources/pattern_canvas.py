"""A grid of heights in cells, row 0 the lowest, and the shapes that the built-in patterns put on it."""

import math

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


def sprouts(c, points, rows, side):
    """Leaves along a bead: (share of its length, turn from its direction, length)."""
    for share, turn, size in rows:
        i = int(share * len(points))
        (px, py), (nx, ny) = points[i][:2], points[i + 2][:2]
        c.leaf((px, py, math.atan2(ny - py, nx - px) + side * turn), (size, size * 0.24, 16, 1),
               {"bend": side * (0.7 if turn > 0 else -0.7), "veins": 5, "hollow": 0.25})
