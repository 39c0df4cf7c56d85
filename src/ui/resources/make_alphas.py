#!/usr/bin/env python3
"""Writes the built-in alpha brushes (alphas/*.png, 8-bit grey) and the resource file alphas.qrc.

Black does nothing, white has the full effect. Single shapes fade to black before the border;
textures repeat without a seam.
"""

import math
import pathlib
import random
import struct
import zlib

from pattern_canvas import clamp, smooth

HERE = pathlib.Path(__file__).resolve().parent
SIDE = 256


def polar(x, y):
    """Distance from the centre (1 at the border's middle) and angle of a point in 0..1."""
    dx, dy = 2 * x - 1, 2 * y - 1
    return math.hypot(dx, dy), math.atan2(dy, dx)


# Single shapes: functions of a point in 0..1

def soft_round(x, y):
    return 1 - smooth(0.0, 0.98, polar(x, y)[0])


def hard_round(x, y):
    return 1 - smooth(0.92, 0.97, polar(x, y)[0])


def dome(x, y):
    r = polar(x, y)[0] / 0.97
    return math.sqrt(1 - r * r) if r < 1 else 0.0


def ring(x, y):
    r = abs(polar(x, y)[0] - 0.72) / 0.24
    return math.sqrt(1 - r * r) if r < 1 else 0.0


def soft_square(x, y):
    r = max(abs(2 * x - 1), abs(2 * y - 1))
    return 1 - smooth(0.78, 0.97, r)


def pyramid(x, y):
    return clamp(1 - max(abs(2 * x - 1), abs(2 * y - 1)) / 0.97)


def star(x, y):
    r, a = polar(x, y)
    sector = 2 * math.pi / 5
    a = abs((a + math.pi / 2 + sector / 2) % sector - sector / 2)
    # Edge from the point (0.96 out) to the notch (0.40 out, half a sector away).
    px, py = r * math.cos(a), r * math.sin(a)
    nx, ny = 0.40 * math.cos(sector / 2), 0.40 * math.sin(sector / 2)
    inside = (0.96 * ny - px * ny - py * (0.96 - nx)) / (0.96 * ny)
    return clamp(inside * 1.6)


def flower(x, y):
    r, a = polar(x, y)
    petal = 0.58 + 0.38 * abs(math.cos(3 * a))
    rim = smooth(0.0, 0.3, petal - r)
    fold = 0.65 + 0.35 * abs(math.sin(3 * a)) ** 0.5 if r > 0.22 else 1.0
    heart = math.sqrt(clamp(1 - (r / 0.22) ** 2))
    return clamp(max(rim * (0.9 - 0.35 * fold + 0.3 * r), heart))


def leaf(x, y):
    u, v = (x - 0.04) / 0.92, (2 * y - 1)
    if not 0 < u < 1:
        return 0.0
    width = 0.62 * math.sin(math.pi * u ** 0.85) ** 0.9
    if abs(v) >= width:
        return 0.0
    body = math.sqrt(1 - (abs(v) / width) ** 2)
    rib = 1 - smooth(0.0, 0.05, abs(v))
    vein = 1 - smooth(0.0, 0.16, abs((9 * u - 6.5 * abs(v)) % 1 - 0.5))
    return clamp(0.75 * body - 0.25 * vein * body + 0.35 * rib * body)


# Textures: functions of a point in 0..1 that repeat with period 1

def _lattice(seed, count):
    chance = random.Random(seed)
    return [[chance.random() for _ in range(count)] for _ in range(count)]


_LATTICES = {count: _lattice(count, count) for count in (4, 8, 16, 32, 64)}


def value_noise(x, y, count):
    grid = _LATTICES[count]
    gx, gy = x * count, y * count
    ix, iy = math.floor(gx), math.floor(gy)
    fx, fy = smooth(0, 1, gx - ix), smooth(0, 1, gy - iy)

    def at(i, j):
        return grid[j % count][i % count]

    top = at(ix, iy) * (1 - fx) + at(ix + 1, iy) * fx
    bottom = at(ix, iy + 1) * (1 - fx) + at(ix + 1, iy + 1) * fx
    return top * (1 - fy) + bottom * fy


def noise(x, y):
    total = sum(value_noise(x, y, 4 << k) * 0.55 ** k for k in range(5))
    return smooth(0.6, 1.6, total)


def grain(x, y):
    return smooth(0.25, 0.95, value_noise(x, y, 64) * 0.7 + value_noise(x, y, 32) * 0.3)


def _cell_points(seed, count):
    chance = random.Random(seed)
    return [[(0.15 + 0.7 * chance.random(), 0.15 + 0.7 * chance.random()) for _ in range(count)]
            for _ in range(count)]


_CELLS = {count: _cell_points(count + 100, count) for count in (5, 7)}


def nearest_two(x, y, count):
    """Distances to the nearest and second nearest point of a jittered grid, in grid steps."""
    points = _CELLS[count]
    gx, gy = x * count, y * count
    ix, iy = math.floor(gx), math.floor(gy)
    first, second = 9.0, 9.0
    for j in range(iy - 1, iy + 2):
        for i in range(ix - 1, ix + 2):
            px, py = points[j % count][i % count]
            d = math.hypot(gx - i - px, gy - j - py)
            if d < first:
                first, second = d, first
            elif d < second:
                second = d
    return first, second


def cracks(x, y):
    bend = 0.03 * (value_noise(x, y, 16) - 0.5)
    first, second = nearest_two((x + bend) % 1, (y - bend) % 1, 5)
    return 1 - smooth(0.02, 0.12, second - first)


def pebbles(x, y):
    first, second = nearest_two(x, y, 7)
    return smooth(0.0, 0.45, second - first) ** 0.6


