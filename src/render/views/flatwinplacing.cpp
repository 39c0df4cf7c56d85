#include "relief/grid/relief.h"
#include "render/views/flatwin.h"

#include <QKeyEvent>
#include <QMouseEvent>

namespace marlowen {

void FlatWin::setPlaceGesture(PlaceGesture *gesture)
{
    m_place = gesture;
    m_shape.cancel();
    _shapeChanged();
}

/// The action of the left button while a rectangle is being placed; false when it is not the
/// rectangle's.
bool FlatWin::_placePress(QMouseEvent *event)
{
    if (!m_place || !relief() || event->button() != Qt::LeftButton || mode() != NoMode)
        return false;
    m_place->press(_gridAt(event->position()), _pixelInCells());
    event->accept();
    return true;
}

bool FlatWin::_placeMove(QMouseEvent *event)
{
    if (!m_place || !relief() || m_place->hold() == PlaceGesture::Nothing)
        return false;
    setLastPos(event->position().toPoint());
    m_place->moveTo(_gridAt(event->position()), event->modifiers() & Qt::ShiftModifier);
    emit placeDragged();
    event->accept();
    return true;
}

bool FlatWin::_placeRelease(QMouseEvent *event)
{
    if (!m_place || event->button() != Qt::LeftButton || m_place->hold() == PlaceGesture::Nothing)
        return false;
    m_place->release();
    _updateCursor(event->position());
    event->accept();
    return true;
}

bool FlatWin::_placeKey(int key)
{
    if (!m_place)
        return false;
    if (key == Qt::Key_Escape)
        emit placeCancelled();
    else if (key == Qt::Key_Return || key == Qt::Key_Enter)
        emit placeApplied();
    else
        return false;
    return true;
}

void FlatWin::_drawPlace(QOpenGLFunctions_2_1 &gl)
{
    m_shapePainter.setGrid(_grid());
    const double pixel = _pixelInCells();
    const QPolygonF outline = m_place->outline();
    const QPolygonF handles = m_place->handles(pixel);
    const OutlinePainter::Dashes dashes{devicePixelRatioF(), 0};
    m_shapePainter.drawLine(gl, outline, true, dashes);
    m_shapePainter.drawLine(gl, QPolygonF({(outline[2] + outline[3]) / 2.0, handles.last()}), false,
                            dashes);
    m_shapePainter.drawHandles(gl, handles, pixel);
}

} // namespace marlowen
