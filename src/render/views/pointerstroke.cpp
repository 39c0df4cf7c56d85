#include "render/views/pointerstroke.h"

#include "relief/grid/relief.h"
#include "relief/grid/reliefchanges.h"
#include "relief/strokes/sculptengine.h"

namespace marlowen {

bool PointerStroke::begin(const Target &target, const ToolParams &tool, const Point &press)
{
    forget();
    m_target = target;
    m_edited = false;
    const bool ready = target.engine && target.relief && target.engine->relief() == target.relief;
    if (!ready || !press.hit)
        return false;
    m_axisLock.start(press.keys & Qt::ControlModifier, press.position);
    target.relief->invert = press.keys & Qt::AltModifier;
    m_running = true;
    _throughEngine([&](SculptEngine &engine) {
        engine.beginStroke(tool, {press.model.x, press.model.y});
    });
    return true;
}

void PointerStroke::moveTo(const Point &point)
{
    if (!m_running || !point.hit)
        return;
    m_target.relief->invert = point.keys & Qt::AltModifier;
    _throughEngine([&](SculptEngine &engine) {
        engine.addStrokePoint({point.model.x, point.model.y});
        engine.flush();
    });
}

bool PointerStroke::end(const Point &release)
{
    if (!m_running)
        return false;
    _throughEngine([&](SculptEngine &engine) {
        engine.endStroke({release.model.x, release.model.y}, release.hit);
    });
    forget();
    m_target.changes->notify();
    return m_edited;
}

void PointerStroke::cancel()
{
    if (!m_running)
        return;
    _throughEngine([](SculptEngine &engine) { engine.cancelStroke(); });
    forget();
    m_target.changes->notify();
}

void PointerStroke::forget()
{
    m_running = false;
    m_axisLock.stop();
}

// What other work left to draw is taken first, so that afterwards everything is the stroke's.
void PointerStroke::_throughEngine(const std::function<void(SculptEngine &)> &call)
{
    m_target.changes->collect();
    call(*m_target.engine);
    if (!m_target.relief->frameRegion.isEmpty())
        m_edited = true;
    m_target.changes->collectStroke();
}

} // namespace marlowen
