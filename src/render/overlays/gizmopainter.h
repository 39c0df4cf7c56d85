#pragma once

#include "render/camera/camera.h"

#include <QRect>

#include <memory>

class QOpenGLFramebufferObject;
class QImage;
class QOpenGLFunctions_2_1;

namespace marlowen {

/// Draws the orientation gizmo. Its smoothed picture is kept and made anew only when rotation or
/// size changed. Every call, the destructor included, needs the view's context.
class GizmoPainter
{
public:
    GizmoPainter();
    ~GizmoPainter();

    struct Place
    {
        QRect viewport;     ///< logical, y down, as gizmoViewport() gives it
        QSize widget;       ///< logical
        double ratio = 1.0; ///< device pixel ratio
    };

    /// Into the framebuffer that is bound; restores the viewport to the whole widget. Matrices are
    /// lost, blending is off afterwards.
    void draw(QOpenGLFunctions_2_1 &gl, const Matrix &rotation, const Place &place);

    int pictures() const { return m_pictures; }

private:
    void _update(QOpenGLFunctions_2_1 &gl, const Matrix &rotation, const Place &place);
    static void _drawLabels(QOpenGLFunctions_2_1 &gl, const QImage &labels);

    std::unique_ptr<QOpenGLFramebufferObject> m_smooth; ///< several samples a pixel
    std::unique_ptr<QOpenGLFramebufferObject> m_plain;  ///< the finished picture
    Matrix m_rotation{};
    int m_pictures = 0;
};

} // namespace marlowen
