#include "render/overlays/cursors.h"

#include "base/qevsettings.h"
#include "render/overlays/cursorimages.h"

#include <QImage>
#include <QPixmap>

#include <algorithm>
#include <array>
#include <cmath>

namespace marlowen {

namespace {

constexpr char scaleKey[] = "/state/view/cursorScale";

struct Pointer
{
    const char *const *image;
    QPoint hotSpot;
};

constexpr QPoint centre(16, 16);

// In the order of the modes, which begin with 1.
const std::array<Pointer, 5> pointers = {{{panImage, {15, 15}},
                                          {zoomImage, {11, 11}},
                                          {rotateImage, centre},
                                          {rotatingImage, {10, 4}},
                                          {sculptImage, {0, 31}}}};

struct Cache
{
    double scale = 1.0;
    std::array<QImage, pointers.size()> images; ///< null until needed
};

double scaleOf(int percent)
{
    return std::clamp(percent / 100.0, 1.0, 4.0);
}

Cache &cache()
{
    static Cache cached{scaleOf(QevSettings().value(scaleKey, 100).toInt()), {}};
    return cached;
}

// Whole multiples keep the pixels sharp; other sizes are scaled down from the next multiple.
QImage scaledImage(const Pointer &pointer, double scale)
{
    const QImage image(pointer.image);
    const auto side = [&image](double factor) {
        return static_cast<int>(std::round(image.width() * factor));
    };
    const int whole = side(std::ceil(scale));
    return image.scaled(whole, whole)
        .convertToFormat(QImage::Format_ARGB32_Premultiplied)
        .scaled(side(scale), side(scale), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

} // namespace

QCursor cursorForMode(int mode)
{
    if (mode < 1 || mode > static_cast<int>(pointers.size()))
        return QCursor(Qt::ArrowCursor);
    const auto index = static_cast<size_t>(mode - 1);
    const double scale = cache().scale;
    QImage &image = cache().images[index];
    if (image.isNull())
        image = scaledImage(pointers[index], scale);
    const auto spot = [scale](int at) { return static_cast<int>((at + 0.5) * scale); };
    const QPoint hot = pointers[index].hotSpot;
    return QCursor(QPixmap::fromImage(image), spot(hot.x()), spot(hot.y()));
}

double cursorScale()
{
    return cache().scale;
}

void setCursorScale(int percent)
{
    QevSettings().setValue(scaleKey, percent);
    cache() = {scaleOf(percent), {}};
}

} // namespace marlowen
