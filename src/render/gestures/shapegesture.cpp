#include "render/gestures/shapegesture.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace marlowen {

namespace {

constexpr double handleReach = 7.0; ///< logical pixels
constexpr double smallestDrag = 3.0;
constexpr double farOff = 1e8; ///< cells

double distance(QPointF a, QPointF b)
{
    return std::hypot(a.x() - b.x(), a.y() - b.y());
}

QPolygonF rectangleOf(const QRect &cells)
{
    const QRectF r(cells);
    return QPolygonF({r.topLeft(), r.topRight(), r.bottomRight(), r.bottomLeft()});
}

QPolygonF ellipseOf(QPointF a, QPointF b)
{
    constexpr int segments = 180;
    const QPointF centre = (a + b) / 2.0;
    const QPointF axes = (b - a) / 2.0;
    QPolygonF points;
    for (int i = 0; i < segments; ++i) {
        const double t = 2.0 * std::numbers::pi * i / segments;
        points.append(centre + QPointF(axes.x() * std::cos(t), axes.y() * std::sin(t)));
    }
    return points;
}

QRect cellsBetween(QPoint a, QPoint b)
{
    return {QPoint(std::min(a.x(), b.x()), std::min(a.y(), b.y())),
            QPoint(std::max(a.x(), b.x()), std::max(a.y(), b.y()))};
}

} // namespace

QPoint cellAt(QPointF gridPosition)
{
    const auto cell = [](double value) {
        return static_cast<int>(std::floor(std::clamp(value, -farOff, farOff)));
    };
    return {cell(gridPosition.x()), cell(gridPosition.y())};
}

void ShapeGesture::setTool(int type, QSize grid)
{
    if (type == m_tool && grid == m_grid)
        return;
    cancel();
    const ToolRow *row = toolRow(type);
    m_tool = type;
    m_shape = row ? row->shape : ToolShape::None;
    m_grid = grid;
}

void ShapeGesture::cancel()
{
    m_dragging = false;
    m_corners.clear();
    m_box = {};
    m_hold = 0;
}

bool ShapeGesture::active() const
{
    return m_dragging || !m_corners.isEmpty() || !m_box.isEmpty();
}

void ShapeGesture::press(QPointF at, double pixel)
{
    if (!usable())
        return;
    m_to = at;
    if (m_shape == ToolShape::Polygon) {
        if (!_nearFirstCorner(at, pixel))
            m_corners.append(cellAt(at));
        return;
    }
    m_hold = holdAt(at, pixel);
    m_boxBefore = m_box;
    m_from = at;
    m_dragging = true;
}

void ShapeGesture::moveTo(QPointF at, double pixel)
{
    m_to = at;
    const bool twitch = m_hold == 0 && distance(m_from, at) < smallestDrag * pixel;
    if (m_dragging && m_shape == ToolShape::CropBox && !twitch)
        _dragBox(at);
}

bool ShapeGesture::release(QPointF at, double pixel)
{
    if (m_shape == ToolShape::Polygon)
        return _nearFirstCorner(at, pixel) && close();
    if (!m_dragging)
        return false;
    moveTo(at, pixel);
    m_dragging = false;
    m_hold = 0;
    return m_shape != ToolShape::CropBox && distance(m_from, at) >= smallestDrag * pixel;
}

SelectionEdit ShapeGesture::selection(SelectionModifier modifier) const
{
    switch (m_shape) {
    case ToolShape::Rectangle:
        return [from = cellAt(m_from), to = cellAt(m_to), modifier](Relief &relief) {
            selectRectangle(relief, from, to, modifier);
        };
    case ToolShape::Ellipse:
        return [from = m_from, to = m_to, modifier](Relief &relief) {
            selectEllipse(relief, from, to, modifier);
        };
    default:
        return [corners = m_corners, modifier](Relief &relief) {
            selectPolygon(relief, corners, modifier);
        };
    }
}

bool ShapeGesture::close() const
{
    return m_shape == ToolShape::Polygon && m_corners.size() >= 3;
}

