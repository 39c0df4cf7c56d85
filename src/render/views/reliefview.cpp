#include "render/views/reliefview.h"

#include "base/sessionlog.h"
#include "relief/grid/relief.h"
#include "relief/tools/alphabrush.h"
#include "render/camera/levelofdetail.h"
#include "render/engines/reliefpicture.h"
#include "render/engines/shader.h"
#include "render/overlays/cursors.h"
#include "render/overlays/footprint.h"
#include "render/overlays/footprintpainter.h"
#include "render/views/statustext.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions_2_1>
#include <QOpenGLVersionFunctionsFactory>
#include <QPainter>

#include <algorithm>

namespace marlowen {

ReliefView::ReliefView(QWidget *parent)
    : QOpenGLWidget(parent)
    , m_ownChanges(new ReliefChanges(this))
    , m_footprint(std::make_unique<FootprintPainter>())
{
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    QFont viewFont = font();
    viewFont.setPointSize(16);
    viewFont.setWeight(QFont::DemiBold);
    viewFont.setStyleStrategy(QFont::PreferAntialias);
    setFont(viewFont);
    setChanges(nullptr);
    connect(&m_statusTimer, &QTimer::timeout, this, &ReliefView::statusTimeout);
    m_statusTimer.start(100);
}

ReliefView::~ReliefView()
{
    // The context goes after this object has stopped being a ReliefView.
    if (context())
        context()->disconnect(this);
    if (m_changes)
        m_changes->removeView(m_changesView);
}

void ReliefView::setRelief(Relief *relief, bool resize)
{
    m_stroking = false;
    m_axisLock.stop();
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

void ReliefView::setBackdrop(const QColor &color)
{
    m_backdrop = color;
    invalidatePicture();
}

void ReliefView::setMode(int mode)
{
    m_mode = mode;
    setCursor(cursorForMode(mode));
}

void ReliefView::setCursorScale(int percent)
{
    marlowen::setCursorScale(percent);
    setCursor(cursorForMode(m_mode));
}

ReliefBox ReliefView::reliefBox() const
{
    if (!m_relief)
        return {};
    return {double(m_relief->width()), double(m_relief->height()),
            m_range.minimum * m_relief->zScale, m_range.maximum * m_relief->zScale};
}

ViewMatrices ReliefView::matrices() const
{
    return viewMatrices(m_camera, reliefBox(), size());
}

void ReliefView::setCamera(const Camera &camera)
{
    m_camera = camera;
    m_statusPending = true;
    update();
    emit cameraChanged();
}

void ReliefView::zoomAll()
{
    if (!isValid() || size().isEmpty()) {
        m_zoomAllPending = true;
        return;
    }
    if (!m_relief)
        return;
    ReliefBox box = reliefBox();
    const HeightRange range = m_changes->heightRange();
    box.zMin = range.minimum * m_relief->zScale;
    box.zMax = range.maximum * m_relief->zScale;
    setCamera(zoomedToAll(m_camera, box, size()));
}

void ReliefView::refresh()
{
    update();
}

void ReliefView::invalidatePicture()
{
    m_pictureStale = true;
    update();
}

void ReliefView::invalidateVertices()
{
    m_verticesStale = true;
    update();
}

void ReliefView::initializeGL()
{
    connect(context(), &QOpenGLContext::aboutToBeDestroyed, this, &ReliefView::releaseGL,
            Qt::ConnectionType(Qt::DirectConnection | Qt::UniqueConnection));
    m_gl = QOpenGLVersionFunctionsFactory::get<QOpenGLFunctions_2_1>(context());
    if (!m_gl) {
        m_message = tr("This view needs OpenGL 2.1, which the graphics driver does not offer.");
        logCritical() << "The context has no OpenGL 2.1 functions\n";
        return;
    }
    _makeShader();
    if (!m_shader)
        return;
    m_picture = std::make_unique<ReliefPicture>();
    m_verticesStale = m_indicesStale = m_pictureStale = m_depthStale = true;
    m_gl->glShadeModel(GL_SMOOTH);
    m_gl->glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
    m_gl->glDepthFunc(GL_LEQUAL);
    m_gl->glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST);
    m_gl->glColor4f(1.0F, 1.0F, 1.0F, 1.0F);
    for (const GLenum feature : {GL_TEXTURE_2D, GL_LIGHTING, GL_LINE_STIPPLE, GL_DEPTH_TEST})
        m_gl->glDisable(feature);
    m_gl->glEnable(GL_LINE_SMOOTH);
    m_gl->glLineWidth(1.0F);
    _logErrors();
    prepareGL(*m_gl);
}

void ReliefView::_makeShader()
{
    m_message.clear();
    for (const bool legacy : {false, true}) {
        try {
            m_shader = createShader(legacy);
            return;
        } catch (const char *reason) {
            logWarning() << (legacy ? "Legacy" : "Chosen") << " drawing engine failed: " << reason
                         << "\n";
        }
    }
    m_message = tr("The relief cannot be drawn: the graphics driver refuses the drawing programs.");
}

void ReliefView::releaseGL()
{
    if (!m_gl && !m_shader)
        return;
    makeCurrent();
    releaseOverlays();
    if (m_gl)
        m_footprint->release(*m_gl);
    m_shader.reset();
    m_picture.reset();
    m_gl = nullptr;
    doneCurrent();
}

void ReliefView::resizeGL(int, int)
{
    m_pictureStale = true;
    if (std::exchange(m_zoomAllPending, false))
        zoomAll();
}

void ReliefView::paintGL()
{
    if (!m_shader) {
        _paintMessage();
        return;
    }
    _updatePicture();
    if (m_picture->isValid())
        _paintOverPicture();
    _logErrors();
}

void ReliefView::_updatePicture()
{
    const bool changed = _updateVertices();
    const bool resized = m_picture->resize(physicalSize(size(), devicePixelRatioF()));
    const ViewMatrices now = matrices();
    if (!m_picture->isValid() || !(changed || resized || m_pictureStale || now != m_drawn))
        return;
    m_drawn = now;
    _rasterise();
}

bool ReliefView::_updateVertices()
{
    const PendingCells pending = m_changes->take(m_changesView);
    const QSize grid = m_relief ? QSize(m_relief->width(), m_relief->height()) : QSize();
    const bool full = pending.full || m_verticesStale || grid != m_grid;
    m_verticesStale = false;
    m_grid = grid;
    if (full && m_relief)
        m_range = m_changes->heightRange();
    const QRect visible = visibleCells(reliefBox(), matrices());
    if (full || needsRebuild({m_mesh.region(), m_mesh.step()}, visible, grid, size())) {
        _rebuildVertices(visible);
        return true;
    }
    const QRegion touched = m_mesh.verticesTouchedBy(pending.cells);
    if (touched.isEmpty())
        return false;
    _refreshVertices(touched);
    return true;
}

void ReliefView::_rebuildVertices(const QRect &visible)
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
    const uint32_t count = m_mesh.vertexCount();
    if (std::exchange(m_indicesStale, false))
        m_shader->setData(m_mesh.positions(), 12 * count, m_mesh.normals(),
                          hasNormals() ? 12 * count : 0, m_mesh.selection(), 4 * count,
                          m_mesh.indices(), 4 * m_mesh.indexCount());
    else
        m_shader->setVertices(m_mesh.positions(), m_mesh.normals(), m_mesh.selection(), count);
    ++m_counters.fullRebuilds;
    verticesChanged();
}

