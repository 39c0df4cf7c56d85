#pragma once

#include <QImage>
#include <QString>

namespace marlowen {

/// A picture of what is in a file, at most `side` pixels wide and high: a workspace lit, an image
/// itself. Null for other files and for what cannot be read.
QImage fileThumbnail(const QString &path, int side);

} // namespace marlowen
