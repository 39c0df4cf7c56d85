#include "files/pictures/picturegrid.h"

#include "relief/grid/physicalsize.h"

#include <algorithm>
#include <cmath>

namespace marlowen {
namespace {

/// The size to which a picture that is too large is averaged down.
constexpr double roomySquareInches = 999.0;

QSize gridSize(const QSize &pixels)
{
    const double area = squareInches(pixels.width(), pixels.height());
    if (!exceedsAreaLimit(area))
        return pixels;
    const double scale = std::sqrt(roomySquareInches / area);
    const auto scaled = [scale](int side) {
        return std::max(1, static_cast<int>(std::lround(side * scale)));
    };
    return {scaled(pixels.width()), scaled(pixels.height())};
}

} // namespace

PictureGrid::PictureGrid(const QSize &pixels)
    : m_pixels(pixels)
    , m_grid(gridSize(pixels).width(), gridSize(pixels).height())
    , m_along(m_grid.columns())
    , m_sums(m_grid.columns())
{
}

void PictureGrid::addRow(float *values)
{
    std::replace_if(
        values, values + m_pixels.width(), [](float value) { return !std::isfinite(value); }, 0.0F);
    const int row = m_next++;
    if (!averaged()) {
        std::copy_n(values, m_grid.width, m_grid.row(row));
        return;
    }
    _averageAlong(values);
    const double height = static_cast<double>(m_pixels.height()) / m_grid.height;
    for (double from = row; from < row + 1.0;) {
        // The share of the row that falls into the row of the grid that is being filled.
        const int target = std::min(static_cast<int>((from + 1e-9) / height), m_grid.height - 1);
        const double end = target + 1 == m_grid.height ? m_pixels.height() : (target + 1) * height;
        const double to = std::min(row + 1.0, end);
        for (size_t x = 0; x < m_sums.size(); ++x)
            m_sums[x] += m_along[x] * (to - from) / height;
        if (to >= end - 1e-9) {
            std::transform(m_sums.begin(), m_sums.end(), m_grid.row(target),
                           [](double sum) { return static_cast<float>(sum); });
            std::fill(m_sums.begin(), m_sums.end(), 0.0);
        }
        from = to;
    }
}

GreyPicture PictureGrid::take()
{
    QString note;
    if (averaged())
        note =
            QStringLiteral("The picture of %1 x %2 pixels is larger than a relief may be; it was "
                           "averaged down to %3 x %4 cells.")
                .arg(m_pixels.width())
                .arg(m_pixels.height())
                .arg(m_grid.width)
                .arg(m_grid.height);
    return {std::move(m_grid), note};
}

void PictureGrid::_averageAlong(const float *values)
{
    const double width = static_cast<double>(m_pixels.width()) / m_grid.width;
    for (int x = 0; x < m_grid.width; ++x) {
        const double from = x * width;
        const double to = std::min<double>((x + 1) * width, m_pixels.width());
        double sum = 0.0;
        for (int pixel = static_cast<int>(from); pixel < to; ++pixel) {
            const double share = std::min(to, pixel + 1.0) - std::max<double>(from, pixel);
            sum += static_cast<double>(values[pixel]) * share;
        }
        m_along[static_cast<size_t>(x)] = sum / width;
    }
}

FloatGrid oriented(FloatGrid grid, int orientation)
{
    if (orientation < 2 || orientation > 8)
        return grid;
    const bool turned = orientation >= 5;
    const bool fromRight =
        orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8;
    const bool fromBottom =
        orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7;
    FloatGrid result(turned ? grid.height : grid.width, turned ? grid.width : grid.height);
    for (int y = 0; y < result.height; ++y) {
        for (int x = 0; x < result.width; ++x) {
            const int column = turned ? y : x;
            const int row = turned ? x : y;
            result.row(y)[x] =
                grid.row(fromBottom ? grid.height - 1 - row
                                    : row)[fromRight ? grid.width - 1 - column : column];
        }
    }
    return result;
}

} // namespace marlowen
