#include "render/overlays/symmetrypainter.h"

#include "relief/grid/relief.h"
#include "render/overlays/footprint.h"

#include <QOpenGLFunctions_2_1>

#include <algorithm>
#include <cmath>

namespace marlowen {

namespace {

constexpr float axisColor[] = {1.0F, 0.78F, 0.2F, 0.85F};

/// Draped over the surface about one point a pixel, through the centre along `direction`.
void drawAxis(QOpenGLFunctions_2_1 &gl, const Relief &relief, QPointF direction, int pixels)
{
    const QPointF half(direction.x() * relief.width() / 2.0, direction.y() * relief.height() / 2.0);
    gl.glBegin(GL_LINE_STRIP);
    for (int i = 0; i <= pixels; ++i) {
        const QPointF p = half * (2.0 * i / pixels - 1.0);
        gl.glVertex3d(p.x(), p.y(), surfaceHeight(relief, p));
    }
    gl.glEnd();
}

int pixelsOf(double cells, double pixelsACell)
{
    constexpr double most = 4096.0;
    return static_cast<int>(std::clamp(std::ceil(cells * std::min(pixelsACell, 1.0)), 1.0, most));
}

} // namespace

std::vector<QPointF> mirrorImages(const Relief &relief, QPointF point)
{
    std::vector<QPointF> images{point};
    if (relief.symmetryX)
        images.push_back({-point.x(), point.y()});
    if (relief.symmetryY)
        images.push_back({point.x(), -point.y()});
    if (relief.symmetryX && relief.symmetryY)
        images.push_back(-point);
    return images;
}

void drawSymmetryAxes(QOpenGLFunctions_2_1 &gl, const Relief &relief, double pixelsACell,
                      double ratio)
{
    if (!relief.symmetryX && !relief.symmetryY)
        return;
    gl.glPushAttrib(GL_CURRENT_BIT | GL_LINE_BIT | GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT);
    gl.glEnable(GL_BLEND);
    gl.glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    gl.glDisable(GL_LINE_SMOOTH);
    gl.glEnable(GL_LINE_STIPPLE);
    gl.glLineStipple(std::max(1, static_cast<int>(std::lround(ratio))), 0x3F3F);
    gl.glLineWidth(static_cast<float>(ratio));
    gl.glColor4fv(axisColor);
    if (relief.symmetryX)
        drawAxis(gl, relief, {0.0, 1.0}, pixelsOf(relief.height(), pixelsACell));
    if (relief.symmetryY)
        drawAxis(gl, relief, {1.0, 0.0}, pixelsOf(relief.width(), pixelsACell));
    gl.glPopAttrib();
}

} // namespace marlowen
