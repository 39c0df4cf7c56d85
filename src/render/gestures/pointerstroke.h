#pragma once

#include "relief/tools/strokepoint.h"
#include "render/camera/axislock.h"
#include "render/camera/camera.h"

#include <QPoint>

#include <functional>

namespace marlowen {

class Relief;
class ReliefChanges;
class SculptEngine;
struct ToolParams;

/// A stroke of the pointer: takes presses and moves as points on the relief, lays the stroke
/// through the engine and reports the changes to the views. With Ctrl at the press it keeps to a
/// line; Alt and the eraser of a pen turn the relief's invert flag round until the stroke ends.
/// Independent of windows.
class PointerStroke
{
public:
    /// The objects of the stroke; all of them outlive it.
    struct Target
    {
        Relief *relief = nullptr;
        SculptEngine *engine = nullptr;
        ReliefChanges *changes = nullptr;
    };
    /// The pointer: its position on the widget and the point of the relief under it.
    struct Point
    {
        QPoint position; ///< logical pixels
        bool hit = false;
        Vector model; ///< model space: stroke point in x and y
        Qt::KeyboardModifiers keys;
        double pressure = 1.0; ///< of a pen
        bool eraser = false;   ///< its other end

        StrokePoint strokePoint() const;
    };

    /// Begins a stroke where the press hit the relief; false, and nothing done, where it did not or
    /// the engine does not work on this relief.
    bool begin(const Target &target, const ToolParams &tool, const Point &press);
    bool running() const { return m_running; }
    /// Where the pointer counts as being: on the line when the stroke keeps to one.
    QPoint onLine(QPoint position) { return m_axisLock.apply(position); }
    /// The line is decided, so that the pointer itself can be put back onto it.
    bool lineDecided() const { return m_axisLock.state() != AxisLock::Armed; }
    /// The next point, already on the line; nothing off the relief.
    void moveTo(const Point &point);
    /// True when the stroke changed the relief.
    bool end(const Point &release);
    /// Takes the stroke back.
    void cancel();
    /// Forgets the stroke, without the engine.
    void forget();

private:
    void _setInvert(const Point &point);
    void _throughEngine(const std::function<void(SculptEngine &)> &call);

    Target m_target;
    AxisLock m_axisLock;
    bool m_invert = false; ///< the relief's flag between strokes
    bool m_running = false;
    bool m_edited = false;
};

} // namespace marlowen
