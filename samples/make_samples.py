#!/usr/bin/env python3
"""Makes the samples beside this script (Python's standard library only).

medal.png    8-bit grey, 600 x 600: a rim, lettering along it, a rosette
face.png     16-bit grey, 512 x 640: a soft face on an empty ground
coin.png     16-bit grey, 512 x 512: a high dome with a shell, lettering and a beaded rim
valley.png   16-bit grey, 600 x 400: trees, hills and mountains behind each other
weave.png    8-bit grey, 256 x 256: a texture whose edges meet
star.obj     a star on a plate, 74 x 74 x 9 mm: quads, an octagon, a concave polygon of ten corners
shell.stl    binary, a fluted shell, 92 x 77 x 15 mm
"""
import math
import pathlib
import struct
import zlib

HERE = pathlib.Path(__file__).resolve().parent

# Letters as polylines in a box 4 wide and 6 high, y downward.
LETTERS = {
    "A": [[(0, 6), (2, 0), (4, 6)], [(0.8, 4), (3.2, 4)]],
    "E": [[(4, 0), (0, 0), (0, 6), (4, 6)], [(0, 3), (3, 3)]],
    "F": [[(4, 0), (0, 0), (0, 6)], [(0, 3), (3, 3)]],
    "I": [[(2, 0), (2, 6)]],
    "L": [[(0, 0), (0, 6), (4, 6)]],
    "M": [[(0, 6), (0, 0), (2, 3), (4, 0), (4, 6)]],
    "N": [[(0, 6), (0, 0), (4, 6), (4, 0)]],
    "O": [[(1, 0), (3, 0), (4, 1), (4, 5), (3, 6), (1, 6), (0, 5), (0, 1), (1, 0)]],
    "R": [[(0, 6), (0, 0), (3, 0), (4, 1), (4, 2), (3, 3), (0, 3)], [(1.5, 3), (4, 6)]],
    "S": [[(4, 1), (3, 0), (1, 0), (0, 1), (0, 2), (1, 3), (3, 3), (4, 4), (4, 5), (3, 6), (1, 6), (0, 5)]],
    "T": [[(0, 0), (4, 0)], [(2, 0), (2, 6)]],
    "W": [[(0, 0), (1, 6), (2, 3), (3, 6), (4, 0)]],
}


def chunk(kind, data):
    body = kind + data
    return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))


def filtered(row, above, step):
    """The row as differences to the pixel at the left, or above, whichever is smaller in sum."""
    left = bytes((value - (row[i - step] if i >= step else 0)) & 255 for i, value in enumerate(row))
    up = bytes((value - above[i]) & 255 for i, value in enumerate(row))
    cost = [sum(min(b, 256 - b) for b in line) for line in (left, up)]
    return b"\x01" + left if cost[0] <= cost[1] else b"\x02" + up


def write_png(name, rows, bits):
    """rows: lists of heights 0..1."""
    step = bits // 8
    top = (1 << bits) - 1
    data = bytearray()
    above = bytes(len(rows[0]) * step)
    for row in rows:
        packed = b"".join(round(max(0.0, min(1.0, v)) * top).to_bytes(step, "big") for v in row)
        data += filtered(packed, above, step)
        above = packed
    header = struct.pack(">IIBBBBB", len(rows[0]), len(rows), bits, 0, 0, 0, 0)
    (HERE / name).write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header)
                              + chunk(b"IDAT", zlib.compress(bytes(data), 9)) + chunk(b"IEND", b""))


def smoothstep(value):
    value = max(0.0, min(1.0, value))
    return value * value * (3.0 - 2.0 * value)


def distance_to(x, y, a, b):
    dx, dy = b[0] - a[0], b[1] - a[1]
    along = ((x - a[0]) * dx + (y - a[1]) * dy) / (dx * dx + dy * dy)
    along = max(0.0, min(1.0, along))
    return math.hypot(x - a[0] - along * dx, y - a[1] - along * dy)


def raise_segment(rows, a, b, width, height):
    """Adds a rounded ridge along a segment where it is higher than what is there."""
    for y in range(int(min(a[1], b[1]) - width), int(max(a[1], b[1]) + width) + 2):
        for x in range(int(min(a[0], b[0]) - width), int(max(a[0], b[0]) + width) + 2):
            share = 1.0 - distance_to(x, y, a, b) / width
            if share > 0.0:
                rows[y][x] = max(rows[y][x], 0.45 + height * smoothstep(2.0 * share))


def letter_along_circle(rows, letter, centre, radius, angle):
    """The foot of the letter points to the centre; the angle is clockwise from the top."""
    unit = 7.0
    cos, sin = math.cos(angle), math.sin(angle)

    def place(point):
        across, down = (point[0] - 2.0) * unit, (point[1] - 3.0) * unit - radius
        return centre + across * cos - down * sin, centre + across * sin + down * cos

    for line in LETTERS[letter]:
        for a, b in zip(line, line[1:]):
            raise_segment(rows, place(a), place(b), 5.5, 0.4)