void ReliefView::_refreshVertices(const QRegion &vertices)
{
    const auto columns = static_cast<uint32_t>(m_mesh.columns());
    for (const QRect &rect : vertices) {
        fillVertices(m_mesh, rect);
        const auto left = static_cast<uint32_t>(rect.left());
        const auto top = static_cast<uint32_t>(rect.top());
        m_shader->updateVertices({top * columns + left, static_cast<uint32_t>(rect.width()),
                                  static_cast<uint32_t>(rect.height()), columns});
        m_counters.refreshedVertices += qint64(rect.width()) * rect.height();
    }
    ++m_counters.partialRefreshes;
    verticesChanged();
}

void ReliefView::_rasterise()
{
    m_picture->begin(*m_gl, m_backdrop);
    if (m_mesh.vertexCount() > 0) {
        m_gl->glMatrixMode(GL_PROJECTION);
        m_gl->glLoadMatrixd(m_drawn.projection.data());
        m_gl->glMatrixMode(GL_MODELVIEW);
        m_gl->glLoadMatrixd(m_drawn.modelview.data());
        m_gl->glEnable(GL_DEPTH_TEST);
        m_shader->size = std::max(m_relief->width(), m_relief->height());
        configureShader(*m_shader);
        m_shader->bind();
        m_shader->draw();
        m_shader->release();
        m_gl->glDisable(GL_DEPTH_TEST);
    }
    m_picture->end();
    ++m_counters.pictures;
    m_pictureStale = false;
    m_depthStale = true;
}

