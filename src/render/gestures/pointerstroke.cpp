#include "render/gestures/pointerstroke.h"

#include "relief/grid/relief.h"
#include "relief/grid/reliefchanges.h"
#include "relief/strokes/sculptengine.h"
#include "render/gestures/pointeroptions.h"

#include <cmath>

namespace marlowen {

StrokePoint PointerStroke::Point::strokePoint() const
{
    const PointerOptions &options = pointerOptions();
    const auto curve = static_cast<size_t>(options.penCurve);
    const double bent = std::pow(pressure, penCurves[curve].exponent);
    return {model.x, model.y, options.penStrength ? bent : 1.0, options.penSize ? bent : 1.0};
}

void PointerStroke::_setInvert(const Point &point)
{
    const bool alt = point.keys & Qt::AltModifier;
    m_target.relief->invert = (m_invert != alt) != point.eraser;
}

bool PointerStroke::begin(const Target &target, const ToolParams &tool, const Point &press)
{
    forget();
    m_target = target;
    m_edited = false;
    const bool ready = target.engine && target.relief && target.engine->relief() == target.relief;
    if (!ready || !press.hit)
        return false;
    m_axisLock.start(press.keys & Qt::ControlModifier, press.position);
    m_invert = target.relief->invert;
    _setInvert(press);
    m_running = true;
    _throughEngine([&](SculptEngine &engine) { engine.beginStroke(tool, press.strokePoint()); });
    return true;
}

void PointerStroke::moveTo(const Point &point)
{
    if (!m_running || !point.hit)
        return;
    _setInvert(point);
    _throughEngine([&](SculptEngine &engine) {
        engine.addStrokePoint(point.strokePoint());
        engine.flush();
    });
}

bool PointerStroke::end(const Point &release)
{
    if (!m_running)
        return false;
    _throughEngine(
        [&](SculptEngine &engine) { engine.endStroke(release.strokePoint(), release.hit); });
    m_target.relief->invert = m_invert;
    forget();
    m_target.changes->notify();
    return m_edited;
}

void PointerStroke::cancel()
{
    if (!m_running)
        return;
    _throughEngine([](SculptEngine &engine) { engine.cancelStroke(); });
    m_target.relief->invert = m_invert;
    forget();
    m_target.changes->notify();
}

void PointerStroke::forget()
{
    m_running = false;
    m_axisLock.stop();
}

// Earlier changes are collected first, so that all later ones are the stroke's.
void PointerStroke::_throughEngine(const std::function<void(SculptEngine &)> &call)
{
    m_target.changes->collect();
    call(*m_target.engine);
    if (!m_target.relief->frameRegion.isEmpty())
        m_edited = true;
    m_target.changes->collectStroke();
}

} // namespace marlowen
