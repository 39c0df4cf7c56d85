#pragma once

#include "render/camera/arcball.h"
#include "render/overlays/gizmopainter.h"

#include <QPoint>

#include <memory>

namespace marlowen {

/// Turns a model: a virtual trackball over the whole widget or, for a press on the orientation
/// gizmo, over the gizmo; and the gizmo's picture. Sizes and positions are logical pixels of the
/// widget, y down.
class Turntable
{
public:
    /// Id of the gizmo's face under the position, or -1.
    int faceAt(QPoint position, QSize widget) const;

    /// A button was pressed there.
    void press(QPoint position, QSize widget) { m_onGizmo = faceAt(position, widget) > 0; }
    /// The press was on the gizmo.
    bool onGizmo() const { return m_onGizmo; }
    /// Turns the model; the first call after a press begins the drag.
    void drag(QPoint from, QPoint to, QSize widget);
    void release();

    Quaternion rotation() const { return m_arcball.rotation(); }
    void setRotation(const Quaternion &rotation) { m_arcball.setRotation(rotation); }
    const Matrix &matrix() const { return m_arcball.matrix(); }

    /// Draws the gizmo into the framebuffer that is bound; GizmoPainter::draw() lists the state it
    /// changes. The view's context is current, here and in releaseGL().
    void draw(QOpenGLFunctions_2_1 &gl, QSize widget, double ratio);
    void releaseGL() { m_gizmo.reset(); }
    /// Times the gizmo was drawn anew.
    int pictures() const { return m_gizmo ? m_gizmo->pictures() : 0; }

private:
    QRect _viewport(QSize widget) const;
    QPointF _fromCentre(QPoint position, QSize widget) const;

    Arcball m_arcball;
    std::unique_ptr<GizmoPainter> m_gizmo;
    bool m_onGizmo = false;
};

} // namespace marlowen
