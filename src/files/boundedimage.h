#pragma once

#include <QImage>
#include <QString>

namespace marlowen {

/// Reads a PNG, JPEG, BMP or TIFF picture, recognised by its contents, with its EXIF orientation
/// applied, at most `side` pixels wide and high; scaled while it is decoded where the format can.
/// Null when it cannot be read.
QImage readImageWithin(const QString &path, int side);

} // namespace marlowen