def medal():
    side = 600
    centre = side / 2.0
    rows = []
    for y in range(side):
        row = []
        for x in range(side):
            r = math.hypot(x - centre, y - centre)
            angle = math.atan2(y - centre, x - centre)
            height = 0.0
            if r < 280.0:
                height = 0.45
                height += 0.45 * smoothstep(1.0 - abs(r - 268.0) / 12.0)
                height += 0.15 * smoothstep(1.0 - abs(r - 190.0) / 6.0)
                petal = 150.0 * (0.72 + 0.28 * math.cos(8.0 * angle))
                height += 0.40 * smoothstep((petal - r) / 70.0) * (0.75 + 0.25 * math.cos(r / 9.0))
            row.append(height)
        rows.append(row)
    text = "MARLOWEN RELIEFS FROM LINES OF ART "
    for index, letter in enumerate(text):
        if letter != " ":
            letter_along_circle(rows, letter, centre, 228.0, 2.0 * math.pi * index / len(text) - 0.7)
    write_png("medal.png", rows, 8)


# Bumps of the face: centre x, centre y, radius x, radius y, height; the head spans -1 .. 1.
FEATURES = [
    (0.00, 0.10, 0.11, 0.28, 0.20), (0.00, 0.28, 0.15, 0.10, 0.16),       # nose
    (-0.32, -0.08, 0.20, 0.12, -0.14), (0.32, -0.08, 0.20, 0.12, -0.14),  # eye sockets
    (-0.32, -0.07, 0.11, 0.06, 0.09), (0.32, -0.07, 0.11, 0.06, 0.09),    # eyes
    (-0.33, -0.24, 0.24, 0.06, 0.07), (0.33, -0.24, 0.24, 0.06, 0.07),    # brows
    (-0.42, 0.28, 0.22, 0.20, 0.07), (0.42, 0.28, 0.22, 0.20, 0.07),      # cheeks
    (0.00, 0.50, 0.22, 0.035, 0.07), (0.00, 0.58, 0.19, 0.04, 0.08),      # lips
    (0.00, 0.54, 0.24, 0.018, -0.07), (0.00, 0.80, 0.18, 0.12, 0.09),     # mouth, chin
]


def face():
    width, height = 512, 640
    rows = []
    for j in range(height):
        row = []
        for i in range(width):
            x, y = (i - 256.0) / 205.0, (j - 320.0) / 275.0
            head = 1.0 - x * x * (1.0 + 0.35 * max(0.0, y)) - y * y
            level = 0.0
            if head > 0.0:
                level = 0.62 * math.sqrt(head)
                edge = smoothstep(head * 4.0)
                for cx, cy, rx, ry, high in FEATURES:
                    far = ((x - cx) / rx) ** 2 + ((y - cy) / ry) ** 2
                    if far < 12.0:
                        level += edge * high * math.exp(-far)
            row.append(level)
        rows.append(row)
    write_png("face.png", rows, 16)


def coin():
    side = 512
    centre = side / 2.0
    letters = [[0.0] * side for _ in range(side)]
    text = "MARLOWEN * FAIR SAILS *".replace("*", " ")
    for index, letter in enumerate(text):
        if letter != " ":
            letter_along_circle(letters, letter, centre, 190.0, 2.0 * math.pi * index / len(text) - 2.0)
    rows = []
    for y in range(side):
        row = []
        for x in range(side):
            r, angle = math.hypot(x - centre, y - centre), math.atan2(x - centre, centre + 90.0 - y)
            height = 0.0
            if r < 245.0:
                height = 0.10 + 0.62 * (1.0 - (r / 245.0) ** 2)
                height += 0.05 * smoothstep((r - 222.0) / 6.0)
                bead = math.cos(72.0 * math.atan2(y - centre, x - centre))
                height += 0.03 * smoothstep(1.0 - abs(r - 214.0) / 6.0) * smoothstep(0.5 + bead)
                height += 0.07 * smoothstep(letters[y][x])
                fan = math.hypot(x - centre, y - centre - 90.0)
                if abs(angle) < 1.0 and fan < 185.0:
                    edge = smoothstep((1.0 - abs(angle)) * fan / 16.0) * smoothstep((185.0 - fan) / 14.0)
                    height += edge * (0.10 + 0.035 * math.cos(angle * 22.0) + 0.012 * math.cos(fan / 3.5))
            row.append(height)
        rows.append(row)
    write_png("coin.png", rows, 16)


def ridge(x, seed, rough):
    """The skyline of a range of hills: waves of falling length."""
    return sum(rough ** n * math.sin(x * 1.9 ** n * 0.011 + seed * (n + 1)) for n in range(7))


