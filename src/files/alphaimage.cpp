#include "files/alphaimage.h"

#include <QImage>

#include <algorithm>

namespace marlowen {

FloatGrid alphaGrid(const QImage &image)
{
    const QImage pixels = image.convertToFormat(QImage::Format_RGB32);
    FloatGrid grid(pixels.width(), pixels.height());
    for (int y = 0; y < grid.height; ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(pixels.constScanLine(y));
        std::transform(line, line + grid.width, grid.row(y), [](QRgb pixel) {
            const int sum = 11 * qRed(pixel) + 16 * qGreen(pixel) + 5 * qBlue(pixel);
            return static_cast<float>(sum / (32.0 * 255.0));
        });
    }
    return grid;
}

FloatGrid squareGrid(FloatGrid grid)
{
    if (grid.width == grid.height)
        return grid;
    const int side = std::max(grid.width, grid.height);
    const int left = (side - grid.width) / 2;
    const int top = (side - grid.height) / 2;
    FloatGrid square(side, side);
    for (int y = 0; y < grid.height; ++y)
        std::copy_n(grid.row(y), grid.width, square.row(y + top) + left);
    return square;
}

} // namespace marlowen
