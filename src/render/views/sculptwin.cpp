#include "render/views/sculptwin.h"

#include "render/engines/legacyshader.h"
#include "render/views/turntable.h"

#include <QOpenGLFunctions_2_1>

namespace marlowen {

SculptWin::SculptWin(QWidget *parent)
    : ReliefView(parent)
{
    setAccessibleName(tr("3D view"));
    enableTurning();
}

SculptWin::~SculptWin()
{
    releaseGL();
}

void SculptWin::setMaterial(const Material &material)
{
    m_look.material = material;
    invalidatePicture();
}

void SculptWin::setLightPos(int index)
{
    m_look.lightPos = index;
    invalidatePicture();
}

int SculptWin::gizmoPictures() const
{
    return turntable()->pictures();
}

std::unique_ptr<Shader> SculptWin::createShader(bool legacy)
{
    if (legacy)
        return std::make_unique<LegacyShader>();
    return std::unique_ptr<Shader>(ShaderFactory::getShader(Shader3d));
}

void SculptWin::prepareGL(QOpenGLFunctions_2_1 &gl)
{
    ReliefView::prepareGL(gl);
    constexpr GLenum wantedSamples = 4;
    gl.glHint(GL_SAMPLES, wantedSamples);
    // Drivers refuse the hint, which is none of the errors worth a line in the log.
    gl.glGetError();
    gl.glEnable(GL_MULTISAMPLE);
}

void SculptWin::fillVertices(ReliefMesh &mesh, const QRect &vertices)
{
    fillSculptVertices(mesh, *relief(), vertices);
}

void SculptWin::configureShader(Shader &shader)
{
    m_look.applyTo(shader);
}

void SculptWin::drawOverlays(QOpenGLFunctions_2_1 &gl)
{
    if (mode() == NoMode || mode() == SculptMode)
        drawFootprint(gl);
    ReliefView::drawOverlays(gl);
}

} // namespace marlowen
