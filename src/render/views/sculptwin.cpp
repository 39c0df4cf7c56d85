#include "render/views/sculptwin.h"

#include "render/engines/legacyshader.h"
#include "render/light/lightdirection.h"
#include "render/views/turntable.h"

#include <QOpenGLFunctions_2_1>

namespace marlowen {

SculptWin::SculptWin(QWidget *parent)
    : ReliefView(parent)
    , m_material(materialNamed(presetMaterials(), defaultMaterialName))
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
    m_material = material;
    invalidatePicture();
}

void SculptWin::setLightPos(int index)
{
    m_lightPos = index;
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
    shader.ambient = rgbaOf(m_material.ambient);
    shader.diffuse = rgbaOf(m_material.diffuse);
    shader.specular = rgbaOf(m_material.specular);
    shader.shininess = static_cast<float>(m_material.shinyness);
    shader.lightPosition = lightDirection(m_lightPos);
}

void SculptWin::drawOverlays(QOpenGLFunctions_2_1 &gl)
{
    if (mode() == NoMode || mode() == SculptMode)
        drawFootprint(gl);
    ReliefView::drawOverlays(gl);
}

} // namespace marlowen
