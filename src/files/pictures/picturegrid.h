#pragma once

#include "relief/grid/floatgrid.h"

#include <QSize>
#include <QString>

#include <vector>

namespace marlowen {

/// The result of reading a picture.
struct GreyPicture
{
    FloatGrid values;
    QString note; ///< one line for a person when not every pixel became a cell; else empty
};

/// Takes the rows of a picture in order, the top one first, and makes a grid of them: cell by cell,
/// or averaged down when the picture has more cells than a relief may have, to 999 square inches.
class PictureGrid
{
public:
    explicit PictureGrid(const QSize &pixels);

    /// `values` has one value a pixel. Values that are not finite count as 0, empty.
    void addRow(float *values);
    bool averaged() const { return m_pixels != QSize(m_grid.width, m_grid.height); }
    GreyPicture take();

private:
    void _averageAlong(const float *values);

    QSize m_pixels;
    FloatGrid m_grid;
    int m_next = 0;
    std::vector<double> m_along; ///< the last row, averaged along
    std::vector<double> m_sums;  ///< of the row of the grid that is being filled
};

/// Turns a grid by an EXIF or TIFF orientation 1..8; others do not change it.
FloatGrid oriented(FloatGrid grid, int orientation);

} // namespace marlowen
