#pragma once

#include <QString>

class QIODevice;

namespace marlowen {

/// The pictures that are read. A picture is what its first bytes say, whatever its name; vector
/// graphics and other formats that a plug-in may know are none.
enum class PictureKind { None, Png, Jpeg, Bmp, Tiff };

/// Looks at the first bytes from where the device stands, and leaves it there.
PictureKind pictureKindOf(QIODevice &device);
/// The name by which Qt's image reader knows the kind; null for None and Tiff.
const char *readerFormat(PictureKind kind);

/// Pictures of more pixels are refused before they are decoded.
constexpr qint64 mostPixels = 250000000;
QString tooManyPixels();

} // namespace marlowen
