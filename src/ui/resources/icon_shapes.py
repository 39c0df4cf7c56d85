"""The shapes that icons are made of: each function returns a piece of SVG on a 32 x 32 grid.

src/ui/icons.cpp replaces LINE and ACCENT, in exactly this spelling, by those of the theme. Strokes are
2 wide and centred on odd coordinates: they cover whole pixels at 16 and 32.
"""

import math

LINE = "#404750"
ACCENT = "#2e75b6"
MATERIAL = "#d9a05b"
# The same on every theme.
SHADE = "#26221e"
PAPER = "#ffffff"
FIXED_ACCENT = "#2E75B6"


def stroke(d, colour=LINE, width=2, extra=""):
    return (f'<path d="{d}" fill="none" stroke="{colour}" stroke-width="{width}" '
            f'stroke-linecap="round" stroke-linejoin="round" {extra}/>')


def dashed(d, colour=LINE, pattern="3 3", width=2):
    return (f'<path d="{d}" fill="none" stroke="{colour}" stroke-width="{width}" '
            f'stroke-dasharray="{pattern}"/>')


def fill(d, colour=ACCENT, extra=""):
    return f'<path d="{d}" fill="{colour}" {extra}/>'


def solid(d, colour=MATERIAL, edge=LINE):
    """A filled shape with an outline."""
    return (f'<path d="{d}" fill="{colour}" stroke="{edge}" stroke-width="2" '
            'stroke-linejoin="round"/>')


def tint(d):
    """A pale wash of the line colour: paper, glass, a face turned away."""
    return fill(d, LINE, 'fill-opacity="0.16"')


def disc(x, y, r, colour=ACCENT):
    return f'<circle cx="{x}" cy="{y}" r="{r}" fill="{colour}"/>'


def ring(x, y, r, colour=LINE, extra='fill="none"', width=2):
    return (f'<circle cx="{x}" cy="{y}" r="{r}" stroke="{colour}" stroke-width="{width}" '
            f'{extra}/>')


def turned(degrees, *parts):
    return f'<g transform="rotate({degrees} 16 16)">' + "".join(parts) + "</g>"


def mirrored(*parts):
    return '<g transform="translate(32 0) scale(-1 1)">' + "".join(parts) + "</g>"


def moved(x, y, scale, *parts):
    return f'<g transform="translate({x} {y}) scale({scale})">' + "".join(parts) + "</g>"


def body(profile, bottom=29):
    """Material below a profile that runs from x = 2 to x = 30."""
    return fill(f"{profile} V{bottom} H2 Z", MATERIAL) + stroke(profile)


def arrow_right(x0, x1, y, colour=ACCENT, head=4):
    return stroke(f"M{x0} {y} H{x1} M{x1 - head} {y - head} L{x1} {y} L{x1 - head} {y + head}",
                  colour, 2.5)


def arrow_down(x, y0, y1, colour=ACCENT, head=4):
    return stroke(f"M{x} {y0} V{y1} M{x - head} {y1 - head} L{x} {y1} L{x + head} {y1 - head}",
                  colour, 2.5)


def arrow_up(x, y0, y1, colour=ACCENT, head=4):
    return stroke(f"M{x} {y0} V{y1} M{x - head} {y1 + head} L{x} {y1} L{x + head} {y1 + head}",
                  colour, 2.5)


def plus(x, y, r=5, colour=ACCENT):
    return stroke(f"M{x - r} {y} H{x + r} M{x} {y - r} V{y + r}", colour, 3)


def minus(x, y, r=5, colour=ACCENT):
    return stroke(f"M{x - r} {y} H{x + r}", colour, 3)


def cross(x, y, r=4, colour=ACCENT):
    return stroke(f"M{x - r} {y - r} L{x + r} {y + r} M{x + r} {y - r} L{x - r} {y + r}", colour, 3)


def page():
    return tint("M7 3 H20 L26 9 V29 H7 Z") + stroke("M7 3 H19 L25 9 V29 H7 Z M19 3 V9 H25")


def floppy():
    return (tint("M3 3 H25 L29 7 V29 H3 Z") + stroke("M3 3 H25 L29 7 V29 H3 Z")
            + fill("M9 3 H21 V11 H9 Z", LINE) + solid("M9 19 H23 V29 H9 Z", MATERIAL))


def folder():
    return (fill("M3 27 V7 H12 L15 11 H27 V14 H9 Z", MATERIAL)
            + stroke("M3 27 V7 H12 L15 11 H27 V15")
            + solid("M8 15 H30 L26 27 H3 Z", MATERIAL))


def marquee(d):
    return tint(d) + dashed(d, LINE, "4 2.5")


def cube(colour=MATERIAL):
    return (fill("M16 3 L28 9 V23 L16 29 L4 23 V9 Z", colour)
            + fill("M16 15 L28 9 V23 L16 29 Z", SHADE, 'fill-opacity="0.4"')
            + stroke("M16 3 L28 9 V23 L16 29 L4 23 V9 Z M4 9 L16 15 L28 9 M16 15 V29"))


