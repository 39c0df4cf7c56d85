#include "import/imageimport.h"

#include "files/safefile.h"
#include "import/importsource.h"
#include "import/pipeline.h"
#include "import/wholeimage.h"

#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

namespace marlowen {

namespace {

/// Decoded images up to this size are read; a header that promises more is taken for damage.
constexpr int decodedLimitMegabytes = 8192;

void greyRow(const QRgb *pixels, float *values, int count)
{
    for (int x = 0; x < count; ++x) {
        const QRgb pixel = pixels[x];
        const int weighted = static_cast<int>(11 * ((pixel >> 16) & 0xFFU) +
                                              16 * ((pixel >> 8) & 0xFFU) + 5 * (pixel & 0xFFU));
        const int grey = weighted / 32;
        values[x] = static_cast<float>(grey);
    }
}

/// Rows [first, first + count) of an image, without a copy.
QImage stripOf(const QImage &image, int first, int count)
{
    QImage strip(image.constScanLine(first), image.width(), count, image.bytesPerLine(),
                 image.format());
    strip.setColorTable(image.colorTable());
    return strip;
}

std::unique_ptr<Relief> reliefOf(QImage image, const ImportSettings &settings)
{
    FloatGrid grey = greyGrid(image);
    image = {};
    const Padding padding = paddingFor(grey);
    FloatGrid values = padded(std::move(grey), padding);
    ImportSettings opened = settings;
    if (std::exchange(opened.proposeDepth, false))
        opened.depth = std::min(values.width, values.height) / 10.0;
    auto source = std::make_unique<ImportSource>(std::move(values), opened);
    source->isPicture = true;
    return std::make_unique<Relief>(std::move(source));
}

} // namespace

Result<QImage> readWholeImage(const QString &path)
{
    QFile file(path);
    const QFileInfo found(path);
    if (found.exists() && !found.isFile())
        return openFailed(QStringLiteral("not a file"));
    if (!file.open(QIODevice::ReadOnly))
        return openFailed(file.errorString());
    if (imageCutShort(file))
        return openFailed(QStringLiteral("the image has no end"));
    QImageReader::setAllocationLimit(decodedLimitMegabytes);
    QImageReader reader(&file);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (static_cast<qint64>(size.width()) * size.height() > std::numeric_limits<int>::max() / 2)
        return openFailed(QStringLiteral("the image is too large"));
    QImage image = reader.read();
    if (image.isNull())
        return openFailed(reader.errorString());
    return image;
}

FloatGrid greyGrid(const QImage &image)
{
    // Whatever the format, Qt turns it into 8-bit colours; strip by strip, so that the whole image
    // is never there twice.
    constexpr int stripRows = 64;
    FloatGrid grey(image.width(), image.height());
    for (int first = 0; first < image.height(); first += stripRows) {
        const int rows = std::min(stripRows, image.height() - first);
        const QImage colours = stripOf(image, first, rows).convertToFormat(QImage::Format_ARGB32);
        for (int row = 0; row < rows; ++row)
            greyRow(reinterpret_cast<const QRgb *>(colours.constScanLine(row)),
                    grey.row(first + row), image.width());
    }
    return grey;
}

Result<std::unique_ptr<Relief>> importImage(const QString &path, const ImportSettings &settings)
{
    try {
        Result<QImage> image = readWholeImage(path);
        if (!image)
            return image.failure();
        return reliefOf(image.take(), settings);
    } catch (const std::bad_alloc &) {
        return openFailed(QStringLiteral("the image is too large for the memory"));
    }
}

} // namespace marlowen
