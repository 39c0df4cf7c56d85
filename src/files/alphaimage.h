#pragma once

#include "relief/grid/floatgrid.h"

class QImage;

namespace marlowen {

/// What a picture means to the alpha brush.

/// (11 red + 16 green + 5 blue) / 32 / 255 of every pixel, 0..1, row 0 at the top. Transparency is
/// not looked at. An image without pixels gives an empty grid.
FloatGrid alphaGrid(const QImage &image);

/// The grid in the middle of a black square as wide as its longer side. Where the black cannot be
/// shared evenly, the right or lower band is one wider.
FloatGrid squareGrid(FloatGrid grid);

} // namespace marlowen
