#include "files/heightpicture.h"

#include <algorithm>
#include <cmath>

namespace marlowen {

namespace {

/// A height that can be drawn; 0 otherwise.
float drawable(float height)
{
    return std::isfinite(height) && height > 0.0F ? height : 0.0F;
}

/// The cells of one thumbnail pixel: from `first` up to but not including `last`.
struct Span
{
    int first;
    int last;
};

Span spanOf(int pixel, double stride, int cells)
{
    const int first = std::min(static_cast<int>(pixel * stride), cells - 1);
    return {first, std::clamp(static_cast<int>((pixel + 1) * stride), first + 1, cells)};
}

float meanOf(const GridView &heights, Span columns, Span rows)
{
    double sum = 0.0;
    int filled = 0;
    for (int y = rows.first; y < rows.last; ++y) {
        const float *row = heights.row(y);
        for (int x = columns.first; x < columns.last; ++x) {
            const float height = drawable(row[x]);
            sum += static_cast<double>(height);
            filled += height > 0.0F ? 1 : 0;
        }
    }
    const int cells = (columns.last - columns.first) * (rows.last - rows.first);
    return filled * 2 >= cells ? static_cast<float>(sum / std::max(filled, 1)) : 0.0F;
}

} // namespace

QImage litHeights(const GridView &heights, double slope)
{
    QImage image(heights.width, heights.height, QImage::Format_ARGB32);
    // A damaged file may hold any Z scale; beyond this every slope is a wall.
    const double steepness = std::clamp(slope, -1e6, 1e6);
    const auto at = [&heights](int x, int y) {
        const float *row = heights.row(std::clamp(y, 0, heights.height - 1));
        return static_cast<double>(drawable(row[std::clamp(x, 0, heights.width - 1)]));
    };
    for (int y = 0; y < image.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(image.height() - 1 - y));
        for (int x = 0; x < image.width(); ++x) {
            const double dx = (at(x + 1, y) - at(x - 1, y)) * steepness / 2.0;
            const double dy = (at(x, y + 1) - at(x, y - 1)) * steepness / 2.0;
            // Light direction (-0.5, 0.5, 0.707), normal (-dx, -dy, 1).
            const double cosine = (0.5 * dx - 0.5 * dy + 0.707) / std::hypot(dx, dy, 1.0);
            const double light = std::clamp(0.18 + 0.95 * cosine, 0.0, 1.15);
            const auto shade = [light](int full) {
                return std::min(255, static_cast<int>(full * light));
            };
            line[x] =
                at(x, y) == 0.0 ? qRgba(0, 0, 0, 0) : qRgb(shade(232), shade(205), shade(170));
        }
    }
    return image;
}

QImage heightThumbnail(const GridView &heights, double zScale, int side)
{
    const double stride =
        std::max(1.0, static_cast<double>(std::max(heights.width, heights.height)) / side);
    FloatGrid small(std::max(1, static_cast<int>(heights.width / stride)),
                    std::max(1, static_cast<int>(heights.height / stride)));
    for (int y = 0; y < small.height; ++y) {
        const Span rows = spanOf(y, stride, heights.height);
        for (int x = 0; x < small.width; ++x)
            small.row(y)[x] = meanOf(heights, spanOf(x, stride, heights.width), rows);
    }
    return litHeights({small.values.data(), small.width, small.height}, zScale / stride);
}

} // namespace marlowen
