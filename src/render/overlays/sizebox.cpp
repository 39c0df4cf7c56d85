#include "render/overlays/sizebox.h"

#include "render/camera/depthimage.h"
#include "render/engines/keptpicture.h"

#include <QFontMetricsF>
#include <QImage>
#include <QOpenGLFunctions_2_1>
#include <QOpenGLTexture>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace marlowen {

namespace {

/// Between the model and the lines about it, so that they do not fight for the same pixels.
constexpr double gap = 2.0;
constexpr double shortestEdge = 28.0; ///< logical pixels that a size is written along
constexpr double labelDistance = 22.0;
constexpr double edgeRoom = 6.0; ///< between a label and the view's edge

Vector cornerOf(const SceneBox &box, size_t corner)
{
    return {((corner & 1U) ? 0.5 : -0.5) * box.width, ((corner & 2U) ? 0.5 : -0.5) * box.height,
            (corner & 4U) ? box.zMax : box.zMin};
}

QPointF onScreen(const Vector &point, const ViewMatrices &view)
{
    const Vector window = project(point, view);
    return {window.x, window.y};
}

double lengthOf(QPointF v)
{
    return std::hypot(v.x(), v.y());
}

/// Whether a label is rather put at `a`: farther out, else lower, else to the right.
bool isBetterPlace(QPointF a, QPointF b, QPointF centre)
{
    constexpr double alike = 1.0;
    const double further = lengthOf(a - centre) - lengthOf(b - centre);
    if (std::abs(further) > alike)
        return further > 0.0;
    return std::abs(a.y() - b.y()) > alike ? a.y() < b.y() : a.x() > b.x();
}

QImage labelImage(const QString &text, double ratio)
{
    QFont font;
    font.setPixelSize(13);
    font.setWeight(QFont::DemiBold);
    const QSizeF room =
        QFontMetricsF(font).size(Qt::TextSingleLine, text).grownBy(QMarginsF(7, 3, 7, 3));
    QImage image(physicalSize(room.toSize(), ratio), QImage::Format_RGBA8888_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.scale(ratio, ratio);
    painter.setRenderHints(QPainter::TextAntialiasing | QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(20, 22, 26, 190));
    painter.drawRoundedRect(QRectF(QPointF(), room), 4, 4);
    painter.setPen(QColor(255, 255, 255, 235));
    painter.setFont(font);
    painter.drawText(QRectF(QPointF(), room), Qt::AlignCenter, text);
    return image;
}

void drawFloor(QOpenGLFunctions_2_1 &gl, const SceneBox &box)
{
    gl.glBegin(GL_QUADS);
    for (const size_t corner : {0U, 1U, 3U, 2U}) {
        const Vector at = cornerOf(box, corner);
        gl.glVertex3d(at.x, at.y, at.z);
    }
    gl.glEnd();
}

void drawEdges(QOpenGLFunctions_2_1 &gl, const SceneBox &box)
{
    gl.glBegin(GL_LINES);
    for (size_t corner = 0; corner < 8; ++corner) {
        for (const size_t axis : {1U, 2U, 4U}) {
            if (corner & axis)
                continue;
            for (const Vector &end : {cornerOf(box, corner), cornerOf(box, corner | axis)})
                gl.glVertex3d(end.x, end.y, end.z);
        }
    }
    gl.glEnd();
}

} // namespace

std::optional<QPointF> sizeLabelPlace(const SceneBox &box, size_t axis, const ViewMatrices &view)
{
    const size_t along = size_t{1} << axis;
    const QPointF centre = onScreen({0.0, 0.0, (box.zMin + box.zMax) / 2.0}, view);
    std::optional<QPointF> best;
    for (size_t corner = 0; corner < 8; ++corner) {
        if (corner & along)
            continue;
        const QPointF from = onScreen(cornerOf(box, corner), view);
        const QPointF to = onScreen(cornerOf(box, corner | along), view);
        if (lengthOf(to - from) < shortestEdge)
            return {};
        const QPointF middle = (from + to) / 2.0;
        if (!best || isBetterPlace(middle, *best, centre))
            best = middle;
    }
    const QPointF outward = *best - centre;
    const double distance = lengthOf(outward);
    return distance > 0.0 ? *best + outward * (labelDistance / distance) : *best;
}

SizeBox::SizeBox() = default;
SizeBox::~SizeBox() = default;

void SizeBox::setSizes(const std::array<QString, 3> &texts)
{
    for (size_t axis = 0; axis < texts.size(); ++axis) {
        if (m_labels[axis].text != texts[axis])
            m_labels[axis] = {texts[axis], nullptr};
    }
}

void SizeBox::draw(QOpenGLFunctions_2_1 &gl, const SceneBox &box, const QColor &ink)
{
    const SceneBox around{box.width + 2 * gap, box.height + 2 * gap, box.zMin - gap,
                          box.zMax + gap};
    const auto setInk = [&](float alpha) {
        gl.glColor4f(ink.redF(), ink.greenF(), ink.blueF(), alpha);
    };
    gl.glPushAttrib(GL_CURRENT_BIT | GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    gl.glEnable(GL_BLEND);
    gl.glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    // Only the model is picked.
    gl.glDepthMask(GL_FALSE);
    setInk(0.14F);
    drawFloor(gl, around);
    setInk(0.45F);
    drawEdges(gl, around);
    gl.glPopAttrib();
}

void SizeBox::drawSizes(QOpenGLFunctions_2_1 &gl, const SceneBox &box, const ViewMatrices &view,
                        double ratio)
{
    if (std::exchange(m_ratio, ratio) != ratio)
        release();
    const QSize whole = physicalSize(QSize(view.viewport[2], view.viewport[3]), ratio);
    gl.glEnable(GL_BLEND);
    gl.glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    for (size_t axis = 0; axis < m_labels.size(); ++axis) {
        Label &label = m_labels[axis];
        const std::optional<QPointF> place = sizeLabelPlace(box, axis, view);
        if (!place || label.text.isEmpty())
            continue;
        if (!label.texture) {
            label.texture = std::make_unique<QOpenGLTexture>(
                labelImage(label.text, ratio).mirrored(), QOpenGLTexture::DontGenerateMipMaps);
            label.texture->setMinMagFilters(QOpenGLTexture::Nearest, QOpenGLTexture::Nearest);
        }
        const int width = label.texture->width();
        const int height = label.texture->height();
        // A label beyond the edge of the view stays in sight.
        const int edge = static_cast<int>(std::lround(edgeRoom * ratio));
        const auto inView = [edge](double at, int size, int room) {
            return std::clamp(static_cast<int>(std::lround(at)) - size / 2, edge,
                              std::max(edge, room - size - edge));
        };
        gl.glViewport(inView(place->x() * ratio, width, whole.width()),
                      inView(place->y() * ratio, height, whole.height()), width, height);
        drawTextureOverViewport(gl, label.texture->textureId());
    }
    gl.glDisable(GL_BLEND);
    gl.glViewport(0, 0, whole.width(), whole.height());
}

void SizeBox::release()
{
    for (Label &label : m_labels)
        label.texture.reset();
}

} // namespace marlowen
