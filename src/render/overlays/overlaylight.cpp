#include "render/overlays/overlaylight.h"

#include <QOpenGLFunctions_2_1>

namespace marlowen {

OverlayLight::OverlayLight(QOpenGLFunctions_2_1 &gl)
    : m_gl(gl)
{
    constexpr float ambient[] = {0.5F, 0.5F, 0.5F, 1.0F};
    constexpr float diffuse[] = {1.0F, 1.0F, 1.0F, 1.0F};
    m_gl.glLightfv(GL_LIGHT1, GL_AMBIENT, ambient);
    m_gl.glLightfv(GL_LIGHT1, GL_DIFFUSE, diffuse);
    m_gl.glEnable(GL_LIGHT1);
    m_gl.glEnable(GL_LIGHTING);
}

OverlayLight::~OverlayLight()
{
    m_gl.glDisable(GL_LIGHTING);
    m_gl.glDisable(GL_LIGHT1);
}

} // namespace marlowen
