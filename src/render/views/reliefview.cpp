#include "render/views/reliefview.h"

#include "relief/grid/relief.h"
#include "relief/tools/alphabrush.h"
#include "relief/tools/tool.h"
#include "render/camera/levelofdetail.h"
#include "render/engines/shader.h"
#include "render/overlays/footprint.h"
#include "render/overlays/footprintpainter.h"
#include "render/views/statustext.h"

#include <QCursor>
#include <QMouseEvent>

#include <algorithm>

namespace marlowen {

namespace {

constexpr double smallestSize = 0.01;
constexpr double smallestStrength = 0.0001;

} // namespace

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
    holdDepth(false);
    m_relief = relief;
    m_changes->setRelief(relief);
    invalidateVertices();
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
    return {double(m_relief->width()), double(m_relief->height()),
            m_range.minimum * m_relief->zScale, m_range.maximum * m_relief->zScale};
}

SceneBox ReliefView::wholeBox()
{
    SceneBox box = sceneBox();
    if (m_relief) {
        const HeightRange range = m_changes->heightRange();
        box.zMin = range.minimum * m_relief->zScale;
        box.zMax = range.maximum * m_relief->zScale;
    }
    return box;
}

void ReliefView::refresh()
{
    update();
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

bool ReliefView::updateSurface(Shader &shader)
{
    const PendingCells pending = m_changes->take(m_changesView);
    const QSize grid = m_relief ? QSize(m_relief->width(), m_relief->height()) : QSize();
    const bool full = pending.full || m_verticesStale || grid != m_grid;
    m_verticesStale = false;
    m_grid = grid;
    if (full && m_relief)
        m_range = m_changes->heightRange();
    const QRect visible = visibleCells(sceneBox(), matrices());
    if (full || needsRebuild({m_mesh.region(), m_mesh.step()}, visible, grid, size())) {
        _rebuildVertices(shader, visible);
        return true;
    }
    const QRegion touched = m_mesh.verticesTouchedBy(pending.cells);
    if (touched.isEmpty())
        return false;
    _refreshVertices(shader, touched);
    return true;
}

void ReliefView::_rebuildVertices(Shader &shader, const QRect &visible)
{
    if (!m_relief || visible.isEmpty()) {
        m_mesh.clear();
        m_indicesStale = true;
        verticesChanged();
        return;
    }
    m_range = m_changes->heightRange();
    const MeshLayout layout = layoutFor(visible, m_grid, size());
    if (m_mesh.layOut(layout.region, layout.step, hasNormals()))
        m_indicesStale = true;
    fillVertices(m_mesh, m_mesh.vertices());
    if (std::exchange(m_indicesStale, false))
        shader.setData(m_mesh.arrays());
    else
        shader.setVertices(m_mesh.arrays());
    ++work().fullRebuilds;
    verticesChanged();
}

void ReliefView::_refreshVertices(Shader &shader, const QRegion &vertices)
{
    const auto columns = static_cast<uint32_t>(m_mesh.columns());
    for (const QRect &rect : vertices) {
        fillVertices(m_mesh, rect);
        const auto left = static_cast<uint32_t>(rect.left());
        const auto top = static_cast<uint32_t>(rect.top());
        shader.updateVertices({top * columns + left, static_cast<uint32_t>(rect.width()),
                               static_cast<uint32_t>(rect.height()), columns});
        work().refreshedVertices += qint64(rect.width()) * rect.height();
    }
    ++work().partialRefreshes;
    verticesChanged();
}

void ReliefView::drawSurface(Shader &shader)
{
    if (m_mesh.vertexCount() == 0)
        return;
    shader.size = std::max(m_relief->width(), m_relief->height());
    configureShader(shader);
    shader.bind();
    shader.draw();
    shader.release();
}

void ReliefView::drawFootprint(QOpenGLFunctions_2_1 &gl)
{
    if (!m_relief || !pointerInside() || !hasFootprint(m_tool->type))
        return;
    const PickResult at = pick(lastPos());
    if (at.hit)
        m_footprint->draw(gl, *m_relief, *m_tool,
                          {{at.point.x, at.point.y}, camera().zoom, devicePixelRatioF()});
}

QString ReliefView::statusText(const PickResult &at) const
{
    return marlowen::statusText(at.point, sceneBox());
}

PointerStroke::Point ReliefView::_pointAt(QPoint position, Qt::KeyboardModifiers keys)
{
    const PickResult at = pick(position);
    return {position, at.hit, at.point, keys};
}

void ReliefView::beginStroke(const QMouseEvent &event)
{
    m_stroke.forget();
    holdDepth(false);
    if (!m_engine || !m_relief)
        return;
    const PointerStroke::Target target{m_relief, m_engine, m_changes};
    if (!m_stroke.begin(target, *m_tool, _pointAt(lastPos(), event.modifiers())))
        return;
    holdDepth(true);
    if (m_tool->type == Tool::Sample)
        emit sampleChanged(double(m_relief->sampleHeight));
}

void ReliefView::continueStroke(const QMouseEvent &event)
{
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
    if (!m_stroke.running())
        return;
    const PointerStroke::Point last = _pointAt(m_stroke.onLine(position), {});
    // The engine's last dabs are drawn with the depth still held.
    const bool edited = m_stroke.end(last);
    holdDepth(false);
    if (edited)
        emit reliefEdited();
}

bool ReliefView::wheelTurned(Qt::KeyboardModifiers keys, int delta)
{
    const double step = keys & Qt::ShiftModifier ? 0.1 : 0.01;
    const double by = delta > 0 ? step : -step;
    if (keys & Qt::AltModifier) {
        _changeToolSize(by);
        return true;
    }
    if (keys & Qt::ControlModifier) {
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

} // namespace marlowen
