#pragma once

#include "relief/grid/floatgrid.h"

#include <QImage>

namespace marlowen {

/// Pictures of heights without a window or OpenGL: diffuse light from the top left on a warm
/// material, row 0 at the bottom as the views show it, empty cells (0.0) transparent. Heights that
/// are not finite or are negative count as empty.

/// One pixel a value. `slope` turns the difference of two neighbours into a rise per cell: the Z
/// scale over the cells between them.
QImage litHeights(const GridView &heights, double slope);

/// A small picture of a whole grid, at most `side` pixels wide and high (1 or more), each pixel the
/// mean of its filled cells when at least half of them are filled. `zScale` is the relief's.
QImage heightThumbnail(const GridView &heights, double zScale, int side);

} // namespace marlowen
