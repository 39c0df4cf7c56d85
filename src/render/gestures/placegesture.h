#pragma once

#include <QPointF>
#include <QPolygonF>
#include <QSizeF>
#include <Qt>

namespace marlowen {

/// A rectangle on the 2D view that is moved, turned and sized by its handles. Independent of
/// windows.
///
/// Positions are grid coordinates: cell (c, r) spans c..c+1 by r..r+1; positive rows run up the
/// screen. `pixel` is the length of one logical pixel in cells.
class PlaceGesture
{
public:
    struct Frame
    {
        QPointF centre;
        double angle = 0.0; ///< degrees, counter-clockwise
        double scale = 1.0; ///< of `size`
        QSizeF size;        ///< cells at scale 1

        bool operator==(const Frame &) const = default;
    };
    /// Where it may go.
    struct Limits
    {
        QSizeF grid; ///< the centre stays on it
        double smallestScale = 0.001;
        double largestScale = 1000.0;
    };

    void setLimits(const Limits &limits) { m_limits = limits; }
    void setFrame(const Frame &frame) { m_frame = frame; }
    const Frame &frame() const { return m_frame; }

    enum Hold { Nothing, Move, Size, Turn };
    Hold holdAt(QPointF at, double pixel) const;
    /// Begins to drag the part at that point; false when there is none.
    bool press(QPointF at, double pixel);
    /// Follows the pointer. With `steps` turns by 15 degrees and moves along one axis.
    void moveTo(QPointF at, bool steps);
    void release() { m_hold = Nothing; }
    Hold hold() const { return m_hold; }
    /// The pointer's shape there.
    Qt::CursorShape cursorAt(QPointF at, double pixel) const;

    QPolygonF outline() const;
    /// The four corners, then the handle that turns, which is above the upper edge.
    QPolygonF handles(double pixel) const;

private:
    QPointF _turned(QPointF offset) const;

    Limits m_limits;
    Frame m_frame;
    Frame m_before; ///< when it was taken hold of
    QPointF m_from;
    Hold m_hold = Nothing;
};

} // namespace marlowen
