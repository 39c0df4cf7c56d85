#include "render/views/turntable.h"

#include "render/overlays/gizmo.h"

namespace marlowen {

int Turntable::faceAt(QPoint position, QSize widget) const
{
    const QRect viewport = gizmoViewport(widget);
    if (!viewport.contains(position))
        return -1;
    const QPointF window(position.x(), widget.height() - 1 - position.y());
    return gizmoFaceAt(window, gizmoMatrices(m_arcball.matrix(), viewport, widget.height()));
}

void Turntable::drag(QPoint from, QPoint to, QSize widget)
{
    const QSizeF viewport = _viewport(widget).size();
    if (!m_arcball.dragging())
        m_arcball.beginDrag(_fromCentre(from, widget), viewport);
    m_arcball.dragTo(_fromCentre(to, widget), viewport);
}

void Turntable::release()
{
    if (m_arcball.dragging())
        m_arcball.endDrag();
    m_onGizmo = false;
}

void Turntable::draw(QOpenGLFunctions_2_1 &gl, QSize widget, double ratio)
{
    if (!m_gizmo)
        m_gizmo = std::make_unique<GizmoPainter>();
    m_gizmo->draw(gl, m_arcball.matrix(), {gizmoViewport(widget), widget, ratio});
}

QRect Turntable::_viewport(QSize widget) const
{
    return m_onGizmo ? gizmoViewport(widget) : QRect(QPoint(), widget);
}

QPointF Turntable::_fromCentre(QPoint position, QSize widget) const
{
    const QPointF offset = QPointF(position) - QRectF(_viewport(widget)).center();
    return {offset.x(), -offset.y()};
}

} // namespace marlowen
