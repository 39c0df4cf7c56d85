#pragma once

#include "base/result.h"
#include "files/pictures/picturegrid.h"

#include <QImage>
#include <QString>

namespace marlowen {

/// Pictures are PNG, JPEG, BMP or TIFF files, recognised by their contents. Readers fail with "Open
/// Failed" / "Error! File Open Failed" for anything else, for a picture that is damaged or cut
/// short, however much of it could be shown, and for one of more than 250 million pixels. Their
/// EXIF orientation is applied. They throw std::bad_alloc.

/// The grey values of a picture, see greyGrid(); of a TIFF see readTiffGrey().
Result<GreyPicture> readGreyPicture(const QString &path);

/// The colours of a picture that is not a TIFF.
Result<QImage> readWholeImage(const QString &path);

/// Grey level 0..255 of every pixel, row 0 at the top: (11 red + 16 green + 5 blue) / 32, in
/// integers for 8 bits a channel; for 16 bits in reals, where 65535 becomes 255.0. Alpha is not
/// looked at. A picture of more cells than a relief may have is averaged down.
FloatGrid greyGrid(const QImage &image);

} // namespace marlowen
