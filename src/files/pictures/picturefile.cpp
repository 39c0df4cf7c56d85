#include "files/pictures/picturefile.h"

#include "files/pictures/bmpdamage.h"
#include "files/pictures/imageorientation.h"
#include "files/pictures/jpegdamage.h"
#include "files/pictures/picturekind.h"
#include "files/pictures/pngfile.h"
#include "files/pictures/tiffpicture.h"
#include "files/safefile.h"

#include <QFile>
#include <QImageReader>
#include <QRgba64>

#include <algorithm>

namespace marlowen {

namespace {

/// Memory for one decoded picture of the most pixels, 8 bytes each.
constexpr int decodedLimitMegabytes = 2048;

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

/// 65535 becomes 255.0.
void fineGreyRow(const QRgba64 *pixels, float *values, int count)
{
    for (int x = 0; x < count; ++x) {
        const QRgba64 pixel = pixels[x];
        const int weighted = 11 * pixel.red() + 16 * pixel.green() + 5 * pixel.blue();
        values[x] = static_cast<float>(weighted / (32.0 * 257.0));
    }
}

/// Whether a channel has more than 8 bits.
bool isFine(const QImage &image)
{
    switch (image.format()) {
    case QImage::Format_Grayscale16:
    case QImage::Format_RGBX64:
    case QImage::Format_RGBA64:
    case QImage::Format_RGBA64_Premultiplied:
        return true;
    default:
        return false;
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

GreyPicture greyOf(const QImage &image)
{
    // Qt converts every format into colours of 8 or 16 bits; strip by strip, so that the
    // whole image is never there twice.
    constexpr int stripRows = 64;
    const bool fine = isFine(image);
    PictureGrid grey(image.size());
    std::vector<float> values(static_cast<size_t>(image.width()));
    for (int first = 0; first < image.height(); first += stripRows) {
        const int rows = std::min(stripRows, image.height() - first);
        const QImage colours =
            stripOf(image, first, rows)
                .convertToFormat(fine ? QImage::Format_RGBA64 : QImage::Format_ARGB32);
        for (int row = 0; row < rows; ++row) {
            const uchar *line = colours.constScanLine(row);
            if (fine)
                fineGreyRow(reinterpret_cast<const QRgba64 *>(line), values.data(), image.width());
            else
                greyRow(reinterpret_cast<const QRgb *>(line), values.data(), image.width());
            grey.addRow(values.data());
        }
    }
    return grey.take();
}

/// A picture before its orientation is applied.
struct Decoded
{
    QImage image;
    int orientation = 1;
};

/// The colours of a grey picture in which Qt made the transparent one black.
void restoreGreys(QImage &image)
{
    const int colors = image.colorCount();
    if (image.format() == QImage::Format_Mono && colors == 2)
        image.setColorTable({qRgb(255, 255, 255), qRgb(0, 0, 0)});
    for (int i = 0; image.format() == QImage::Format_Indexed8 && i < colors; ++i) {
        const int grey = 255 * i / (colors - 1);
        image.setColor(i, qRgb(grey, grey, grey));
    }
}

Result<Decoded> decode(QFile &file, PictureKind kind)
{
    const char *format = readerFormat(kind);
    if (!format)
        return openFailed(QStringLiteral("the file is no picture of a kind that can be read"));
    const QSize size = QImageReader(&file, format).size();
    if (static_cast<qint64>(size.width()) * size.height() > mostPixels)
        return openFailed(tooManyPixels());
    const PngReport png = kind == PictureKind::Png ? inspectPng(file) : PngReport();
    const QString damage = kind == PictureKind::Jpeg  ? jpegDamage(file)
                           : kind == PictureKind::Bmp ? bmpDamage(file)
                                                      : png.damage;
    if (!damage.isEmpty())
        return openFailed(damage);
    Decoded decoded{{}, png.orientation};
    QImageReader::setAllocationLimit(decodedLimitMegabytes);
    QImageReader reader(&file, format);
    if (kind == PictureKind::Jpeg)
        decoded.orientation = orientationOf(reader.transformation());
    if (!reader.read(&decoded.image))
        return openFailed(reader.errorString());
    if (png.clearGrey)
        restoreGreys(decoded.image);
    return decoded;
}

} // namespace

FloatGrid greyGrid(const QImage &image)
{
    return greyOf(image).values;
}

Result<QImage> readWholeImage(const QString &path)
{
    QFile file(path);
    if (const Outcome opened = openRegularFile(file, openFailed()); !opened)
        return opened.failure();
    const Result<Decoded> decoded = decode(file, pictureKindOf(file));
    if (!decoded)
        return decoded.failure();
    return turned(decoded.value().image, decoded.value().orientation);
}

Result<GreyPicture> readGreyPicture(const QString &path)
{
    QFile file(path);
    if (const Outcome opened = openRegularFile(file, openFailed()); !opened)
        return opened.failure();
    const PictureKind kind = pictureKindOf(file);
    if (kind == PictureKind::Tiff)
        return readTiffGrey(path);
    const Result<Decoded> decoded = decode(file, kind);
    if (!decoded)
        return decoded.failure();
    GreyPicture grey = greyOf(decoded.value().image);
    grey.values = oriented(std::move(grey.values), decoded.value().orientation);
    return grey;
}

} // namespace marlowen
