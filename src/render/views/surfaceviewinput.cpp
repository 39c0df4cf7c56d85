#include "render/engines/keptpicture.h"
#include "render/engines/shader.h"
#include "render/gestures/pointeroptions.h"
#include "render/overlays/gizmo.h"
#include "render/views/surfaceview.h"
#include "render/views/turntable.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QOpenGLContext>
#include <QWheelEvent>

#include <algorithm>
#include <span>

namespace marlowen {

// The half of SurfaceView that answers pointer and wheel, and says what is under the pointer.

namespace {

constexpr double zoomDragDivisor = 300.0;

/// Keys that look straight at a face of the gizmo.
struct ViewKey
{
    int key;
    int face;
};
constexpr ViewKey viewKeys[] = {
    {Qt::Key_Home, 1}, {Qt::Key_1, 1}, {Qt::Key_2, 4}, {Qt::Key_3, 6}, {Qt::Key_4, 5}};

QPoint positionOf(const QSinglePointEvent &event)
{
    return event.position().toPoint();
}

} // namespace

void SurfaceView::enableTurning()
{
    m_turntable = std::make_unique<Turntable>();
}

Quaternion SurfaceView::rotation() const
{
    return m_turntable ? m_turntable->rotation() : Quaternion();
}

void SurfaceView::setRotation(const Quaternion &rotation)
{
    if (!m_turntable)
        return;
    m_turntable->setRotation(rotation);
    Camera turned = m_camera;
    turned.rotation = m_turntable->matrix();
    setCamera(turned);
}

int SurfaceView::modeForPress(const QMouseEvent &event)
{
    const bool turns = m_turntable != nullptr;
    switch (event.button()) {
    case Qt::MiddleButton:
        return turns && !(event.modifiers() & Qt::ShiftModifier) ? RotateMode : PanMode;
    case Qt::RightButton:
        return turns && (event.modifiers() & Qt::ControlModifier) ? RotateMode : NoMode;
    case Qt::LeftButton:
        if (turns && m_turntable->onGizmo())
            return RotateMode;
        return m_mode == NoMode ? int(SculptMode) : m_mode;
    default:
        return NoMode;
    }
}

void SurfaceView::mousePressEvent(QMouseEvent *event)
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
    if (m_turntable)
        m_turntable->press(position, size());
    const int mode = modeForPress(*event);
    if (mode == NoMode) {
        event->ignore();
        return;
    }
    m_heldButton = event->button();
    m_savedMode = m_mode;
    setMode(mode);
    if (mode == SculptMode) {
        m_pace.released();
        beginStroke(*event);
    }
    update();
}

void SurfaceView::mouseMoveEvent(QMouseEvent *event)
{
    const QPoint from = m_lastPos;
    m_lastPos = positionOf(*event);
    // While a button is held no enter or leave comes.
    m_pointerInside = rect().contains(m_lastPos);
    m_statusPending = true;
    if (m_heldButton == Qt::NoButton)
        event->ignore();
    else if (m_mode == SculptMode)
        continueStroke(*event);
    else
        _dragCamera(from, m_lastPos);
    update();
}

void SurfaceView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != m_heldButton) {
        event->ignore();
        return;
    }
    m_lastPos = positionOf(*event);
    _endInteraction(m_lastPos);
    update();
}

void SurfaceView::mouseDoubleClickEvent(QMouseEvent *event)
{
    const int face = m_turntable ? m_turntable->faceAt(positionOf(*event), size()) : -1;
    if (face > 0)
        setRotation(presetOrientation(face));
    else
        GlCanvas::mouseDoubleClickEvent(event);
}

void SurfaceView::_endInteraction(QPoint position)
{
    const int mode = m_mode;
    m_heldButton = Qt::NoButton;
    m_pace.released();
    setMode(std::exchange(m_savedMode, int(NoMode)));
    if (mode == SculptMode)
        finishStroke(position);
    else if (m_turntable)
        m_turntable->release();
}

void SurfaceView::_dragCamera(QPoint from, QPoint to)
{
    Camera camera = m_camera;
    switch (m_mode) {
    case PanMode:
        m_fitted = false;
        camera.pan += to - from;
        break;
    case ZoomMode:
        m_fitted = false;
        camera = dragZoomed(camera, to.y() - from.y(), zoomDragDivisor);
        break;
    case RotateMode:
        setMode(RotatingMode);
        [[fallthrough]];
    case RotatingMode:
        m_turntable->drag(from, to, size());
        camera.rotation = m_turntable->matrix();
        break;
    default:
        break;
    }
    m_pace.moved();
    setCamera(camera);
}

