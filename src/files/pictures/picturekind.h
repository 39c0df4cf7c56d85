#pragma once

#include <QString>

class QIODevice;

namespace marlowen {

/// The pictures that are read. The first bytes decide the kind, not the name; vector graphics and
/// other formats of plug-ins are None.
enum class PictureKind { None, Png, Jpeg, Bmp, Tiff };

/// Looks at the first bytes from the device's position, which does not change.
PictureKind pictureKindOf(QIODevice &device);
/// The name of the kind in Qt's image reader; null for None and Tiff.
const char *readerFormat(PictureKind kind);

/// Pictures of more pixels are refused before they are decoded.
constexpr qint64 mostPixels = 250000000;
QString tooManyPixels();

} // namespace marlowen
