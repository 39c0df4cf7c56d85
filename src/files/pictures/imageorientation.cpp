#include "files/pictures/imageorientation.h"

#include <QTransform>

namespace marlowen {

namespace {

constexpr int upright = 1;

} // namespace

int orientationOf(QImageIOHandler::Transformations transformation)
{
    // In the order of the bits: mirrored, upside down, turned right.
    static constexpr int orientations[] = {1, 2, 4, 3, 6, 7, 5, 8};
    return orientations[transformation.toInt() & 7];
}

QImage turned(const QImage &image, int orientation)
{
    static constexpr int degrees[] = {0, 0, 0, 180, 180, 270, 90, 90, 270};
    const bool mirrored =
        orientation == 2 || orientation == 4 || orientation == 5 || orientation == 7;
    if (orientation <= upright || orientation > 8)
        return image;
    // The mirror is applied first, then the turn.
    const QImage source = mirrored ? image.mirrored(true, false) : image;
    return degrees[orientation] == 0
               ? source
               : source.transformed(QTransform().rotate(degrees[orientation]));
}

} // namespace marlowen