void ShapeGesture::removeLastCorner()
{
    if (!m_corners.isEmpty())
        m_corners.removeLast();
}

bool ShapeGesture::_nearFirstCorner(QPointF at, double pixel) const
{
    return close() &&
           distance(at, QPointF(m_corners.first()) + QPointF(0.5, 0.5)) <= handleReach * pixel;
}

QPoint ShapeGesture::_cellOnGrid(QPointF at) const
{
    const QPoint cell = cellAt(at);
    return {std::clamp(cell.x(), 0, m_grid.width() - 1),
            std::clamp(cell.y(), 0, m_grid.height() - 1)};
}

void ShapeGesture::_dragBox(QPointF at)
{
    if (m_hold == 0) {
        m_box = cellsBetween(_cellOnGrid(m_from), _cellOnGrid(at));
        return;
    }
    const QPointF way = at - m_from;
    const QPoint cells(static_cast<int>(std::lround(std::clamp(way.x(), -farOff, farOff))),
                       static_cast<int>(std::lround(std::clamp(way.y(), -farOff, farOff))));
    m_box = m_boxBefore;
    if (m_hold & Inside) {
        m_box.translate(std::clamp(cells.x(), -m_box.left(), m_grid.width() - 1 - m_box.right()),
                        std::clamp(cells.y(), -m_box.top(), m_grid.height() - 1 - m_box.bottom()));
        return;
    }
    if (m_hold & Left)
        m_box.setLeft(std::clamp(m_box.left() + cells.x(), 0, m_box.right()));
    if (m_hold & Right)
        m_box.setRight(std::clamp(m_box.right() + cells.x(), m_box.left(), m_grid.width() - 1));
    // Rows run up the screen, so the rectangle's first row is the bottom of the box.
    if (m_hold & Bottom)
        m_box.setTop(std::clamp(m_box.top() + cells.y(), 0, m_box.bottom()));
    if (m_hold & Top)
        m_box.setBottom(std::clamp(m_box.bottom() + cells.y(), m_box.top(), m_grid.height() - 1));
}

int ShapeGesture::holdAt(QPointF at, double pixel) const
{
    if (m_shape != ToolShape::CropBox || m_box.isEmpty())
        return 0;
    const QRectF box(m_box);
    const double reach = handleReach * pixel;
    if (!box.adjusted(-reach, -reach, reach, reach).contains(at))
        return 0;
    const auto near = [&](double position, double edge) {
        return std::abs(position - edge) <= reach;
    };
    // On a box smaller than the reach the far edges win, so that it can be made larger.
    int hold = near(at.x(), box.right()) ? Right : near(at.x(), box.left()) ? Left : 0;
    hold |= near(at.y(), box.bottom()) ? Top : near(at.y(), box.top()) ? Bottom : 0;
    return hold ? hold : static_cast<int>(Inside);
}

QPolygonF ShapeGesture::preview() const
{
    if (m_shape == ToolShape::CropBox)
        return m_box.isEmpty() ? QPolygonF() : rectangleOf(m_box);
    if (m_shape == ToolShape::Polygon && !m_corners.isEmpty()) {
        QPolygonF line(QPolygonF(m_corners).translated(0.5, 0.5));
        line.append(m_to);
        return line;
    }
    if (!m_dragging)
        return {};
    return m_shape == ToolShape::Rectangle ? rectangleOf(cellsBetween(cellAt(m_from), cellAt(m_to)))
                                           : ellipseOf(m_from, m_to);
}

bool ShapeGesture::previewClosed() const
{
    return m_shape != ToolShape::Polygon;
}

QPolygonF ShapeGesture::handles() const
{
    if (m_shape != ToolShape::CropBox || m_box.isEmpty())
        return {};
    const QPolygonF corners = rectangleOf(m_box);
    QPolygonF points;
    for (int i = 0; i < 4; ++i) {
        points.append(corners[i]);
        points.append((corners[i] + corners[(i + 1) % 4]) / 2.0);
    }
    return points;
}

} // namespace marlowen