def hammered(x, y):
    first, _ = nearest_two(x, y, 7)
    return clamp(1 - first * first * 1.1)


def scales(x, y):
    rows, columns = 8, 6
    best = 0.0
    for row in range(math.floor(y * rows) - 1, math.floor(y * rows) + 2):
        centre_y = row / rows
        shift = 0.5 if row % 2 else 0.0
        column = round(x * columns - shift)
        dx = (x * columns - shift - column) / 0.5
        dy = (y - centre_y) * rows
        if dy < 0 or dx * dx + (dy / 1.75) ** 2 >= 1:
            continue
        height = 0.25 + 0.75 * dy / 1.75
        edge = smooth(0.0, 0.18, 1 - dx * dx - (dy / 1.75) ** 2)
        # A lower row starts above the tips of the row before: the upper one lies on top.
        return clamp(height * edge) if row == math.floor(y * rows) - 1 else max(best, height * edge)
    return best


def bricks(x, y):
    rows, columns = 8, 4
    row = math.floor(y * rows)
    u = x * columns + (0.5 if row % 2 else 0.0)
    gap_x = min(u % 1, 1 - u % 1) / columns
    gap_y = min(y * rows % 1, 1 - y * rows % 1) / rows
    worn = 0.85 + 0.15 * value_noise(x, y, 32)
    return smooth(0.006, 0.02, min(gap_x, gap_y)) * worn


def weave(x, y):
    count = 6
    u, v = x * count, y * count

    def strand(along, across):
        round_back = math.sqrt(clamp(1 - ((across % 1 - 0.5) / 0.42) ** 2))
        return round_back, 0.5 + 0.5 * math.cos(math.pi * (along - 0.5 + math.floor(across)))

    warp, warp_rise = strand(u, v)
    weft, weft_rise = strand(v, u + 1)
    return max(warp * (0.25 + 0.75 * warp_rise), weft * (0.25 + 0.75 * weft_rise))


def wood(x, y):
    bend = value_noise(x, y, 4) * 0.09 + value_noise(x, y, 8) * 0.02
    line = (y + bend) * 12 % 1
    fibre = value_noise(x, y * 4 % 1, 16) * 0.2 + value_noise(x, y * 2 % 1, 64) * 0.12
    return clamp(0.15 + 0.55 * line ** 1.5 * (1 - smooth(0.88, 1.0, line)) + fibre)


def rope(x, y):
    lane = y * 4 % 1
    strand = math.sqrt(clamp(1 - ((lane - 0.5) / 0.48) ** 2))
    twist = (x * 10 + (lane - 0.5) * 1.1) % 1
    return strand * (0.3 + 0.7 * math.sin(math.pi * twist) ** 0.8)


def scratches_field():
    chance = random.Random(7)
    lines = []
    for _ in range(70):
        angle = 0.5 + chance.gauss(0, 0.25)
        lines.append((chance.random(), chance.random(), math.cos(angle), math.sin(angle),
                      0.08 + 0.25 * chance.random(), 0.35 + 0.65 * chance.random()))
    return lines


_SCRATCHES = scratches_field()


def scratches(x, y):
    best = 0.0
    for cx, cy, c, s, half, depth in _SCRATCHES:
        dx, dy = (x - cx + 0.5) % 1 - 0.5, (y - cy + 0.5) % 1 - 0.5
        along, across = abs(dx * c + dy * s), abs(dy * c - dx * s)
        if along < half and across < 0.008:
            best = max(best, depth * (1 - across / 0.008) * (1 - (along / half) ** 2))
    return best


ALPHAS = {
    "Soft Round": soft_round,
    "Hard Round": hard_round,
    "Dome": dome,
    "Ring": ring,
    "Soft Square": soft_square,
    "Pyramid": pyramid,
    "Star": star,
    "Flower": flower,
    "Leaf": leaf,
    "Noise": noise,
    "Grain": grain,
    "Pebbles": pebbles,
    "Hammered": hammered,
    "Cracks": cracks,
    "Scratches": scratches,
    "Scales": scales,
    "Bricks": bricks,
    "Weave": weave,
    "Rope": rope,
    "Wood Grain": wood,
}


def png(rows):
    def chunk(kind, data):
        return (struct.pack(">I", len(data)) + kind + data
                + struct.pack(">I", zlib.crc32(kind + data)))

    packed = zlib.compress(b"".join(b"\0" + row for row in rows), 9)
    header = struct.pack(">IIBBBBB", SIDE, SIDE, 8, 0, 0, 0, 0)
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", packed) + chunk(b"IEND", b"")


def main():
    folder = HERE / "alphas"
    folder.mkdir(exist_ok=True)
    lines = ["<RCC>", '    <qresource prefix="/marlowen2">']
    # The number keeps the order of the table when the files are listed by name.
    for number, (name, shade) in enumerate(ALPHAS.items(), 1):
        shades = [[clamp(shade((i + 0.5) / SIDE, (j + 0.5) / SIDE)) for i in range(SIDE)]
                  for j in range(SIDE)]
        darkest, brightest = min(map(min, shades)), max(map(max, shades))
        scale = 255 / (brightest - darkest)
        rows = [bytes(round((value - darkest) * scale) for value in row) for row in shades]
        path = folder / (name.replace(" ", "_") + ".png")
        path.write_bytes(png(rows))
        lines.append(f'        <file alias="alphas/{number:02} {name}.png">alphas/{path.name}</file>')
    lines += ["    </qresource>", "</RCC>"]
    (HERE / "alphas.qrc").write_text("\n".join(lines) + "\n", encoding="utf-8")


if __name__ == "__main__":
    main()