bool SurfaceView::wheelTurned(Qt::KeyboardModifiers, int)
{
    return false;
}

void SurfaceView::wheelEvent(QWheelEvent *event)
{
    const QPoint angle = event->angleDelta();
    const int delta = angle.y() != 0 ? angle.y() : angle.x();
    if (delta == 0 || wheelTurned(event->modifiers(), delta))
        return;
    m_pace.moved();
    m_fitted = false;
    const int zoomBy = pointerOptions().wheelZoomsIn ? -delta : delta;
    setCamera(wheelZoomed(m_camera, zoomBy, positionOf(*event), size()));
}

void SurfaceView::keyPressEvent(QKeyEvent *event)
{
    const auto row = std::find_if(std::begin(viewKeys), std::end(viewKeys), [&](const ViewKey &k) {
        return k.key == event->key() && !(event->modifiers() & ~Qt::KeypadModifier);
    });
    if (!m_turntable || row == std::end(viewKeys)) {
        GlCanvas::keyPressEvent(event);
        return;
    }
    setRotation(presetOrientation(row->face));
    _fitCamera();
}

void SurfaceView::enterEvent(QEnterEvent *event)
{
    m_pointerInside = true;
    update();
    GlCanvas::enterEvent(event);
}

void SurfaceView::leaveEvent(QEvent *event)
{
    m_pointerInside = false;
    showStatus({});
    update();
    GlCanvas::leaveEvent(event);
}

void SurfaceView::focusInEvent(QFocusEvent *event)
{
    constexpr Qt::FocusReason byKey[] = {Qt::TabFocusReason, Qt::BacktabFocusReason,
                                         Qt::ShortcutFocusReason};
    // Another window or a menu gives the focus back as it was.
    constexpr Qt::FocusReason back[] = {Qt::ActiveWindowFocusReason, Qt::PopupFocusReason,
                                        Qt::MenuBarFocusReason};
    const auto isOneOf = [reason = event->reason()](std::span<const Qt::FocusReason> reasons) {
        return std::find(reasons.begin(), reasons.end(), reason) != reasons.end();
    };
    if (!isOneOf(back))
        m_focusShown = isOneOf(byKey);
    GlCanvas::focusInEvent(event);
}

SurfaceView::PickResult SurfaceView::pick(QPoint position)
{
    _ensureDepth();
    const double depth = m_depth.at(position, devicePixelRatioF());
    const double y = height() - 1 - position.y();
    return {depth < 1.0, unproject({double(position.x()), y, depth}, m_depthMatrices)};
}

void SurfaceView::_ensureDepth()
{
    const bool moved = matrices() != m_drawn;
    // The surface itself may extend beyond the old clip planes while the depth is kept.
    const bool held = m_depthHeld && m_camera == m_depthCamera && m_depth.size() == pixels();
    const bool unfinished = m_quality < _wantedQuality();
    if (!m_shader || held || !(moved || unfinished || m_depthStale))
        return;
    const bool painting = QOpenGLContext::currentContext() == context();
    if (!painting)
        makeCurrent();
    if (moved || unfinished)
        _updatePicture();
    if (m_picture->isValid() && m_depthStale) {
        m_picture->readDepth(*m_gl, m_depth);
        ++m_counters.depthReads;
        m_depthStale = false;
        m_depthMatrices = m_drawn;
        m_depthCamera = m_camera;
    }
    if (!painting)
        doneCurrent();
}

QString SurfaceView::statusText(const Vector &) const
{
    return {};
}

void SurfaceView::showStatus(const QString &text)
{
    if (text != std::exchange(m_status, text))
        emit statusChanged(text);
}

void SurfaceView::statusTimeout()
{
    // Reading the depth would hold up a moving camera.
    const bool moving = (m_heldButton != Qt::NoButton && m_mode != SculptMode) || m_pace.moving();
    if (!m_statusPending || !isValid() || moving || sceneBox().isEmpty() || matrices() != m_drawn)
        return;
    m_statusPending = false;
    const PickResult at = pick(m_lastPos);
    showStatus(at.hit && m_pointerInside ? statusText(at.point) : QString());
}

} // namespace marlowen
