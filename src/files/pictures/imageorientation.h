#pragma once

#include <QImage>
#include <QImageIOHandler>

namespace marlowen {

/// The EXIF orientation 1..8 that asks for a transformation.
int orientationOf(QImageIOHandler::Transformations transformation);

/// An image turned by an EXIF orientation 1..8; others do not change it.
QImage turned(const QImage &image, int orientation);

} // namespace marlowen
