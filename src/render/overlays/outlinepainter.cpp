#include "render/overlays/outlinepainter.h"

#include <QOpenGLFunctions_2_1>

#include <algorithm>
#include <bit>
#include <cmath>
#include <vector>

namespace marlowen {

namespace {

constexpr double handleSide = 7.0; ///< logical pixels

/// Draws the same lines twice: black, then the white dashes.
template <typename DrawLines>
void drawDashed(QOpenGLFunctions_2_1 &gl, const OutlinePainter::Dashes &dashes, DrawLines drawLines)
{
    gl.glPushAttrib(GL_CURRENT_BIT | GL_LINE_BIT | GL_ENABLE_BIT);
    gl.glDisable(GL_DEPTH_TEST);
    gl.glDisable(GL_LINE_SMOOTH);
    gl.glLineWidth(static_cast<float>(dashes.ratio));
    gl.glColor3f(0.0F, 0.0F, 0.0F);
    drawLines();
    gl.glEnable(GL_LINE_STIPPLE);
    gl.glLineStipple(std::max(1, static_cast<int>(std::lround(dashes.ratio))),
                     antsPattern(dashes.phase));
    gl.glColor3f(1.0F, 1.0F, 1.0F);
    drawLines();
    gl.glPopAttrib();
}

void square(QOpenGLFunctions_2_1 &gl, QPointF centre, double half)
{
    gl.glVertex2d(centre.x() - half, centre.y() - half);
    gl.glVertex2d(centre.x() + half, centre.y() - half);
    gl.glVertex2d(centre.x() + half, centre.y() + half);
    gl.glVertex2d(centre.x() - half, centre.y() + half);
}

} // namespace

uint16_t antsPattern(int phase)
{
    return std::rotl(uint16_t{0x0F0F}, phase % 16);
}

QPointF OutlinePainter::_model(QPointF gridPoint) const
{
    return gridPoint - QPointF(m_grid.width() * 0.5, m_grid.height() * 0.5);
}

void OutlinePainter::setOutline(QOpenGLFunctions_2_1 &gl, SelectionOutline outline, QSize grid)
{
    m_outline = std::move(outline);
    m_grid = grid;
    std::vector<float> vertices;
    vertices.reserve(2 * m_outline.corners.size());
    for (const QPoint &corner : m_outline.corners) {
        const QPointF model = _model(corner);
        vertices.push_back(static_cast<float>(model.x()));
        vertices.push_back(static_cast<float>(model.y()));
    }
    if (!m_buffer)
        gl.glGenBuffers(1, &m_buffer);
    gl.glBindBuffer(GL_ARRAY_BUFFER, m_buffer);
    gl.glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(vertices.size() * sizeof(float)),
                    vertices.data(), GL_STATIC_DRAW);
    gl.glBindBuffer(GL_ARRAY_BUFFER, 0);
}

void OutlinePainter::drawOutline(QOpenGLFunctions_2_1 &gl, const Dashes &dashes)
{
    if (!hasOutline())
        return;
    gl.glBindBuffer(GL_ARRAY_BUFFER, m_buffer);
    gl.glEnableClientState(GL_VERTEX_ARRAY);
    gl.glVertexPointer(2, GL_FLOAT, 0, nullptr);
    drawDashed(gl, dashes, [&] {
        gl.glMultiDrawArrays(GL_LINE_LOOP, m_outline.firsts.data(), m_outline.counts.data(),
                             static_cast<GLsizei>(m_outline.firsts.size()));
    });
    gl.glDisableClientState(GL_VERTEX_ARRAY);
    gl.glBindBuffer(GL_ARRAY_BUFFER, 0);
}

void OutlinePainter::drawLine(QOpenGLFunctions_2_1 &gl, const QPolygonF &gridPoints, bool closed,
                              const Dashes &dashes)
{
    drawDashed(gl, dashes, [&] {
        gl.glBegin(closed ? GL_LINE_LOOP : GL_LINE_STRIP);
        for (const QPointF &point : gridPoints)
            gl.glVertex2d(_model(point).x(), _model(point).y());
        gl.glEnd();
    });
}

void OutlinePainter::drawHandles(QOpenGLFunctions_2_1 &gl, const QPolygonF &gridPoints,
                                 double pixel)
{
    gl.glPushAttrib(GL_CURRENT_BIT | GL_ENABLE_BIT);
    gl.glDisable(GL_DEPTH_TEST);
    gl.glBegin(GL_QUADS);
    for (const QPointF &point : gridPoints) {
        gl.glColor3f(0.0F, 0.0F, 0.0F);
        square(gl, _model(point), (handleSide / 2.0 + 1.0) * pixel);
        gl.glColor3f(1.0F, 1.0F, 1.0F);
        square(gl, _model(point), handleSide / 2.0 * pixel);
    }
    gl.glEnd();
    gl.glPopAttrib();
}

void OutlinePainter::release(QOpenGLFunctions_2_1 &gl)
{
    if (m_buffer)
        gl.glDeleteBuffers(1, &m_buffer);
    m_buffer = 0;
    m_outline = {};
}

} // namespace marlowen
