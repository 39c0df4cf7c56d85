#include "render/views/flatwin.h"

#include "relief/grid/relief.h"
#include "relief/strokes/sculptengine.h"
#include "relief/tools/tooltable.h"
#include "render/engines/legacyshader.h"
#include "render/meshes/flatvertices.h"

#include <QKeyEvent>
#include <QMouseEvent>

#include <algorithm>
#include <cmath>

namespace marlowen {

namespace {

constexpr double mostLevels = 65536.0;

bool dabsHere(int type)
{
    const ToolRow *row = toolRow(type);
    return row && row->has(DabsIn2d);
}

/// The pointer for the part of the crop box that a press would drag.
Qt::CursorShape cursorForHold(int hold)
{
    using Gesture = ShapeGesture;
    switch (hold) {
    case Gesture::Left:
    case Gesture::Right:
        return Qt::SizeHorCursor;
    case Gesture::Top:
    case Gesture::Bottom:
        return Qt::SizeVerCursor;
    case Gesture::Left | Gesture::Top:
    case Gesture::Right | Gesture::Bottom:
        return Qt::SizeFDiagCursor;
    case Gesture::Right | Gesture::Top:
    case Gesture::Left | Gesture::Bottom:
        return Qt::SizeBDiagCursor;
    case Gesture::Inside:
        return Qt::SizeAllCursor;
    default:
        return Qt::CrossCursor;
    }
}

} // namespace

FlatWin::FlatWin(QWidget *parent)
    : ReliefView(parent)
{
    setAccessibleName(tr("2D view"));
    connect(&m_ants, &SelectionAnts::moved, this, &FlatWin::refresh);
}

FlatWin::~FlatWin()
{
    releaseGL();
}

void FlatWin::setRelief(Relief *relief, bool resize)
{
    ReliefView::setRelief(relief, resize);
    m_ants.invalidate();
    m_shape.cancel();
    _syncTool();
}

bool FlatWin::actsHere(int toolType)
{
    const ToolRow *row = toolRow(toolType);
    return row &&
           (row->kind == ToolKind::Click || row->kind == ToolKind::Shape || row->has(DabsIn2d));
}

std::unique_ptr<Shader> FlatWin::createShader(bool legacy)
{
    if (legacy)
        return std::make_unique<LegacyShader2d>();
    return std::unique_ptr<Shader>(ShaderFactory::getShader(Shader2d));
}

void FlatWin::prepareGL(QOpenGLFunctions_2_1 &gl)
{
    ReliefView::prepareGL(gl);
    m_ants.setSlow(slowDriver());
}

void FlatWin::fillVertices(ReliefMesh &mesh, const QRect &vertices)
{
    const HeightRange range = heightRange();
    fillFlatVertices(mesh, *relief(), vertices, {range.minimum, range.maximum, m_quantization});
    // A change of the selection, of the region or of the step brings all vertices here.
    if (vertices == mesh.vertices())
        m_ants.invalidate();
}

void FlatWin::verticesChanged()
{
    // Without vertices, as when the relief is off the screen, there is nothing to outline either.
    if (drawRegion().isEmpty())
        m_ants.invalidate();
    m_rangeUnchecked = true;
}

void FlatWin::_checkRange()
{
    // Looking through all heights is left for the end of a stroke or of a drag.
    if (!m_rangeUnchecked || relief()->tool() || moving())
        return;
    m_rangeUnchecked = false;
    const HeightRange now = changes()->heightRange();
    if (now.minimum != heightRange().minimum || now.maximum != heightRange().maximum)
        invalidateVertices();
}

void FlatWin::configureShader(Shader &shader)
{
    shader.minZ = static_cast<float>(heightRange().minimum * relief()->zScale);
    shader.maxZ = static_cast<float>(heightRange().maximum * relief()->zScale);
    shader.colorOffset = static_cast<float>(m_colorOffset);
}

void FlatWin::colorOffsetChanged(double offset)
{
    if (!std::isfinite(offset) || offset == m_colorOffset)
        return;
    m_colorOffset = offset;
    invalidatePicture();
}

void FlatWin::quantizationChanged(double levels)
{
    if (!std::isfinite(levels))
        return;
    m_quantization = std::clamp(levels, 2.0, mostLevels);
    invalidateVertices();
}

void FlatWin::drawOverlays(QOpenGLFunctions_2_1 &gl)
{
    if (!relief())
        return;
    _checkRange();
    // Its signals have no place in a paint.
    if (!_shapeInSync())
        QTimer::singleShot(0, this, &FlatWin::_syncTool);
    else if (m_place)
        _drawPlace(gl);
    else
        _drawShape(gl);
    m_ants.update(gl, *relief(), drawRegion(), camera().zoom * devicePixelRatioF());
    m_ants.draw(gl, devicePixelRatioF());
    const bool free = mode() == NoMode || mode() == SculptMode;
    if (free && dabsHere(tool().type))
        drawFootprint(gl);
}

void FlatWin::_drawShape(QOpenGLFunctions_2_1 &gl)
{
    m_shapePainter.setGrid(_grid());
    const QPolygonF line = m_shape.preview();
    if (!line.isEmpty())
        m_shapePainter.drawLine(gl, line, m_shape.previewClosed(), {devicePixelRatioF(), 0});
    m_shapePainter.drawHandles(gl, m_shape.handles(), _pixelInCells());
}

void FlatWin::releaseOverlays(QOpenGLFunctions_2_1 &gl)
{
    ReliefView::releaseOverlays(gl);
    m_ants.release(gl);
}

void FlatWin::hideEvent(QHideEvent *event)
{
    // The next paint starts them again.
    m_ants.pause();
    ReliefView::hideEvent(event);
}

void FlatWin::cancelShape()
{
    m_shape.cancel();
    _shapeChanged();
}

QRect FlatWin::cropBox() const
{
    return _shapeInSync() ? m_shape.cropBox() : QRect();
}

QList<QPointF> FlatWin::cropOutline() const
{
    const QRect box = cropBox();
    if (box.isEmpty())
        return {};
    // Whole numbers from the centre: they name the same cells again after being truncated, for even
    // and odd sizes.
    const QPoint centre(relief()->width() / 2, relief()->height() / 2);
    return {box.topLeft() - centre, box.topRight() - centre, box.bottomRight() - centre,
            box.bottomLeft() - centre};
}

QSize FlatWin::_grid() const
{
    return relief() ? QSize(relief()->width(), relief()->height()) : QSize();
}

bool FlatWin::_shapeInSync() const
{
    return m_shape.tool() == tool().type && m_shape.grid() == _grid();
}

void FlatWin::_syncTool()
{
    m_shape.setTool(tool().type, _grid());
    _shapeChanged();
}

void FlatWin::_shapeChanged()
{
    const bool present = !m_shape.cropBox().isEmpty();
    if (present != m_cropPresent) {
        m_cropPresent = present;
        emit cropChanged(present);
    }
    _updateCursor(lastPos());
    update();
}

void FlatWin::_finishShape()
{
    const SelectionEdit edit = m_shape.selection(modifierFor(m_shapeKeys));
    m_shape.cancel();
    emit shapeDrawn(edit);
}

QPointF FlatWin::_gridAt(QPointF position) const
{
    const Vector model = unproject({position.x(), height() - 1 - position.y(), 0.5}, matrices());
    return {model.x + relief()->width() * 0.5, model.y + relief()->height() * 0.5};
}

double FlatWin::_pixelInCells() const
{
    return camera().zoom > 0.0 ? 1.0 / camera().zoom : 1.0;
}

void FlatWin::_updateCursor(QPointF position)
{
    if (mode() != NoMode)
        return;
    const bool own = relief() && (m_place || m_shape.usable());
    if (own && m_place)
        setCursor(m_place->cursorAt(_gridAt(position), _pixelInCells()));
    else if (own)
        setCursor(cursorForHold(m_shape.holdAt(_gridAt(position), _pixelInCells())));
    else if (m_ownCursor)
        setMode(NoMode);
    m_ownCursor = own;
}

void FlatWin::mousePressEvent(QMouseEvent *event)
{
    _syncTool();
    if (_placePress(event))
        return;
    if (event->button() != Qt::LeftButton || mode() != NoMode) {
        ReliefView::mousePressEvent(event);
    } else if (m_shape.usable() && !canEdit()) {
        showReason();
    } else if (m_shape.usable()) {
        if (!m_shape.active())
            m_shapeKeys = {};
        m_shapeKeys |= event->modifiers();
        m_shape.press(_gridAt(event->position()), _pixelInCells());
        _shapeChanged();
    } else if (actsHere(tool().type)) {
        ReliefView::mousePressEvent(event);
    } else {
        event->ignore();
    }
}

void FlatWin::mouseMoveEvent(QMouseEvent *event)
{
    if (_placeMove(event))
        return;
    ReliefView::mouseMoveEvent(event);
    _updateCursor(event->position());
    if (!relief() || !m_shape.usable() || !canEdit())
        return;
    event->accept();
    m_shape.moveTo(_gridAt(event->position()), _pixelInCells());
    _shapeChanged();
}

void FlatWin::mouseReleaseEvent(QMouseEvent *event)
{
    if (_placeRelease(event))
        return;
    if (event->button() != Qt::LeftButton || !relief() || !m_shape.usable()) {
        ReliefView::mouseReleaseEvent(event);
        return;
    }
    m_shapeKeys |= event->modifiers();
    if (canEdit() && m_shape.release(_gridAt(event->position()), _pixelInCells()))
        _finishShape();
    _shapeChanged();
}

void FlatWin::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !canEdit() || !m_shape.usable()) {
        mousePressEvent(event);
        return;
    }
    const QPointF at = _gridAt(event->position());
    m_shapeKeys |= event->modifiers();
    if (m_shape.close())
        _finishShape();
    else if (m_shape.holdAt(at, _pixelInCells()) == ShapeGesture::Inside)
        emit cropApplyRequested();
    else
        mousePressEvent(event);
    _shapeChanged();
}

