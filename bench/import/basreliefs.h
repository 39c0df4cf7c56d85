#pragma once

#include "relief/grid/floatgrid.h"

namespace marlowen::bas {

/// A relief made for measuring: the form and the texture on it, 0 in empty cells of both.
struct MadeRelief
{
    FloatGrid form;    ///< at least a fortieth of the depth in filled cells
    FloatGrid texture; ///< what is added; at most a fiftieth of the depth away from 0
    double depth;      ///< highest minus lowest form
    FloatGrid heights() const;
    bool filled(int x, int y) const { return form.row(y)[x] > 0.0F; }
};

/// Heights of waves and dimples as shares of the depth, and their lengths in cells.
struct Texture
{
    double least = 0.005;
    double most = 0.02;
    double shortest = 4.0;
    double longest = 12.0;
};
/// A head of ellipsoids on an empty ground, with waves and dimples.
MadeRelief head(int side, const Texture &texture);
/// A filled square: left half at `low`, right half at `high`, with a corner that spans 20 to 120.
MadeRelief step(int side, float low, float high);
/// A plane that rises to the right, with bars like lettering of 4 % of its depth as the texture.
MadeRelief tiltedLettering(int side);
/// Four domes in one filled square at heights of 20, 60, 100 and 140; each 20 high.
MadeRelief domes(int side);
/// A dome of 256 levels with noise of one level (standard deviation) as the texture.
MadeRelief noisyDome(int side);
/// A disc that is filled to two thirds of the square, with bumps of all sizes.
FloatGrid largeRelief(int side);

} // namespace marlowen::bas
