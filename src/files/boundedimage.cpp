#include "files/boundedimage.h"

#include "files/pictures/imageorientation.h"
#include "files/pictures/picturekind.h"
#include "files/pictures/pngfile.h"
#include "files/pictures/tiffpicture.h"
#include "files/safefile.h"

#include <QFile>
#include <QImageReader>

#include <algorithm>

namespace marlowen {

namespace {

QImage within(const QImage &image, int side)
{
    if (image.width() <= side && image.height() <= side)
        return image;
    return image.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

/// The lowest value black, the highest white.
QImage greyImage(const FloatGrid &grid)
{
    const auto [low, high] = std::minmax_element(grid.values.begin(), grid.values.end());
    const double lowest = static_cast<double>(*low);
    const double range = static_cast<double>(*high) - lowest;
    const double scale = range > 0.0 ? 255.0 / range : 0.0;
    QImage image(grid.width, grid.height, QImage::Format_Grayscale8);
    for (int y = 0; y < grid.height; ++y) {
        std::transform(grid.row(y), grid.row(y) + grid.width, image.scanLine(y), [&](float value) {
            return static_cast<uchar>((static_cast<double>(value) - lowest) * scale);
        });
    }
    return image;
}

QImage tiffWithin(const QString &path, int side)
{
    const Result<GreyPicture> picture = readTiffGrey(path);
    return picture ? within(greyImage(picture.value().values), side) : QImage();
}

} // namespace

QImage readImageWithin(const QString &path, int side)
{
    QFile file(path);
    if (!openRegularFile(file, openFailed()))
        return {};
    const PictureKind kind = pictureKindOf(file);
    if (kind == PictureKind::Tiff)
        return tiffWithin(path, side);
    const char *format = readerFormat(kind);
    if (!format)
        return {};
    const int orientation = kind == PictureKind::Png ? inspectPng(file).orientation : 1;
    QImageReader reader(&file, format);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (static_cast<qint64>(size.width()) * size.height() > mostPixels)
        return {};
    if (size.width() > side || size.height() > side)
        reader.setScaledSize(size.scaled(side, side, Qt::KeepAspectRatio).expandedTo({1, 1}));
    return turned(within(reader.read(), side), orientation);
}

} // namespace marlowen
