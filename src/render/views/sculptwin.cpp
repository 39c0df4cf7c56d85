#include "render/views/sculptwin.h"

#include "render/engines/legacyshader.h"
#include "render/light/lightdirection.h"
#include "render/overlays/gizmo.h"
#include "render/overlays/gizmopainter.h"

#include <QMouseEvent>
#include <QOpenGLFunctions_2_1>

namespace marlowen {

SculptWin::SculptWin(QWidget *parent)
    : ReliefView(parent)
    , m_material(materialNamed(presetMaterials(), defaultMaterialName))
{
    setAccessibleName(tr("3D view"));
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

void SculptWin::setRotation(const Quaternion &rotation)
{
    m_arcball.setRotation(rotation);
    _applyRotation();
}

int SculptWin::gizmoPictures() const
{
    return m_gizmo ? m_gizmo->pictures() : 0;
}

std::unique_ptr<Shader> SculptWin::createShader(bool legacy)
{
    if (legacy)
        return std::make_unique<LegacyShader>();
    return std::unique_ptr<Shader>(ShaderFactory::getShader(Shader3d));
}

void SculptWin::prepareGL(QOpenGLFunctions_2_1 &gl)
{
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
    if (!m_gizmo)
        m_gizmo = std::make_unique<GizmoPainter>();
    m_gizmo->draw(gl, m_arcball.matrix(), {gizmoViewport(size()), size(), devicePixelRatioF()});
}

void SculptWin::releaseOverlays()
{
    m_gizmo.reset();
}

int SculptWin::modeForPress(const QMouseEvent &event)
{
    m_onGizmo = _gizmoFaceAt(event.position().toPoint()) > 0;
    const bool shift = event.modifiers() & Qt::ShiftModifier;
    const bool control = event.modifiers() & Qt::ControlModifier;
    if (event.button() == Qt::MiddleButton)
        return shift ? PanMode : RotateMode;
    if (event.button() == Qt::RightButton)
        return control ? RotateMode : NoMode;
    if (event.button() == Qt::LeftButton && m_onGizmo)
        return RotateMode;
    return ReliefView::modeForPress(event);
}

void SculptWin::dragCamera(QPoint from, QPoint to)
{
    if (mode() != RotateMode && mode() != RotatingMode) {
        ReliefView::dragCamera(from, to);
        return;
    }
    const QSizeF viewport = _turnViewport().size();
    if (mode() == RotateMode) {
        m_arcball.beginDrag(_fromCentre(from), viewport);
        setMode(RotatingMode);
    }
    m_arcball.dragTo(_fromCentre(to), viewport);
    _applyRotation();
}

void SculptWin::endCameraDrag(int mode)
{
    if (mode == RotatingMode)
        m_arcball.endDrag();
    m_onGizmo = false;
}

void SculptWin::mouseDoubleClickEvent(QMouseEvent *event)
{
    const int face = _gizmoFaceAt(event->position().toPoint());
    if (face > 0)
        setRotation(presetOrientation(face));
    else
        ReliefView::mouseDoubleClickEvent(event);
}

int SculptWin::_gizmoFaceAt(QPoint position) const
{
    const QRect viewport = gizmoViewport(size());
    if (!viewport.contains(position))
        return -1;
    const QPointF window(position.x(), height() - 1 - position.y());
    return gizmoFaceAt(window, gizmoMatrices(m_arcball.matrix(), viewport, height()));
}

void SculptWin::_applyRotation()
{
    Camera turned = camera();
    turned.rotation = m_arcball.matrix();
    setCamera(turned);
}

QRect SculptWin::_turnViewport() const
{
    return m_onGizmo ? gizmoViewport(size()) : rect();
}

QPointF SculptWin::_fromCentre(QPoint position) const
{
    const QPointF offset = QPointF(position) - QRectF(_turnViewport()).center();
    return {offset.x(), -offset.y()};
}

} // namespace marlowen
