#!/usr/bin/env python3
"""Writes the built-in patterns (patterns/*.ptr), Python's standard library only.

    make_patterns.py MARLOWEN_CLI [NAME...]

The heights of the modules pattern_ornaments and pattern_repeats are rounded to 1/64 of a cell, so that
they pack well, and handed to marlowen-cli, which writes the pattern files.
"""

import pathlib
import struct
import subprocess
import sys
import tempfile

import pattern_ornaments
import pattern_repeats

HERE = pathlib.Path(__file__).resolve().parent
STEP = 64

PATTERNS = {
    "Rosette": pattern_ornaments.rosette,
    "Dahlia": pattern_ornaments.dahlia,
    "Fern Leaf": pattern_ornaments.fern_leaf,
    "Oak Leaf": pattern_ornaments.oak_leaf,
    "Laurel Wreath": pattern_ornaments.wreath,
    "Shell": pattern_ornaments.shell,
    "Scroll": pattern_ornaments.scroll,
    "Corner Scroll": pattern_ornaments.corner,
    "Palmette": pattern_ornaments.palmette,
    "Knot": pattern_ornaments.knot,
    "Quatrefoil": pattern_ornaments.quatrefoil,
    "Rope": pattern_repeats.rope,
    "Rope Ring": pattern_repeats.rope_ring,
    "Egg and Dart": pattern_repeats.egg_and_dart,
    "Bead and Reel": pattern_repeats.bead_and_reel,
    "Guilloche": pattern_repeats.guilloche,
    "Greek Key": pattern_repeats.greek_key,
    "Vine": pattern_repeats.vine,
    "Basket Weave": pattern_repeats.basket,
    "Scales": pattern_repeats.scales,
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
