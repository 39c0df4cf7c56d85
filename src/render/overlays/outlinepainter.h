#pragma once

#include "render/overlays/selectionoutline.h"

#include <QPolygonF>

#include <cstdint>

class QOpenGLFunctions_2_1;

namespace marlowen {

/// Draws lines over the 2D view: black, with white dashes that travel along them. Every call needs
/// the view's context to be current and its matrices to be set; grid coordinates are placed on the
/// relief (its centre on the origin).
class OutlinePainter
{
public:
    /// Device pixels a logical pixel, and how far the dashes have travelled.
    struct Dashes
    {
        double ratio = 1.0;
        int phase = 0;
    };

    /// Takes over an outline in grid coordinates of a relief of this size.
    void setOutline(QOpenGLFunctions_2_1 &gl, SelectionOutline outline, QSize grid);
    bool hasOutline() const { return !m_outline.isEmpty(); }
    void drawOutline(QOpenGLFunctions_2_1 &gl, const Dashes &dashes);
    /// One line of the caller's.
    void drawLine(QOpenGLFunctions_2_1 &gl, const QPolygonF &gridPoints, bool closed,
                  const Dashes &dashes);
    /// A square at each point; `pixel` is the length of one logical pixel in cells.
    void drawHandles(QOpenGLFunctions_2_1 &gl, const QPolygonF &gridPoints, double pixel);
    void setGrid(QSize grid) { m_grid = grid; }

    /// Deletes the OpenGL objects.
    void release(QOpenGLFunctions_2_1 &gl);

private:
    QPointF _model(QPointF gridPoint) const;

    SelectionOutline m_outline;
    QSize m_grid;
    uint32_t m_buffer = 0;
};

/// The dash pattern, moved on by `phase` bits.
uint16_t antsPattern(int phase);

} // namespace marlowen
