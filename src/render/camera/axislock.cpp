#include "render/camera/axislock.h"

#include <cstdlib>

namespace marlowen {

void AxisLock::start(bool armed, QPoint press)
{
    m_state = armed ? Armed : Off;
    m_press = press;
}

QPoint AxisLock::apply(QPoint position)
{
    constexpr int decisionPixels = 3;
    const int dx = std::abs(position.x() - m_press.x());
    const int dy = std::abs(position.y() - m_press.y());
    if (m_state == Armed && (dx >= decisionPixels || dy >= decisionPixels))
        m_state = dx < dy ? Vertical : Horizontal;
    switch (m_state) {
    case Armed:
        return m_press;
    case Vertical:
        return {m_press.x(), position.y()};
    case Horizontal:
        return {position.x(), m_press.y()};
    default:
        return position;
    }
}

} // namespace marlowen