def small_cube():
    return moved(2.4, 4.4, 0.72, cube())


def eraser():
    """A tilted block, its rubber end at the lower left."""
    return ('<g transform="rotate(-45 16 11)">'
            + solid("M5 6 H27 V16 H5 Z", ACCENT)
            + solid("M5 6 H12 V16 H5 Z", MATERIAL) + "</g>")


def pencil():
    return moved(14, 14, 0.56, solid("M2 30 L5 21 L22 4 L28 10 L11 27 Z", ACCENT))


def out_arrow():
    """Bottom right: leaves the program."""
    return arrow_right(17, 30, 25, ACCENT, 5)


def undo_arrow(colour=LINE):
    return (stroke("M8 11 H19 C25 11 28 15 28 19 C28 24 24 27 19 27 H13", colour, 3)
            + stroke("M12 5 L6 11 L12 17", colour, 3))


def axis_turn():
    """One quarter turn, clockwise from the left over the top; for the rotate buttons."""
    return stroke("M5 20 A11 11 0 1 1 22 25", ACCENT, 3) + fill("M17 20 L25 22 L20 30 Z", ACCENT)


def light(column, row):
    """A ball lit from one of eight sides; the lamp stands there."""
    diagonal = 0.8 if column and row else 1.0
    x, y = 16 + column * 12 * diagonal, 16 + row * 12 * diagonal
    bx, by = 16 - column * 4, 16 - row * 4
    hx, hy = bx + column * 4 * diagonal, by + row * 4 * diagonal
    return (disc(bx, by, 10, SHADE) + disc(bx, by, 9, MATERIAL)
            + f'<circle cx="{bx}" cy="{by}" r="9" fill="{SHADE}" fill-opacity="0.55"/>'
            + disc(hx, hy, 5, MATERIAL) + ring(bx, by, 10) + disc(x, y, 4, ACCENT))


def padlock(x, y, closed=True):
    bow = f"M{x - 3} {y} V{y - 3} A3 3 0 0 1 {x + 3} {y - 3}" + (f" V{y}" if closed else "")
    return stroke(bow, LINE) + solid(f"M{x - 5} {y} H{x + 5} V{y + 8} H{x - 5} Z", MATERIAL)


def axis_letters(bound):
    """The letters X, Y and Z in a row, those that scale together in the accent colour."""
    letters = {"X": "M3 4 L9 13 M9 4 L3 13", "Y": "M13 4 L16 8.5 L19 4 M16 8.5 V13",
               "Z": "M23 4 H29 L23 13 H29"}
    return "".join(stroke(d, ACCENT if letter in bound else LINE, 2.5)
                   for letter, d in letters.items())


def sign(mark):
    """For the boxes that ask and tell: a mark on a round field."""
    return ring(16, 16, 13, ACCENT) + mark


def profile(d):
    """A brush profile over its base line."""
    return (fill(f"{d} L29 27 L3 27 Z", MATERIAL) + stroke(d, ACCENT, 2.5)
            + stroke("M2 27 H30", LINE))


def sun(r=6, colour=MATERIAL):
    rays = ""
    for k in range(8):
        a = math.radians(45 * k)
        rays += (f"M{16 + 10 * math.cos(a):.1f} {16 + 10 * math.sin(a):.1f} "
                 f"L{16 + 13 * math.cos(a):.1f} {16 + 13 * math.sin(a):.1f} ")
    return disc(16, 16, r, colour) + ring(16, 16, r) + stroke(rays, LINE, 2.5)


def wand():
    return (stroke("M5 27 L18 14", LINE, 4)
            + fill("M22 2 L23.6 8.4 L30 10 L23.6 11.6 L22 18 L20.4 11.6 L14 10 L20.4 8.4 Z", ACCENT)
            + fill("M9 4 L10 8 L14 9 L10 10 L9 14 L8 10 L4 9 L8 8 Z", MATERIAL))


def dropper():
    return (stroke("M5 27 L7 21 L18 10 L22 14 L11 25 Z", LINE)
            + fill("M7.5 24.5 L8.5 21.5 L13 17 H18 L10.5 24 Z", MATERIAL)
            + stroke("M15 7 L25 17", LINE, 3)
            + stroke("M20 12 L25 7", ACCENT, 6))


def paint_brush():
    return (stroke("M27 4 L15 18", LINE, 4)
            + solid("M11 17 C15 16 18 19 17 22 C15 28 8 29 3 28 C7 26 6 19 11 17 Z", ACCENT))


def bucket():
    return (tint("M14 5 L27 17 L15 28 L4 17 Z")
            + fill("M6 17 H26.5 L15 28 L4 17 Z", MATERIAL)
            + stroke("M14 5 L26 17 L15 27 L4 16 Z M14 5 L10 1")
            + fill("M28 19 C31 23 31 27 28 27 C25 27 25 23 28 19 Z", ACCENT))