def valley():
    width, height = 600, 400
    # Foot of the skyline, its waves, roughness, nearness, seed.
    layers = [(150.0, 42.0, 0.62, 0.30, 1.7), (235.0, 26.0, 0.45, 0.55, 4.1), (310.0, 18.0, 0.35, 0.78, 2.6)]
    rows = []
    for y in range(height):
        row = []
        for x in range(width):
            level = 0.10 + 0.05 * y / height
            for foot, waves, rough, near, seed in layers:
                below = y - foot + waves * ridge(x, seed, rough)
                if below > 0.0:
                    folds = ridge(x * 1.7 + below * 0.9, seed + 1.0, rough)
                    level = near + 0.10 * smoothstep(below / 90.0) + 0.018 * folds * smoothstep(below / 25.0)
            row.append(level)
        rows.append(row)
    for index, cx in enumerate([60, 545, 215, 410, 20, 320, 500, 130, 250, 585]):  # trees, the near ones last
        tall = 24.0 + 2.5 * index
        cy = 322.0 + 6.0 * index
        for y in range(max(0, int(cy - tall)), min(height, int(cy + tall) + 1)):
            for x in range(max(0, int(cx - tall)), min(width, int(cx + tall) + 1)):
                rest = 1.0 - ((x - cx) ** 2 + (y - cy) ** 2) / tall ** 2
                if rest > 0.0:
                    leaves = 0.014 * math.sin(x * 0.61 + index) * math.sin(y * 0.53 + 0.4 * math.sin(x * 0.2))
                    rows[y][x] = max(rows[y][x], 0.80 + 0.16 * math.sqrt(rest) + leaves * smoothstep(rest * 4.0))
    write_png("valley.png", rows, 16)


def weave():
    side = 256
    rows = []
    for j in range(side):
        row = []
        for i in range(side):
            across, down = i % 64 - 31.5, j % 64 - 31.5
            over = (i // 64 + j // 64) % 2 == 0
            along, beside = (across, down) if over else (down, across)
            thread = math.sqrt(max(0.0, 1.0 - (beside / 32.0) ** 2))
            arch = math.cos(along / 32.0 * math.pi / 2.0)
            grain = 0.04 * math.cos(beside * math.pi / 8.0)
            row.append(0.12 + thread * (0.3 + 0.5 * arch) + grain * thread)
        rows.append(row)
    write_png("weave.png", rows, 8)


def star():
    def ring(count, outer, inner, turn):
        angles = [2.0 * math.pi * (index + turn) / count for index in range(count)]
        radii = [(outer, inner)[index % 2] for index in range(count)]
        return [(radius * math.cos(angle), radius * math.sin(angle)) for radius, angle in zip(radii, angles)]

    plate = ring(8, 40.0, 40.0, 0.5)
    tips = ring(10, 34.0, 15.0, 2.5)
    lines = ["# A star on a plate, in millimetres"]
    for corners, z in ((plate, 0), (plate, 4), (tips, 4), (tips, 9)):
        lines += [f"v {x:.3f} {y:.3f} {z}" for x, y in corners]

    def walls(low, high, count):
        return [f"f {low + i} {low + (i + 1) % count} {high + (i + 1) % count} {high + i}" for i in range(count)]

    def polygon(first, count):
        return ["f " + " ".join(str(first + i) for i in range(count))]

    lines += walls(1, 9, 8) + polygon(9, 8) + walls(17, 27, 10) + polygon(27, 10)
    (HERE / "star.obj").write_text("\n".join(lines) + "\n")


def shell():
    rings, ribs, steps = 20, 13, 8
    across = ribs * steps

    def point(ring, step):
        share = ring / rings
        angle = math.pi * (0.05 + 0.9 * step / across)
        flute = math.cos(2.0 * math.pi * ribs * step / across)
        radius = 60.0 * share * (1.0 + 0.03 * flute * share)
        dome = math.sin(math.pi * (0.15 + 0.7 * step / across)) * math.sqrt(max(0.0, 1.0 - share ** 4))
        height = 18.0 * dome + 2.0 * share * (1.0 + flute) * (1.0 - share ** 6)
        return radius * math.cos(angle) * 0.75, radius * math.sin(angle) * 1.25, height * math.sqrt(share)

    facets = []
    for ring in range(rings):
        for step in range(across):
            a, b = point(ring, step), point(ring, step + 1)
            c, d = point(ring + 1, step), point(ring + 1, step + 1)
            facets.append((a, c, d))
            if ring > 0:
                facets.append((a, d, b))
    data = b"Fluted shell, millimetres".ljust(80, b"\0") + struct.pack("<I", len(facets))
    for facet in facets:
        data += struct.pack("<12fH", 0.0, 0.0, 0.0, *facet[0], *facet[1], *facet[2], 0)
    (HERE / "shell.stl").write_bytes(data)


if __name__ == "__main__":
    medal()
    face()
    coin()
    valley()
    weave()
    star()
    shell()
