#include "render/views/reliefview.h"

#include "relief/grid/relief.h"
#include "relief/strokes/sculptengine.h"
#include "relief/tools/alphabrush.h"
#include "relief/tools/tool.h"
#include "relief/tools/toolfields.h"
#include "render/overlays/footprint.h"
#include "render/overlays/footprintpainter.h"
#include "render/views/statustext.h"

#include <QCursor>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QTabletEvent>
#include <QTimer>

#include <algorithm>

namespace marlowen {

static constexpr int prepareDelay = 150; ///< milliseconds after a relief is there

ReliefView::ReliefView(QWidget *parent)
    : SurfaceView(parent)
    , m_ownChanges(new ReliefChanges(this))
    , m_footprint(std::make_unique<FootprintPainter>())
{
    setChanges(nullptr);
}

ReliefView::~ReliefView()
{
    if (m_changes)
        m_changes->removeView(m_changesView);
}

void ReliefView::setRelief(Relief *relief, bool resize)
{
    m_stroke.forget();
    m_strokeWaits = false;
    holdDepth(false);
    const bool another = relief != m_relief;
    m_relief = relief;
    // It is shown from above.
    if (another && rotation() != Quaternion())
        setRotation({});
    m_changes->setRelief(relief);
    invalidateVertices();
    if (relief)
        _prepareStroke();
    if (resize)
        zoomAll();
}

void ReliefView::setTool(ToolParams *tool)
{
    m_tool = tool ? tool : &m_ownTool;
    update();
}

void ReliefView::setChanges(ReliefChanges *changes)
{
    if (m_changes) {
        m_changes->removeView(m_changesView);
        m_changes->disconnect(this);
    }
    m_changes = changes ? changes : m_ownChanges;
    m_changesView = m_changes->addView();
    connect(m_changes, &ReliefChanges::changed, this, &ReliefView::refresh);
    if (m_changes != m_ownChanges)
        connect(m_changes, &QObject::destroyed, this, [this] { setChanges(nullptr); });
    if (m_relief && m_changes->relief() != m_relief)
        m_changes->setRelief(m_relief);
}

SceneBox ReliefView::sceneBox() const
{
    if (!m_relief)
        return {};
    const HeightRange extent = m_changes->extent();
    return {double(m_relief->width()), double(m_relief->height()),
            extent.minimum * m_relief->zScale, extent.maximum * m_relief->zScale};
}

SceneBox ReliefView::wholeBox()
{
    if (m_relief)
        m_changes->heightRange(); // makes the extent exact
    return sceneBox();
}

void ReliefView::refresh()
{
    // The changes follow another relief before this one is deleted.
    if (m_relief && m_changes->relief() == m_relief && m_grid.isValid() &&
        m_grid != QSize(m_relief->width(), m_relief->height()))
        fitAgain();
    updateLater();
}

void ReliefView::invalidateVertices()
{
    m_verticesStale = true;
    update();
}

void ReliefView::prepareGL(QOpenGLFunctions_2_1 &)
{
    m_verticesStale = m_indicesStale = true;
}

void ReliefView::releaseOverlays(QOpenGLFunctions_2_1 &gl)
{
    SurfaceView::releaseOverlays(gl);
    m_footprint->release(gl);
}

QString ReliefView::statusText(const Vector &point) const
{
    return marlowen::statusText(point, sceneBox(), m_unit);
}

void ReliefView::setUnit(int unit)
{
    m_unit = unit;
    refreshStatus();
}

void ReliefView::setEngine(SculptEngine *engine)
{
    if (engine == std::exchange(m_engine, engine))
        return;
    update();
    _prepareStroke();
}

// When idle; otherwise the first stroke would wait for fresh memory.
void ReliefView::_prepareStroke()
{
    QTimer::singleShot(prepareDelay, this, [this] {
        if (canEdit())
            m_engine->prepare(*m_tool);
    });
}

bool ReliefView::canEdit() const
{
    return m_relief && m_engine && m_engine->relief() == m_relief;
}

void ReliefView::showReason()
{
    if (m_relief && !m_reason.isEmpty())
        emit editRefused(m_reason);
}

PointerStroke::Point ReliefView::_pointAt(QPoint position, Qt::KeyboardModifiers keys)
{
    const PickResult at = pick(position);
    return {position, at.hit, at.point, keys, m_pressure, m_eraser};
}

void ReliefView::beginStroke(const QMouseEvent &event)
{
    m_stroke.forget();
    holdDepth(false);
    m_strokeWaits = false;
    if (!canEdit()) {
        showReason();
        return;
    }
    if (_startStroke(_pointAt(lastPos(), event.modifiers())))
        return;
    m_strokeWaits = hasFootprint(m_tool->type);
    m_strokeFrom = lastPos();
}

SelectionModifier ReliefView::modifierFor(Qt::KeyboardModifiers keys) const
{
    if (keys & Qt::ShiftModifier)
        return SelectionModifier::Additive;
    return keys & Qt::AltModifier ? SelectionModifier::Subtractive : m_modifier;
}

bool ReliefView::_startStroke(const PointerStroke::Point &press)
{
    m_engine->setSelectionModifier(modifierFor(press.keys));
    if (!m_stroke.begin({m_relief, m_engine, m_changes}, *m_tool, press))
        return false;
    holdDepth(true);
    if (m_tool->type == Tool::Sample)
        emit sampleChanged(double(m_relief->sampleHeight));
    if (m_tool->type == Tool::Magic)
        emit selectionChanged();
    return true;
}

// Halves the way until the pixel where the pointer came onto the relief is found.
void ReliefView::_enterRelief(QPoint outside, QPoint inside, Qt::KeyboardModifiers keys)
{
    while ((inside - outside).manhattanLength() > 1) {
        const QPoint middle = (outside + inside) / 2;
        if (middle == outside || middle == inside)
            break;
        (pick(middle).hit ? inside : outside) = middle;
    }
    m_strokeWaits = !_startStroke(_pointAt(inside, keys));
}

void ReliefView::continueStroke(const QMouseEvent &event)
{
    if (m_strokeWaits) {
        const QPoint from = std::exchange(m_strokeFrom, lastPos());
        if (pick(lastPos()).hit)
            _enterRelief(from, lastPos(), event.modifiers());
    }
    if (!m_stroke.running())
        return;
    const QPoint position = m_stroke.onLine(lastPos());
    if (position != lastPos() && m_stroke.lineDecided())
        QCursor::setPos(mapToGlobal(position));
    setLastPos(position);
    m_stroke.moveTo(_pointAt(position, event.modifiers()));
}

void ReliefView::finishStroke(QPoint position)
{
    m_strokeWaits = false;
    if (!m_stroke.running())
        return;
    const bool edited = m_stroke.end(_pointAt(m_stroke.onLine(position), {}));
    holdDepth(false);
    refreshStatus();
    if (edited)
        emit reliefEdited();
}

// A pen is a mouse with pressure.
void ReliefView::tabletEvent(QTabletEvent *event)
{
    m_pressure = StrokePoint::usable(event->pressure());
    m_eraser = event->pointerType() == QPointingDevice::PointerType::Eraser;
    const auto mouse = [&](QEvent::Type type) {
        return QMouseEvent(type, event->position(), event->globalPosition(), event->button(),
                           event->buttons(), event->modifiers(), event->pointingDevice());
    };
    if (event->type() == QEvent::TabletPress) {
        QMouseEvent press = mouse(QEvent::MouseButtonPress);
        mousePressEvent(&press);
    } else if (event->type() == QEvent::TabletRelease) {
        QMouseEvent release = mouse(QEvent::MouseButtonRelease);
        mouseReleaseEvent(&release);
    } else {
        QMouseEvent move = mouse(QEvent::MouseMove);
        mouseMoveEvent(&move);
    }
    m_pressure = 1.0;
    m_eraser = false;
    event->accept();
}

void ReliefView::_cancelStroke()
{
    m_stroke.cancel();
    holdDepth(false);
    refreshStatus();
}

bool ReliefView::event(QEvent *event)
{
    // Esc cancels a stroke, even if the window has a shortcut on it.
    if (event->type() == QEvent::ShortcutOverride && m_stroke.running() &&
        static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape)
        event->accept();
    return SurfaceView::event(event);
}

void ReliefView::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && m_stroke.running())
        _cancelStroke();
    else
        SurfaceView::keyPressEvent(event);
}

bool ReliefView::wheelTurned(Qt::KeyboardModifiers keys, int delta)
{
    const double step = keys & Qt::ShiftModifier ? 0.1 : 0.01;
    const double by = delta > 0 ? step : -step;
    if (keys & Qt::AltModifier) {
        _changeToolSize(by);
        return true;
    }
    if (!(keys & Qt::ControlModifier))
        return false;
    m_tool->strength = onControl(&ToolParams::strength, m_tool->strength + by);
    emit toolStrengthUpdated(m_tool->strength);
    return true;
}

void ReliefView::brushSizeStep(int step)
{
    constexpr double steps[] = {-0.01, 0.01, -0.1, 0.1};
    _changeToolSize(step >= 0 && step < 4 ? steps[step] : 0.0);
}

void ReliefView::_changeToolSize(double by)
{
    m_tool->size = onControl(&ToolParams::size, m_tool->size + by);
    emit toolSizeUpdated(m_tool->size);
    update();
}

} // namespace marlowen
