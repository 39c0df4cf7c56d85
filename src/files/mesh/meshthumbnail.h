#pragma once

#include <QImage>
#include <QString>

namespace marlowen {

/// The mesh of a file as seen from above, lit, at most `side` pixels wide and high (1 or more).
/// Null when it cannot be read, has no extent in x or y, or the file is so large that reading it
/// would take too long for a thumbnail.
QImage meshThumbnail(const QString &path, int side);

} // namespace marlowen
