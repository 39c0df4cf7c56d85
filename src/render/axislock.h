#pragma once

#include <QPoint>

/// Keeps a stroke on a horizontal or vertical line. Armed by a press with Ctrl, it decides once the
/// pointer has moved at least 3 pixels from the previous position on either axis.
class AxisLock
{
public:
    enum State { Off, Armed, Horizontal, Vertical };

    void start(bool armed) { m_state = armed ? Armed : Off; }
    void stop() { m_state = Off; }
    State state() const { return m_state; }

    /// Where the pointer counts as being when it moved from `previous` to `position`.
    QPoint apply(QPoint previous, QPoint position);

private:
    State m_state = Off;
};
