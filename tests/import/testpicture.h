#pragma once

#include <QImage>

using namespace marlowen;

/// A dark frame around a ramp, so that nothing is padded.
inline QImage picture()
{
    QImage image(60, 40, QImage::Format_RGB32);
    image.fill(Qt::black);
    for (int y = 10; y < 30; ++y) {
        for (int x = 10; x < 50; ++x)
            image.setPixel(x, y, qRgb(4 * x, 4 * x, 4 * x));
    }
    return image;
}
