#pragma once

#include <QImage>
#include <QString>

namespace marlowen {

/// A thumbnail of a file, at most `side` pixels wide and high: a workspace lit, an image
/// itself. Null for other files and for files that cannot be read.
QImage fileThumbnail(const QString &path, int side);

} // namespace marlowen
