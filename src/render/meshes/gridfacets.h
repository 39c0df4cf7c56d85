#pragma once

#include "render/camera/camera.h"

#include <QRect>

#include <cstdint>
#include <span>
#include <vector>

namespace marlowen {

/// A picture of a grid of vertices with one sample a pixel.
struct GridPicture
{
    std::span<const float> positions; ///< x, y, z a vertex, row-major
    int columns = 0;
    int rows = 0;
    int step = 1; ///< every step-th column and row counts, and the last of each
    /// From the positions to -1..1 along the sides of the picture; no perspective.
    Matrix toPicture = identityMatrix();
    QSize size;  ///< pixels
    QRect drawn; ///< those that are drawn, y up
};

/// The corners of the facets between the rows `first` and `last` of vertices, 0 <= first < last <
/// rows, that lie over the middle of a drawn pixel, or nearly so, in the order of the strips of
/// appendStrips(). The others change nothing in the picture. Works on all cores.
std::vector<uint32_t> facetsOverPixels(const GridPicture &picture, int first, int last);

} // namespace marlowen
