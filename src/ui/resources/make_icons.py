#!/usr/bin/env python3
"""Writes every icon of the program (icons/*.svg) and the resource file marlowen.qrc beside itself.

Brushes are drawn as a cut through the material, which has a warm colour; what the brush does is blue.
"""

import pathlib

from icon_shapes import (
    ACCENT, FIXED_ACCENT, LINE, MATERIAL, PAPER, arrow_down, arrow_right, arrow_up, axis_letters,
    axis_turn, body, bucket, cross, cube, dashed, disc, dropper, eraser, fill, floppy, folder,
    light, minus, mirrored, moved, out_arrow, padlock, page, paint_brush, pencil, plus, profile,
    ring, sign, small_cube, solid, stroke, sun, tint, turned, undo_arrow, wand)

HERE = pathlib.Path(__file__).resolve().parent

ICONS = {
    # Program and files
    "logo": fill("M6 1 H26 A5 5 0 0 1 31 6 V26 A5 5 0 0 1 26 31 H6 A5 5 0 0 1 1 26 V6 A5 5 0 0 1 6 1 Z",
                 FIXED_ACCENT)
            + fill("M5 26 L11 8 L16 18 L21 8 L27 26 Z", MATERIAL)
            + fill("M11 8 L16 18 L13 26 H9 Z M21 8 L27 26 H20 Z", PAPER, 'fill-opacity="0.55"'),
    "new_32": page() + plus(16, 19, 4),
    "open_32": folder(),
    "openRecent": moved(0, 0, 0.9, folder()) + disc(23, 22, 8, ACCENT)
                  + stroke("M23 18 V22 H26", PAPER, 2),
    "save_32": floppy(),
    "save_as_32": floppy() + pencil(),
    "exit": stroke("M19 9 V3 H5 V29 H19 V23", LINE) + tint("M5 3 H19 V29 H5 Z")
            + arrow_right(13, 28, 16, ACCENT, 6),
    "undo_32": undo_arrow(ACCENT),
    "redo_32": mirrored(undo_arrow(ACCENT)),
    "ZoomToBoard_22": stroke("M3 9 V3 H9 M23 3 H29 V9 M29 23 V29 H23 M9 29 H3 V23", LINE)
                      + solid("M9 10 H23 V22 H9 Z", MATERIAL),
    "start_page": tint("M3 4 H29 V28 H3 Z") + stroke("M3 4 H29 V28 H3 Z M3 11 H29")
                  + solid("M7 15 H14 V24 H7 Z", MATERIAL) + solid("M18 15 H25 V24 H18 Z", ACCENT),
    "ask": sign(stroke("M12 13 C12 7 20 7 20 12 C20 15 16 15 16 19", ACCENT, 3) + disc(16, 24, 2)),
    "tell": sign(stroke("M16 15 V23", ACCENT, 3) + disc(16, 10, 2)),
    "warn": solid("M16 4 L29 27 H3 Z", MATERIAL) + stroke("M16 12 V19", LINE, 3)
            + disc(16, 23, 1.8, LINE),
    "fail": ring(16, 16, 13) + cross(16, 16, 5, LINE),
    "about": ring(16, 16, 12) + disc(16, 10, 2, ACCENT) + stroke("M16 15 V23", ACCENT, 3.5),
    "manual": tint("M3 6 H14 L16 8 L18 6 H29 V26 H18 L16 28 L14 26 H3 Z")
              + stroke("M3 6 H14 L16 8 L18 6 H29 V26 H18 L16 28 L14 26 H3 Z M16 8 V28")
              + stroke("M7 12 H12 M7 17 H12 M20 12 H25 M20 17 H25", ACCENT, 2),
    "whats_this": moved(-4, 2, 0.9, solid("M7 3 L25 17 L17 18 L22 27 L18 29 L13 20 L7 25 Z", MATERIAL))
                  + stroke("M20 7 C20 2 29 2 29 7 C29 10 24.5 10 24.5 14", ACCENT, 3)
                  + disc(24.5, 19, 1.8),
    "close": cross(16, 16, 8, LINE),
    "chevron_up": stroke("M7 20 L16 11 L25 20", LINE, 3),
    "chevron_down": stroke("M7 12 L16 21 L25 12", LINE, 3),
    "search": ring(13, 13, 9) + stroke("M20 20 L28 28", ACCENT, 4),
    "add_picture": tint("M3 5 H29 V27 H3 Z") + stroke("M3 5 H29 V27 H3 Z")
                   + fill("M4 26 L12 14 L18 22 L21 18 L28 26 Z", MATERIAL) + plus(23, 10, 4),
    "clone": tint("M3 3 H21 V21 H3 Z") + stroke("M3 3 H21 V21 H3 Z")
             + solid("M11 11 H29 V29 H11 Z", MATERIAL) + plus(20, 20, 4, LINE),
    "add_pattern": solid("M3 6 H20 V26 H3 Z", MATERIAL) + ring(11.5, 16, 5, LINE)
                   + stroke("M25 4 V14 M20 9 H30", ACCENT, 3),
    "add_folder": solid("M3 8 H12 L15 11 H27 V27 H3 Z", MATERIAL)
                  + stroke("M15 14 V24 M10 19 H20", LINE, 2.5),
    "place_pattern": tint("M3 17 H29 V29 H3 Z") + stroke("M3 17 H29 V29 H3 Z")
                     + ring(16, 22, 4, LINE) + arrow_down(16, 3, 14, ACCENT),
    "delete": stroke("M5 8 H27 M12 8 V4 H20 V8", LINE) + solid("M8 8 H24 L23 29 H9 Z", MATERIAL)
              + stroke("M13 13 V24 M19 13 V24", LINE),
    "accept": stroke("M5 17 L12 25 L27 7", ACCENT, 4.5),
    "update": stroke("M26 12 A11 11 0 0 0 6 11 M6 20 A11 11 0 0 0 26 21", ACCENT, 3)
              + stroke("M27 4 V12 H19 M5 28 V20 H13", ACCENT, 3),

    # View
    "Theme Dark": solid("M21 4 A13 13 0 1 0 28 22 A11 11 0 0 1 21 4 Z", MATERIAL),
    "Theme Light": sun(),
    "lightPosTopLeft": light(-1, -1),
    "lightPosTop": light(0, -1),
    "lightPosTopRight": light(1, -1),
    "lightPosLeft": light(-1, 0),
    "lightPosRight": light(1, 0),
    "lightPosBottomLeft": light(-1, 1),
    "lightPosBottom": light(0, 1),
    "lightPosBottomRight": light(1, 1),
    "palette": solid("M16 4 C24 4 30 9 30 15 C30 20 26 20 22 20 C18 20 19 23 20 25 "
                     "C21 28 19 29 16 29 C8 29 2 23 2 16 C2 9 8 4 16 4 Z", MATERIAL)
               + disc(9, 13, 2.5, LINE) + disc(16, 9.5, 2.5, ACCENT) + disc(23, 13, 2.5, LINE)
               + disc(9, 20, 2.5, ACCENT),
    "colorize": fill("M3 24 H9 V29 H3 Z", LINE) + fill("M10 18 H16 V29 H10 Z", ACCENT)
                + fill("M17 12 H23 V29 H17 Z", MATERIAL, 'fill-opacity="0.75"')
                + fill("M24 5 H30 V29 H24 Z", MATERIAL),
    "pointer": solid("M7 3 L25 17 L17 18 L22 27 L18 29 L13 20 L7 25 Z", MATERIAL),
    "view_3d": cube(),
    "view_alone": tint("M3 5 H29 V27 H3 Z") + stroke("M3 5 H29 V27 H3 Z M3 10 H29")
                  + stroke("M9 22 L23 15 M18 14 H23.5 V19 M14 23 H8.5 V18", ACCENT, 2.5),
    "view_2d": tint("M3 3 H29 V29 H3 Z") + stroke("M3 3 H29 V29 H3 Z M3 16 H29 M16 3 V29")
               + fill("M17 4 H28 V15 H17 Z", MATERIAL),

    # Brushes
    "smooth_tool": body("M2 22 L5 14 L8 22 L11 14 L14 21 C17 26 22 17 30 18")
                   + stroke("M14 21 C17 26 22 17 30 18", ACCENT, 3) + arrow_right(7, 25, 7),
    "flatten_tool": body("M2 21 H30") + fill("M4 15 H28 V20 H4 Z", ACCENT)
                    + arrow_down(9, 3, 11, ACCENT, 3.5) + arrow_down(23, 3, 11, ACCENT, 3.5),
    "deposit_tool": body("M2 23 H30")
                    + solid("M5 23 C12 23 10 13 16 13 C22 13 20 23 27 23 Z", ACCENT)
                    + plus(16, 6, 4),
    "remove_tool": body("M2 15 H6 C12 15 10 25 16 25 C22 25 20 15 26 15 H30") + minus(16, 7, 5)
                   + dashed("M9 15 H24", ACCENT, "2.5 2.5"),
    "clay_tool": body("M2 24 H30")
                 + solid("M5 24 A3 3 0 0 1 5 18 H27 A3 3 0 0 1 27 24 Z", ACCENT)
                 + solid("M12 17 A3 3 0 0 1 12 11 H20 A3 3 0 0 1 20 17 Z", ACCENT),
    "scrape_tool": body("M2 20 H15 C16 20 18 11 22 11 C26 11 27 20 30 20")
                   + stroke("M4 4 L12 17", ACCENT, 5) + stroke("M8 20 L15 16", ACCENT, 3),
    "smudge_tool": body("M2 24 C9 24 9 11 17 11 C24 11 26 16 23 19 C22 15 17 16 18 20 "
                        "C19 24 24 24 30 24") + arrow_right(7, 25, 5, ACCENT, 3.5),
    "pinch_tool": body("M2 24 C11 24 14 20 16 6 C18 20 21 24 30 24")
                  + arrow_right(2, 10, 13) + mirrored(arrow_right(2, 10, 13)),
    "move_tool": body("M2 24 H15 C18 24 18 13 22 13 C26 13 26 24 29 24 H30")
                 + dashed("M3 24 C6 24 6 13 10 13 C13 13 13 18 15 22", LINE, "2.5 2.5")
                 + arrow_right(7, 25, 6),
    "mask_tool": body("M2 25 H30")
                 + solid("M16 3 L25 6 V13 C25 18 21 21 16 23 C11 21 7 18 7 13 V6 Z", ACCENT),
    # The old surface, dashed, comes back under the brush.
    "undo_tool": body("M2 24 C8 24 8 14 13 14 C15 14 16 16 17 24 H30")
                 + dashed("M13 14 C21 13 22 24 28 24", LINE, "2.5 2.5")
                 + stroke("M28 3 L20 12", LINE, 3.5)
                 + solid("M17 11 C20 11 22 13 21 15 C20 18 16 19 13 18 C15 17 14 13 17 11 Z", ACCENT),
    "erase_tool": fill("M2 22 H9 V29 H2 Z M23 22 H30 V29 H23 Z", MATERIAL)
                  + stroke("M2 22 H9 V29 M30 22 H23 V29") + eraser(),
    "ceiling": stroke("M2 7 H30", ACCENT, 3) + body("M2 24 C9 24 9 11 13 11 H19 C23 11 23 24 30 24"),
    "floor": body("M2 9 C9 9 9 21 13 21 H19 C23 21 23 9 30 9") + stroke("M8 25 H24", ACCENT, 3),
    "mask_clear": tint("M16 3 L27 7 V15 C27 22 22 26 16 29 C10 26 5 22 5 15 V7 Z")
                  + stroke("M16 3 L27 7 V15 C27 22 22 26 16 29 C10 26 5 22 5 15 V7 Z")
                  + cross(16, 15, 4),
    "mask_invert": fill("M16 3 V29 C10 26 5 22 5 15 V7 Z", ACCENT)
                   + stroke("M16 3 L27 7 V15 C27 22 22 26 16 29 C10 26 5 22 5 15 V7 Z M16 3 V29"),
    "symmetry_x": dashed("M16 2 V30", LINE, "3 2.5") + solid("M12 8 V24 H3 Z", MATERIAL)
                  + solid("M20 8 V24 H29 Z", ACCENT),
    "invert": tint("M3 3 H29 V29 H3 Z") + fill("M29 3 V29 H3 Z", MATERIAL)
              + stroke("M3 3 H29 V29 H3 Z M3 29 L29 3")
              + stroke("M7 9 H13 M10 6 V12 M19 22 H25", LINE, 2.5),

    # Selections
    "crop_tool": tint("M9 9 H23 V23 H9 Z") + stroke("M9 2 V23 H30", LINE, 3)
                 + stroke("M2 9 H23 V30", ACCENT, 3),
    "elliptical_selection_tool": tint("M16 5 A13 11 0 0 1 16 27 A13 11 0 0 1 16 5 Z")
                                 + dashed("M16 5 A13 11 0 0 1 16 27 A13 11 0 0 1 16 5 Z", ACCENT,
                                          "4 3"),
    "rectangle_selection_tool": tint("M4 6 H28 V26 H4 Z") + dashed("M4 6 H28 V26 H4 Z", ACCENT,
                                                                    "4 3"),
    "polygon_selection_tool": tint("M6 10 L20 5 L27 18 L16 27 L5 22 Z")
                              + dashed("M6 10 L20 5 L27 18 L16 27 L5 22 Z", ACCENT, "4 3")
                              + disc(6, 10, 2.5, LINE) + disc(20, 5, 2.5, LINE)
                              + disc(27, 18, 2.5, LINE) + disc(16, 27, 2.5, LINE)
                              + disc(5, 22, 2.5, LINE),
    "normal_selection": tint("M5 5 H27 V27 H5 Z") + dashed("M5 5 H27 V27 H5 Z", LINE, "4 3"),
    "additive_selection": tint("M3 3 H19 V19 H3 Z") + dashed("M3 3 H19 V11 H29 V29 H11 V19 H3 Z", LINE,
                                                             "4 2.5")
                          + tint("M11 11 H29 V29 H11 Z") + plus(20, 20, 5),
    "subtractive_selection": tint("M3 3 H19 V11 H11 V19 H3 Z")
                             + dashed("M3 3 H19 V11 H11 V19 H3 Z", LINE, "4 2.5")
                             + minus(20, 20, 6),
    "magic_selection_tool": wand(),
    "sample_selection": dropper(),
    "paint_selection_tool": paint_brush(),
    "fill_selection": bucket(),
    "erase_selection_tool": moved(1, 5, 0.95, eraser()) + dashed("M3 29 H29", LINE, "4 3"),
    "select_all": tint("M5 5 H27 V27 H5 Z") + dashed("M5 5 H27 V27 H5 Z", ACCENT, "4 3")
                  + stroke("M10 16 L15 21 L23 11", ACCENT, 3.5),
    "reselect": dashed("M5 5 H27 V27 H5 Z", LINE, "4 3")
                + stroke("M11 13 H18 C24 13 24 22 18 22 H13 M14 10 L11 13 L14 16", ACCENT, 2.5),
    "invert_selection": tint("M3 3 H29 V29 H3 Z M9 9 V23 H23 V9 Z")
                        + dashed("M3 3 H29 V29 H3 Z", LINE, "4 3")
                        + dashed("M9 9 H23 V23 H9 Z", ACCENT, "4 3"),
    "grow_selection": dashed("M3 3 H29 V29 H3 Z", ACCENT, "4 3") + stroke("M11 11 H21 V21 H11 Z")
                      + stroke("M9 9 L6 6 M23 9 L26 6 M23 23 L26 26 M9 23 L6 26", ACCENT, 2.5),
    "shrink_selection": stroke("M3 3 H29 V29 H3 Z") + dashed("M11 11 H21 V21 H11 Z", ACCENT, "4 2")
                        + stroke("M6 6 L9 9 M26 6 L23 9 M26 26 L23 23 M6 26 L9 23", ACCENT, 2.5),
    "select_none": dashed("M5 5 H27 V27 H5 Z", LINE, "4 3") + cross(16, 16, 5),

    # Footprint and alpha brush
    "form_round": solid("M16 4 A12 12 0 0 1 16 28 A12 12 0 0 1 16 4 Z", MATERIAL),
    "form_square": solid("M5 5 H27 V27 H5 Z", MATERIAL),
    "falloff_smooth": profile("M3 26 C12 26 11 6 16 6 C21 6 20 26 29 26"),
    "falloff_linear": profile("M3 26 L16 6 L29 26"),
    "falloff_sphere": profile("M4 26 C4 -1 28 -1 28 26"),
    "falloff_constant": profile("M5 26 V7 H27 V26"),
    "mirror_alpha": dashed("M16 2 V30", LINE, "3 2.5") + solid("M13 7 V25 H4 Z", MATERIAL)
                    + stroke("M19 7 V25 H28 Z", LINE),
    "turn_alpha": stroke("M6 22 A11 11 0 1 1 25 22", ACCENT, 3) + fill("M20 19 L30 20 L24 29 Z", ACCENT)
                  + solid("M12 12 H20 V20 H12 Z", MATERIAL),
    "alpha_shape": solid("M16 3 L20 12 L29 13 L22 19 L24 28 L16 23 L8 28 L10 19 L3 13 L12 12 Z",
                         MATERIAL),
    "alpha_tile": "".join(solid(f"M{x} {y} H{x + 6} V{y + 6} H{x} Z",
                                MATERIAL if (x + y) % 20 == 6 else ACCENT)
                          for x in (3, 13, 23) for y in (3, 13, 23)),
    "alpha_stamp": stroke("M4 29 H28", LINE)
                   + solid("M13 15 C13 12 11 10 11 7 A5 5 0 0 1 21 7 C21 10 19 12 19 15 V19 H27 "
                           "V25 H5 V19 H13 Z", MATERIAL),

    # Size
    "ruler": solid("M3 11 H29 V23 H3 Z", MATERIAL)
             + stroke("M8 11 V17 M13 11 V15 M18 11 V17 M23 11 V15", LINE),
    "scale": tint("M5 5 H27 V27 H5 Z") + stroke("M5 5 H27 V27 H5 Z")
             + solid("M5 17 H15 V27 H5 Z", MATERIAL)
             + stroke("M17 15 L23 9 M18 9 H23 V14", ACCENT, 2.5),
    "aspect_xy_locked": axis_letters("XY") + stroke("M4 17 H18", ACCENT) + padlock(11, 22),
    "aspect_free": axis_letters("") + padlock(16, 22, False),
    "aspect_locked": axis_letters("XYZ") + stroke("M4 17 H28", ACCENT) + padlock(16, 22),

    # Export and models
    "quality": solid("M16 3 L29 25 H3 Z", MATERIAL)
               + stroke("M16 3 L29 25 H3 Z M9.5 14 H22.5 L16 25 Z", LINE),
    "model_size": small_cube() + stroke("M29 4 V26 M26 4 H31 M26 26 H31", ACCENT),
    "Export STL": moved(0, -1, 0.9, solid("M16 3 L29 25 H3 Z", MATERIAL),
                        stroke("M9.5 14 H22.5 L16 25 Z", LINE)) + out_arrow(),
    "Export OBJ": moved(0, -1, 0.86, cube()) + out_arrow(),
    "Export PTR": tint("M3 3 H25 V21 H3 Z") + stroke("M3 3 H25 V17 M13 21 H3 V3")
                  + fill("M4 20 C8 20 8 8 14 8 C20 8 20 16 24 17 L20 20 Z", MATERIAL)
                  + out_arrow(),
    "Export to Drafteon": solid("M3 15 L29 3 L23 28 L15 21 Z", ACCENT)
                          + stroke("M29 3 L15 21 V29 L19 24", LINE),
    "rotate_left": small_cube() + stroke("M26 20 C32 13 26 5 17 4", ACCENT, 3)
                   + fill("M19 0 V9 L12 4 Z", ACCENT),
    "rotate_right": mirrored(small_cube() + stroke("M26 20 C32 13 26 5 17 4", ACCENT, 3)
                             + fill("M19 0 V9 L12 4 Z", ACCENT)),
    "rotate_up": small_cube() + stroke("M20 28 C29 27 30 18 28 9", ACCENT, 3)
                 + fill("M24 10 L32 8 L27 2 Z", ACCENT),
    "rotate_down": small_cube() + stroke("M20 4 C29 5 30 14 28 22", ACCENT, 3)
                   + fill("M24 22 L32 23 L27 30 Z", ACCENT),
    "rotate_ccw": mirrored(axis_turn()),
    "rotate_cw": axis_turn(),
    "flip": dashed("M2 16 H30", LINE, "3 2.5") + solid("M8 12 H24 V3 Z", MATERIAL)
            + solid("M8 20 H24 V29 Z", ACCENT),
    "reset_axes": stroke("M13 4 V19 H28 M13 19 L4 28", LINE) + disc(13, 19, 4, ACCENT)
                  + stroke("M10 7 L13 3 L16 7 M25 16 L29 19 L25 22"),
    "flip_normals": solid("M3 21 L13 15 L29 21 L19 27 Z", MATERIAL)
                    + arrow_up(11, 16, 4, ACCENT, 3.5) + arrow_down(21, 4, 16, ACCENT, 3.5),
}
ICONS["symmetry_y"] = turned(90, ICONS["symmetry_x"])


def file_name(name):
    return name.replace(" ", "_") + ".svg"


def main():
    folder_path = HERE / "icons"
    folder_path.mkdir(exist_ok=True)
    for old in folder_path.glob("*.svg"):
        old.unlink()
    lines = ["<RCC>", '    <qresource prefix="/marlowen2">']
    for name in sorted(ICONS):
        svg = ('<svg xmlns="http://www.w3.org/2000/svg" width="32" height="32" viewBox="0 0 32 32">'
               f"{ICONS[name]}</svg>\n")
        (folder_path / file_name(name)).write_text(svg, encoding="utf-8")
        lines.append(f'        <file alias="{name}">icons/{file_name(name)}</file>')
    lines += ["    </qresource>", "</RCC>"]
    (HERE / "marlowen.qrc").write_text("\n".join(lines) + "\n", encoding="utf-8")


if __name__ == "__main__":
    main()
