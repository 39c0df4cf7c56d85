#pragma once

#include "render/overlays/outlinepainter.h"

#include <QObject>
#include <QRect>
#include <QTimer>

namespace marlowen {

class Relief;

/// The outline of a relief's selection with dashes that travel along it, and the timer that moves
/// them. The calls that take OpenGL need the view's context.
class SelectionAnts : public QObject
{
    Q_OBJECT

public:
    explicit SelectionAnts(QObject *parent = nullptr);

    /// Without graphics hardware every step costs a picture of the whole window: the dashes then
    /// move seldom, in larger steps.
    void setSlow(bool slow);
    /// The selection or the shown part of the relief changed.
    void invalidate() { m_dirty = true; }
    /// Rebuilds the outline within these cells where needed; starts the timer when there is an
    /// outline and stops it when there is none. `pixelsACell` is in device pixels.
    void update(QOpenGLFunctions_2_1 &gl, const Relief &relief, const QRect &region,
                double pixelsACell);
    void draw(QOpenGLFunctions_2_1 &gl, double deviceRatio);
    void release(QOpenGLFunctions_2_1 &gl);

    bool present() const { return m_painter.hasOutline(); }
    /// How far the dashes have travelled.
    int phase() const { return m_phase; }
    bool running() const { return m_timer.isActive(); }
    /// Until the next update().
    void pause() { m_timer.stop(); }

signals:
    /// The dashes moved on.
    void moved();

private:
    void _advance();

    OutlinePainter m_painter;
    QTimer m_timer;
    bool m_dirty = true;
    int m_step = 1; ///< cells that fall on one pixel
    int m_stride;
    int m_phase = 0;
};

} // namespace marlowen
