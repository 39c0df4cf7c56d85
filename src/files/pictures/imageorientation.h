#pragma once

#include <QImage>
#include <QImageIOHandler>

namespace marlowen {

/// The EXIF orientation 1..8 that asks for a transformation.
int orientationOf(QImageIOHandler::Transformations transformation);

/// An image turned by an EXIF orientation 1..8; others leave it as it is.
QImage turned(const QImage &image, int orientation);

} // namespace marlowen
