#pragma once

#include <QPoint>

namespace marlowen {

/// Keeps a stroke on a horizontal or vertical line. Armed by a press with Ctrl, it decides once the
/// pointer has moved at least 3 pixels from there on either axis; until then the stroke waits.
class AxisLock
{
public:
    enum State { Off, Armed, Horizontal, Vertical };

    void start(bool armed, QPoint press);
    void stop() { m_state = Off; }
    State state() const { return m_state; }

    /// Where the pointer counts as being.
    QPoint apply(QPoint position);

private:
    State m_state = Off;
    QPoint m_press;
};

} // namespace marlowen