bool FlatWin::_handlesKey(int key) const
{
    const bool enter = key == Qt::Key_Return || key == Qt::Key_Enter;
    if (m_place)
        return enter || key == Qt::Key_Escape;
    if (!m_shape.active())
        return false;
    return key == Qt::Key_Escape || (enter && (m_shape.close() || !cropBox().isEmpty())) ||
           (key == Qt::Key_Backspace && m_shape.shape() == ToolShape::Polygon);
}

bool FlatWin::event(QEvent *event)
{
    // While a shape is drawn its keys belong to the view, even if the window has shortcuts on them.
    if (event->type() == QEvent::ShortcutOverride &&
        _handlesKey(static_cast<QKeyEvent *>(event)->key()))
        event->accept();
    return ReliefView::event(event);
}

void FlatWin::keyPressEvent(QKeyEvent *event)
{
    if (_placeKey(event->key()))
        return;
    if (!_handlesKey(event->key())) {
        ReliefView::keyPressEvent(event);
        return;
    }
    m_shapeKeys |= event->modifiers();
    if (event->key() == Qt::Key_Escape)
        m_shape.cancel();
    else if (event->key() == Qt::Key_Backspace)
        m_shape.removeLastCorner();
    else if (m_shape.close())
        _finishShape();
    else
        emit cropApplyRequested();
    _shapeChanged();
}

} // namespace marlowen
