#include "render/overlays/gizmolabels.h"

#include "render/camera/depthimage.h"
#include "render/overlays/gizmo.h"

#include <QCoreApplication>
#include <QPainter>
#include <QTransform>

#include <cmath>

namespace marlowen {

namespace {

struct FaceLabel
{
    const char *text;
    Vector up; ///< of the text; its right is up x normal
};

/// In the order of gizmoFaces().
constexpr FaceLabel faceLabels[] = {{QT_TRANSLATE_NOOP("Gizmo", "Top"), {0, 1, 0}},
                                    {QT_TRANSLATE_NOOP("Gizmo", "Bottom"), {0, 1, 0}},
                                    {QT_TRANSLATE_NOOP("Gizmo", "Back"), {0, 0, 1}},
                                    {QT_TRANSLATE_NOOP("Gizmo", "Front"), {0, 0, 1}},
                                    {QT_TRANSLATE_NOOP("Gizmo", "Right"), {0, 0, 1}},
                                    {QT_TRANSLATE_NOOP("Gizmo", "Left"), {0, 0, 1}}};

Vector scaled(const Vector &v, double by)
{
    return {v.x * by, v.y * by, v.z * by};
}

Vector sum(const Vector &a, const Vector &b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

Vector cross(const Vector &a, const Vector &b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

/// Where a point of the gizmo lies in the picture, y down.
QPointF inPicture(const Vector &point, const ViewMatrices &view)
{
    const Vector window = project(point, view);
    return {window.x - view.viewport[0], view.viewport[1] + view.viewport[3] - window.y};
}

/// How far the face looks at the viewer, 1 straight on.
double facing(const Vector &normal, const ViewMatrices &view)
{
    const double scale = std::hypot(view.modelview[2], view.modelview[6], view.modelview[10]);
    return (view.modelview[2] * normal.x + view.modelview[6] * normal.y +
            view.modelview[10] * normal.z) /
           scale;
}

void paintFace(QPainter &painter, size_t index, const ViewMatrices &view)
{
    constexpr double leastFacing = 0.3;
    constexpr double side = 100.0; // of the square for the text's layout
    const GizmoFace &face = gizmoFaces()[index];
    const double straight = facing(face.normal, view);
    if (straight < leastFacing)
        return;
    const FaceLabel &label = faceLabels[index];
    const Vector up = scaled(label.up, gizmoHalf);
    const Vector right = scaled(cross(label.up, face.normal), gizmoHalf);
    const Vector middle = scaled(face.normal, gizmoHalf);
    const auto corner = [&](double r, double u) {
        return inPicture(sum(middle, sum(scaled(right, r), scaled(up, u))), view);
    };
    QTransform onFace;
    const QPolygonF square({{0, 0}, {side, 0}, {side, side}, {0, side}});
    if (!QTransform::quadToQuad(
            square, {{corner(-1, 1), corner(1, 1), corner(1, -1), corner(-1, -1)}}, onFace))
        return;
    painter.save();
    painter.setTransform(onFace, true);
    painter.setPen(QColor(255, 255, 255, static_cast<int>(235 * std::min(1.0, 1.5 * straight))));
    painter.drawText(QRectF(0, 0, side, side), Qt::AlignCenter,
                     QCoreApplication::translate("Gizmo", label.text));
    painter.restore();
}

} // namespace

QImage gizmoLabels(const ViewMatrices &view, double ratio)
{
    const QSize logical(view.viewport[2], view.viewport[3]);
    QImage image(physicalSize(logical, ratio), QImage::Format_RGBA8888_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHints(QPainter::TextAntialiasing | QPainter::Antialiasing);
    painter.scale(ratio, ratio);
    QFont font(painter.font());
    font.setPixelSize(27);
    font.setWeight(QFont::DemiBold);
    painter.setFont(font);
    for (size_t i = 0; i < std::size(faceLabels); ++i)
        paintFace(painter, i, view);

    font.setPixelSize(10);
    painter.setFont(font);
    painter.setPen(QColor(255, 255, 255, 220));
    constexpr double reach = gizmoAxisEnd + 9.0;
    const std::pair<const char *, Vector> axes[] = {{"X", {reach, gizmoAxisStart, gizmoAxisStart}},
                                                    {"Y", {gizmoAxisStart, reach, gizmoAxisStart}},
                                                    {"Z", {gizmoAxisStart, gizmoAxisStart, reach}}};
    for (const auto &[letter, at] : axes) {
        const QPointF p = inPicture(at, view);
        painter.drawText(QRectF(p.x() - 8, p.y() - 8, 16, 16), Qt::AlignCenter,
                         QString::fromLatin1(letter));
    }
    return image;
}

} // namespace marlowen
