#include "render/overlays/footprintpainter.h"

#include "relief/tools/alphabrush.h"
#include "relief/tools/toolparams.h"
#include "render/overlays/footprint.h"
#include "render/overlays/overlaylight.h"

#include <QOpenGLFunctions_2_1>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace marlowen {

void FootprintPainter::draw(QOpenGLFunctions_2_1 &gl, const Relief &relief, const ToolParams &tool,
                            const Place &place)
{
    constexpr float outlineColor[] = {1.0F, 0.15F, 0.15F, 0.9F};
    constexpr float innerColor[] = {1.0F, 1.0F, 1.0F, 0.5F};

    gl.glDisable(GL_DEPTH_TEST);
    gl.glDepthMask(GL_FALSE);
    gl.glEnable(GL_BLEND);
    gl.glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    const FootprintShape shape = footprintShape(tool, relief);
    if (usesAlphaFootprint(tool, AlphaBrush::instance())) {
        _drawTextured(gl, relief, shape, place);
    } else {
        const std::vector<QPointF> outline = footprintOutline(shape, place.zoom);
        const Loop loop = _draped(relief, outline, place, 1.0);
        _fill(gl, loop, place.zoom);
        gl.glLineWidth(static_cast<float>(1.5 * place.ratio));
        _line(gl, loop, outlineColor);
        if (const double inner = innerRingFraction(tool); inner > 0.0)
            _line(gl, _draped(relief, outline, place, inner), innerColor);
        gl.glLineWidth(1.0F);
    }
    gl.glColor4f(1.0F, 1.0F, 1.0F, 1.0F);
    gl.glDisable(GL_BLEND);
}

void FootprintPainter::release(QOpenGLFunctions_2_1 &gl)
{
    if (m_texture)
        gl.glDeleteTextures(1, &m_texture);
    m_texture = 0;
}

FootprintPainter::Loop FootprintPainter::_draped(const Relief &relief,
                                                 const std::vector<QPointF> &outline,
                                                 const Place &place, double fraction)
{
    Loop loop;
    loop.reserve(outline.size());
    for (const QPointF &offset : outline) {
        const QPointF p = place.centre + offset * fraction;
        loop.push_back({static_cast<float>(p.x()), static_cast<float>(p.y()),
                        static_cast<float>(surfaceHeight(relief, p))});
    }
    return loop;
}

void FootprintPainter::_fill(QOpenGLFunctions_2_1 &gl, const Loop &loop, double zoom)
{
    constexpr float ambient[] = {0.5F, 0.5F, 0.5F, 0.15F};
    constexpr float diffuse[] = {1.0F, 0.0F, 0.0F, 0.5F};

    const OverlayLight light(gl);
    gl.glMaterialfv(GL_FRONT, GL_AMBIENT, ambient);
    gl.glMaterialfv(GL_FRONT, GL_DIFFUSE, diffuse);
    gl.glPolygonMode(GL_FRONT, GL_FILL);
    gl.glBegin(GL_POLYGON);
    gl.glNormal3d(0.0, 0.0, zoom);
    for (const SurfacePoint &p : loop)
        gl.glVertex3f(p.x, p.y, p.z);
    gl.glEnd();
}

void FootprintPainter::_line(QOpenGLFunctions_2_1 &gl, const Loop &loop, const float *rgba)
{
    gl.glColor4fv(rgba);
    gl.glBegin(GL_LINE_LOOP);
    for (const SurfacePoint &p : loop)
        gl.glVertex3f(p.x, p.y, p.z);
    gl.glEnd();
}

// A square patch around the centre, fine enough to follow the surface.
void FootprintPainter::_drawTextured(QOpenGLFunctions_2_1 &gl, const Relief &relief,
                                     const FootprintShape &shape, const Place &place)
{
    constexpr int patches = 32;
    _updateTexture(gl);
    const double angle = shape.angleDegrees * std::numbers::pi / 180.0;
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const double radius = std::max(1.0, shape.radius);
    const auto vertex = [&](int column, int row) {
        const double u = static_cast<double>(column) / patches;
        const double v = static_cast<double>(row) / patches;
        const QPointF local((2.0 * u - 1.0) * radius, (2.0 * v - 1.0) * radius);
        const QPointF p =
            place.centre + QPointF(c * local.x() - s * local.y(), s * local.x() + c * local.y());
        gl.glTexCoord2d(u, v);
        gl.glVertex3d(p.x(), p.y(), surfaceHeight(relief, p));
    };
    gl.glEnable(GL_TEXTURE_2D);
    gl.glBindTexture(GL_TEXTURE_2D, m_texture);
    gl.glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    for (int row = 0; row < patches; ++row) {
        gl.glBegin(GL_TRIANGLE_STRIP);
        for (int column = 0; column <= patches; ++column) {
            vertex(column, row + 1);
            vertex(column, row);
        }
        gl.glEnd();
    }
    gl.glBindTexture(GL_TEXTURE_2D, 0);
    gl.glDisable(GL_TEXTURE_2D);
}

void FootprintPainter::_updateTexture(QOpenGLFunctions_2_1 &gl)
{
    const AlphaBrush &brush = AlphaBrush::instance();
    if (m_texture && m_textureChange == brush.changeCounter())
        return;
    m_textureChange = brush.changeCounter();
    std::vector<uint8_t> pixels;
    pixels.reserve(4 * brush.values().size());
    for (const float value : brush.values()) {
        const double opacity = std::round(200.0 * std::clamp(value, 0.0F, 1.0F));
        pixels.insert(pixels.end(), {255, 50, 50, static_cast<uint8_t>(opacity)});
    }
    if (!m_texture)
        gl.glGenTextures(1, &m_texture);
    gl.glBindTexture(GL_TEXTURE_2D, m_texture);
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    gl.glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    gl.glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, brush.side(), brush.side(), 0, GL_RGBA,
                    GL_UNSIGNED_BYTE, pixels.data());
}

} // namespace marlowen
