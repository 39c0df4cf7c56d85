#include "render/axislock.h"

#include <cstdlib>

QPoint AxisLock::apply(QPoint previous, QPoint position)
{
    constexpr int decisionPixels = 3;
    const int dx = std::abs(position.x() - previous.x());
    const int dy = std::abs(position.y() - previous.y());
    if (m_state == Armed && (dx >= decisionPixels || dy >= decisionPixels))
        m_state = dx < dy ? Vertical : Horizontal;
    if (m_state == Vertical)
        return {previous.x(), position.y()};
    if (m_state == Horizontal)
        return {position.x(), previous.y()};
    return position;
}
