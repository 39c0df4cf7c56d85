#include "render/views/reliefview.h"

#include "relief/grid/relief.h"
#include "relief/strokes/sculptengine.h"
#include "relief/tools/tool.h"

#include <QCursor>
#include <QMouseEvent>
#include <QWheelEvent>

#include <algorithm>

namespace marlowen {

// The half of ReliefView that answers pointer and wheel.

namespace {

constexpr double smallestSize = 0.01;
constexpr double smallestStrength = 0.0001;
constexpr double zoomDragDivisor = 300.0;

QPoint positionOf(const QSinglePointEvent &event)
{
    return event.position().toPoint();
}

} // namespace

int ReliefView::modeForPress(const QMouseEvent &event)
{
    if (event.button() == Qt::MiddleButton)
        return PanMode;
    if (event.button() == Qt::LeftButton)
        return m_mode == NoMode ? int(SculptMode) : m_mode;
    return NoMode;
}

void ReliefView::mousePressEvent(QMouseEvent *event)
{
    const QPoint position = positionOf(*event);
    if (m_heldButton != Qt::NoButton) {
        if (m_heldButton != event->button() && (event->buttons() & m_heldButton)) {
            event->ignore();
            return;
        }
        // The release never came, as when a dialog opened meanwhile.
        _endInteraction(m_lastPos);
    }
    m_lastPos = position;
    const int mode = modeForPress(*event);
    if (mode == NoMode) {
        event->ignore();
        return;
    }
    m_heldButton = event->button();
    m_savedMode = m_mode;
    setMode(mode);
    if (mode == SculptMode)
        _beginStroke(*event);
    update();
}

void ReliefView::mouseMoveEvent(QMouseEvent *event)
{
    const QPoint from = m_lastPos;
    m_lastPos = positionOf(*event);
    // While a button is held no enter or leave comes.
    m_pointerInside = rect().contains(m_lastPos);
    m_statusPending = true;
    if (m_heldButton == Qt::NoButton)
        event->ignore();
    else if (m_mode == SculptMode)
        _continueStroke(*event);
    else
        dragCamera(from, m_lastPos);
    update();
}

void ReliefView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != m_heldButton) {
        event->ignore();
        return;
    }
    m_lastPos = positionOf(*event);
    _endInteraction(m_lastPos);
    update();
}

void ReliefView::_endInteraction(QPoint position)
{
    const int mode = m_mode;
    m_heldButton = Qt::NoButton;
    setMode(std::exchange(m_savedMode, int(NoMode)));
    if (mode == SculptMode)
        _finishStroke(position);
    else
        endCameraDrag(mode);
}

void ReliefView::dragCamera(QPoint from, QPoint to)
{
    Camera camera = m_camera;
    if (m_mode == PanMode)
        camera.pan += to - from;
    else if (m_mode == ZoomMode)
        camera = dragZoomed(camera, to.y() - from.y(), zoomDragDivisor);
    setCamera(camera);
}

void ReliefView::_beginStroke(const QMouseEvent &event)
{
    m_strokeEdited = false;
    m_stroking = false;
    if (!m_engine || !m_relief || m_engine->relief() != m_relief)
        return;
    const PickResult at = pick(m_lastPos);
    if (!at.hit)
        return;
    m_axisLock.start(event.modifiers() & Qt::ControlModifier, m_lastPos);
    m_relief->invert = event.modifiers() & Qt::AltModifier;
    m_stroking = true;
    _throughEngine([&](SculptEngine &engine) {
        engine.beginStroke(*m_tool, {at.point.x, at.point.y});
    });
    if (m_tool->type == Tool::Sample)
        emit sampleChanged(double(m_relief->sampleHeight));
}

void ReliefView::_continueStroke(const QMouseEvent &event)
{
    if (!m_stroking)
        return;
    const QPoint position = m_axisLock.apply(m_lastPos);
    if (position != m_lastPos && m_axisLock.state() != AxisLock::Armed)
        QCursor::setPos(mapToGlobal(position));
    m_lastPos = position;
    const PickResult at = pick(position);
    if (!at.hit)
        return;
    m_relief->invert = event.modifiers() & Qt::AltModifier;
    _throughEngine([&](SculptEngine &engine) {
        engine.addStrokePoint({at.point.x, at.point.y});
        engine.flush();
    });
}

void ReliefView::_finishStroke(QPoint position)
{
    if (m_stroking) {
        const PickResult at = pick(m_axisLock.apply(position));
        _throughEngine([&](SculptEngine &engine) {
            engine.endStroke({at.point.x, at.point.y}, at.hit);
        });
        m_stroking = false;
        m_changes->notify();
        if (m_strokeEdited)
            emit reliefEdited();
    }
    m_axisLock.stop();
}

// What other work left to draw is taken first, so that afterwards everything is the stroke's.
void ReliefView::_throughEngine(const std::function<void(SculptEngine &)> &call)
{
    m_changes->collect();
    call(*m_engine);
    if (!m_relief->frameRegion.isEmpty())
        m_strokeEdited = true;
    m_changes->collectStroke();
}

void ReliefView::wheelEvent(QWheelEvent *event)
{
    const QPoint angle = event->angleDelta();
    const int delta = angle.y() != 0 ? angle.y() : angle.x();
    if (delta == 0 || _wheelTool(event->modifiers(), delta))
        return;
    setCamera(wheelZoomed(m_camera, delta, positionOf(*event), size()));
}

bool ReliefView::_wheelTool(Qt::KeyboardModifiers modifiers, int delta)
{
    const double step = modifiers & Qt::ShiftModifier ? 0.1 : 0.01;
    const double by = delta > 0 ? step : -step;
    if (modifiers & Qt::AltModifier) {
        _changeToolSize(by);
        return true;
    }
    if (modifiers & Qt::ControlModifier) {
        m_tool->strength = std::clamp(m_tool->strength + by, smallestStrength, 1.0);
        emit toolStrengthUpdated(m_tool->strength);
        return true;
    }
    return false;
}

void ReliefView::brushSizeStep(int step)
{
    constexpr double steps[] = {-0.01, 0.01, -0.1, 0.1};
    _changeToolSize(step >= 0 && step < 4 ? steps[step] : 0.0);
}

void ReliefView::_changeToolSize(double by)
{
    m_tool->size = std::clamp(m_tool->size + by, smallestSize, 1.0);
    emit toolSizeUpdated(m_tool->size);
    update();
}

void ReliefView::enterEvent(QEnterEvent *event)
{
    m_pointerInside = true;
    update();
    QOpenGLWidget::enterEvent(event);
}

void ReliefView::leaveEvent(QEvent *event)
{
    m_pointerInside = false;
    update();
    QOpenGLWidget::leaveEvent(event);
}

} // namespace marlowen
