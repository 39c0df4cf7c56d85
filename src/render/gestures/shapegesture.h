#pragma once

#include "relief/operations/operation.h"
#include "relief/selection/selections.h"
#include "relief/tools/tooltable.h"

#include <QPointF>
#include <QPolygon>
#include <QPolygonF>
#include <QRect>
#include <QSize>

namespace marlowen {

/// The shape a person draws with one of the shape tools (Rectangle, Elliptical, Polygon, Crop) of
/// the 2D view: presses, moves and keys in, shape out. Independent of windows.
///
/// Positions are grid coordinates: cell (c, r) spans c..c+1 by r..r+1; positive rows run up the
/// screen. They may lie off the grid.
class ShapeGesture
{
public:
    /// The Tool::Type drawn with from now on, and the grid it is drawn on. Another tool or another
    /// grid drops the shape begun; types other than shape tools draw nothing.
    void setTool(int type, QSize grid);
    int tool() const { return m_tool; }
    QSize grid() const { return m_grid; }
    /// The tool in use; None for types other than shape tools.
    ToolShape shape() const { return m_shape; }
    bool usable() const { return m_shape != ToolShape::None && !m_grid.isEmpty(); }

    /// `pixel` is the length of one logical pixel in cells: how near counts as on a handle or on
    /// the first corner, and how far as a drag.
    void press(QPointF at, double pixel);
    void moveTo(QPointF at, double pixel);
    /// True when a rectangle or an ellipse is complete: it was dragged by more than a twitch.
    bool release(QPointF at, double pixel);
    /// True when the polygon is complete: it has three corners or more.
    bool close() const;
    /// Takes back the last corner of the polygon.
    void removeLastCorner();
    /// Drops the shape begun, and the crop box.
    void cancel();

    /// A shape is being drawn, or there is a crop box.
    bool active() const;
    /// A button is pressed on the shape.
    bool dragging() const { return m_dragging; }

    /// Selects the finished shape.
    SelectionEdit selection(SelectionModifier modifier) const;
    /// Cells, never beyond the grid; empty without one.
    QRect cropBox() const { return m_box; }

    /// The line to show, in grid coordinates; closed unless it is a polygon still being drawn.
    QPolygonF preview() const;
    bool previewClosed() const;
    /// Where the handles of the crop box stand.
    QPolygonF handles() const;

    /// The parts that a press there would drag: a sum of these, 0 for none.
    enum Hold { Left = 1, Right = 2, Bottom = 4, Top = 8, Inside = 16 };
    int holdAt(QPointF at, double pixel) const;

private:
    bool _nearFirstCorner(QPointF at, double pixel) const;
    void _dragBox(QPointF at);
    QPoint _cellOnGrid(QPointF at) const;

    int m_tool = -1;
    ToolShape m_shape = ToolShape::None;
    QSize m_grid;
    bool m_dragging = false;
    QPointF m_from; ///< where the drag began
    QPointF m_to;   ///< the pointer
    QPolygon m_corners;
    QRect m_box;
    QRect m_boxBefore; ///< the crop box when it was taken hold of
    int m_hold = 0;
};

/// The cell of a grid position.
QPoint cellAt(QPointF gridPosition);

} // namespace marlowen