void ReliefView::_paintOverPicture()
{
    const QSize physical = physicalSize(size(), devicePixelRatioF());
    m_gl->glViewport(0, 0, physical.width(), physical.height());
    m_gl->glDisable(GL_BLEND);
    m_gl->glDisable(GL_DEPTH_TEST);
    m_picture->draw(*m_gl);
    // The picture is opaque; overlays leave it so.
    m_gl->glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_FALSE);
    m_gl->glDepthMask(GL_FALSE);
    m_gl->glMatrixMode(GL_PROJECTION);
    m_gl->glLoadMatrixd(m_drawn.projection.data());
    m_gl->glMatrixMode(GL_MODELVIEW);
    m_gl->glLoadMatrixd(m_drawn.modelview.data());
    drawOverlays(*m_gl);
    m_gl->glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    m_gl->glDepthMask(GL_TRUE);
}

void ReliefView::_paintMessage()
{
    QPainter painter(this);
    painter.fillRect(rect(), m_backdrop);
    painter.setPen(m_backdrop.lightness() < 128 ? Qt::white : Qt::black);
    painter.drawText(rect().adjusted(16, 16, -16, -16), Qt::AlignCenter | Qt::TextWordWrap,
                     m_message);
}

void ReliefView::_logErrors()
{
    // A lost context reports its error for ever.
    constexpr int mostErrors = 16;
    for (int i = 0; i < mostErrors; ++i) {
        const GLenum error = m_gl->glGetError();
        if (error == GL_NO_ERROR)
            return;
        logWarning() << "OpenGL error " << error << "\n";
    }
}

void ReliefView::drawFootprint(QOpenGLFunctions_2_1 &gl)
{
    if (!m_relief || !m_pointerInside || !hasFootprint(m_tool->type))
        return;
    const PickResult at = pick(m_lastPos);
    if (at.hit)
        m_footprint->draw(gl, *m_relief, *m_tool,
                          {{at.point.x, at.point.y}, m_camera.zoom, devicePixelRatioF()});
}

ReliefView::PickResult ReliefView::pick(QPoint position)
{
    _ensureDepth();
    const double depth = m_depth.at(position, devicePixelRatioF());
    const double y = height() - 1 - position.y();
    return {depth < 1.0, unproject({double(position.x()), y, depth}, m_drawn)};
}

void ReliefView::_ensureDepth()
{
    const bool moved = matrices() != m_drawn;
    if (!m_shader || (!moved && (m_stroking || !m_depthStale)))
        return;
    const bool painting = QOpenGLContext::currentContext() == context();
    if (!painting)
        makeCurrent();
    if (moved)
        _updatePicture();
    if (m_picture->isValid() && m_depthStale) {
        m_picture->readDepth(*m_gl, m_depth);
        ++m_counters.depthReads;
        m_depthStale = false;
    }
    if (!painting)
        doneCurrent();
}

void ReliefView::statusTimeout()
{
    // Reading the depth would hold up a moving camera.
    const bool moving = m_heldButton != Qt::NoButton && m_mode != SculptMode;
    if (!m_relief || !m_statusPending || !isValid() || moving || matrices() != m_drawn)
        return;
    m_statusPending = false;
    emit statusChanged(statusText(pick(m_lastPos).point, reliefBox()));
}

} // namespace marlowen
