#include "render/gestures/placegesture.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace marlowen {

namespace {

constexpr double handleReach = 9.0; ///< logical pixels
constexpr double turnDistance = 26.0;
constexpr double turnSteps = 15.0; ///< degrees
constexpr double degrees = 180.0 / std::numbers::pi;

double distance(QPointF a, QPointF b)
{
    return std::hypot(a.x() - b.x(), a.y() - b.y());
}

double direction(QPointF from, QPointF to)
{
    return std::atan2(to.y() - from.y(), to.x() - from.x()) * degrees;
}

} // namespace

QPointF PlaceGesture::_turned(QPointF offset) const
{
    const double angle = m_frame.angle / degrees;
    return m_frame.centre + QPointF(offset.x() * std::cos(angle) - offset.y() * std::sin(angle),
                                    offset.x() * std::sin(angle) + offset.y() * std::cos(angle));
}

QPolygonF PlaceGesture::outline() const
{
    const double x = m_frame.size.width() * m_frame.scale / 2.0;
    const double y = m_frame.size.height() * m_frame.scale / 2.0;
    return QPolygonF({_turned({-x, -y}), _turned({x, -y}), _turned({x, y}), _turned({-x, y})});
}

QPolygonF PlaceGesture::handles(double pixel) const
{
    QPolygonF points = outline();
    const double y = m_frame.size.height() * m_frame.scale / 2.0;
    points.append(_turned({0.0, y + turnDistance * pixel}));
    return points;
}

PlaceGesture::Hold PlaceGesture::holdAt(QPointF at, double pixel) const
{
    const QPolygonF points = handles(pixel);
    if (distance(points.last(), at) <= handleReach * pixel)
        return Turn;
    for (int corner = 0; corner < 4; ++corner) {
        if (distance(points[corner], at) <= handleReach * pixel)
            return Size;
    }
    return outline().containsPoint(at, Qt::OddEvenFill) ? Move : Nothing;
}

bool PlaceGesture::press(QPointF at, double pixel)
{
    m_hold = holdAt(at, pixel);
    m_before = m_frame;
    m_from = at;
    return m_hold != Nothing;
}

void PlaceGesture::moveTo(QPointF at, bool steps)
{
    const QPointF centre = m_before.centre;
    if (m_hold == Move) {
        QPointF way = at - m_from;
        if (steps)
            (std::abs(way.x()) < std::abs(way.y()) ? way.rx() : way.ry()) = 0.0;
        const QPointF wanted = centre + way;
        m_frame.centre = {std::clamp(wanted.x(), 0.0, m_limits.grid.width()),
                          std::clamp(wanted.y(), 0.0, m_limits.grid.height())};
    } else if (m_hold == Size && distance(m_from, centre) > 0.0) {
        const double wanted = m_before.scale * distance(at, centre) / distance(m_from, centre);
        m_frame.scale = std::clamp(wanted, m_limits.smallestScale, m_limits.largestScale);
    } else if (m_hold == Turn) {
        double angle = m_before.angle + direction(centre, at) - direction(centre, m_from);
        if (steps)
            angle = std::round(angle / turnSteps) * turnSteps;
        m_frame.angle = std::remainder(angle, 360.0);
    }
}

Qt::CursorShape PlaceGesture::cursorAt(QPointF at, double pixel) const
{
    switch (m_hold == Nothing ? holdAt(at, pixel) : m_hold) {
    case Move:
        return Qt::SizeAllCursor;
    case Turn:
        return Qt::PointingHandCursor;
    case Size: {
        const double way = std::remainder(direction(m_frame.centre, at), 180.0);
        return way > 0.0 ? Qt::SizeBDiagCursor : Qt::SizeFDiagCursor;
    }
    default:
        return Qt::ArrowCursor;
    }
}

} // namespace marlowen
