#include "render/overlays/gizmopainter.h"

#include "render/camera/depthimage.h"
#include "render/engines/boundframebuffer.h"
#include "render/engines/keptpicture.h"
#include "render/overlays/gizmo.h"
#include "render/overlays/gizmolabels.h"
#include "render/overlays/overlaylight.h"

#include <QOpenGLFramebufferObject>
#include <QOpenGLFunctions_2_1>
#include <QOpenGLTexture>

#include <GL/glu.h>

namespace marlowen {

namespace {

constexpr int slices = 16;
constexpr double axisStart = gizmoAxisStart;
constexpr double axisLength = gizmoAxisEnd - gizmoAxisStart;

struct Axis
{
    double turnX; ///< degrees about x and y that turn z into the axis
    double turnY;
    float color[3];
};

constexpr Axis axes[] = {
    {0, 90, {0.85F, 0.2F, 0.2F}}, {-90, 0, {0.2F, 0.7F, 0.25F}}, {0, 0, {0.25F, 0.45F, 0.95F}}};

void drawCube(QOpenGLFunctions_2_1 &gl)
{
    constexpr float both[] = {0.25F, 0.3F, 1.0F, 0.15F};
    constexpr float diffuse[] = {0.5F, 0.53F, 0.58F, 0.35F};
    const OverlayLight light(gl);
    gl.glDepthMask(GL_FALSE);
    gl.glMaterialfv(GL_FRONT, GL_AMBIENT_AND_DIFFUSE, both);
    gl.glMaterialfv(GL_FRONT, GL_DIFFUSE, diffuse);
    for (const GizmoFace &face : gizmoFaces()) {
        gl.glBegin(GL_POLYGON);
        gl.glNormal3d(face.normal.x, face.normal.y, face.normal.z);
        for (const Vector &corner : face.corners)
            gl.glVertex3d(corner.x, corner.y, corner.z);
        gl.glEnd();
    }
    gl.glDepthMask(GL_TRUE);
}

void drawAxis(QOpenGLFunctions_2_1 &gl, GLUquadric *quadric, const Axis &axis)
{
    gl.glColor3fv(axis.color);
    gl.glPushMatrix();
    gl.glRotated(axis.turnX, 1, 0, 0);
    gl.glRotated(axis.turnY, 0, 1, 0);
    gluCylinder(quadric, 1.0, 1.0, axisLength, slices, 1);
    gl.glTranslated(0, 0, axisLength);
    gluCylinder(quadric, 3.0, 0.0, 6.0, slices, 1);
    gluDisk(quadric, 0.0, 3.0, slices, 1);
    gl.glPopMatrix();
}

void drawAxes(QOpenGLFunctions_2_1 &gl)
{
    const std::unique_ptr<GLUquadric, decltype(&gluDeleteQuadric)> quadric(gluNewQuadric(),
                                                                           gluDeleteQuadric);
    if (!quadric)
        return;
    gluQuadricDrawStyle(quadric.get(), GLU_FILL);
    gluQuadricNormals(quadric.get(), GLU_SMOOTH);
    gluQuadricOrientation(quadric.get(), GLU_OUTSIDE);
    gl.glPushMatrix();
    gl.glTranslated(axisStart, axisStart, axisStart);
    gl.glColor3f(0.95F, 0.85F, 0.2F);
    gluSphere(quadric.get(), 4.0, slices, slices);
    for (const Axis &axis : axes)
        drawAxis(gl, quadric.get(), axis);
    gl.glPopMatrix();
}

} // namespace

GizmoPainter::GizmoPainter() = default;
GizmoPainter::~GizmoPainter() = default;

void GizmoPainter::draw(QOpenGLFunctions_2_1 &gl, const Matrix &rotation, const Place &place)
{
    const QSize size = physicalSize(place.viewport.size(), place.ratio);
    if (size.isEmpty())
        return;
    if (!m_plain || m_plain->size() != size || m_rotation != rotation)
        _update(gl, rotation, place);
    const QSize whole = physicalSize(place.widget, place.ratio);
    gl.glViewport(0, whole.height() - size.height(), size.width(), size.height());
    gl.glEnable(GL_BLEND);
    gl.glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    drawTextureOverViewport(gl, m_plain->texture());
    gl.glDisable(GL_BLEND);
    gl.glViewport(0, 0, whole.width(), whole.height());
}

void GizmoPainter::_update(QOpenGLFunctions_2_1 &gl, const Matrix &rotation, const Place &place)
{
    const QSize size = physicalSize(place.viewport.size(), place.ratio);
    // Making a framebuffer leaves another one bound.
    const BoundFramebuffer before;
    if (!m_plain || m_plain->size() != size) {
        QOpenGLFramebufferObjectFormat format;
        format.setAttachment(QOpenGLFramebufferObject::CombinedDepthStencil);
        m_plain = std::make_unique<QOpenGLFramebufferObject>(size, format);
        format.setSamples(4);
        m_smooth = std::make_unique<QOpenGLFramebufferObject>(size, format);
    }
    m_rotation = rotation;
    ++m_pictures;
    m_smooth->bind();
    gl.glViewport(0, 0, size.width(), size.height());
    gl.glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    gl.glDepthMask(GL_TRUE);
    gl.glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
    gl.glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    const ViewMatrices view = gizmoMatrices(rotation, place.viewport, place.widget.height());
    gl.glMatrixMode(GL_PROJECTION);
    gl.glLoadMatrixd(view.projection.data());
    gl.glMatrixMode(GL_MODELVIEW);
    gl.glLoadMatrixd(view.modelview.data());
    gl.glEnable(GL_DEPTH_TEST);
    // Leaves colours multiplied by their alpha, as the picture is blended later.
    gl.glEnable(GL_BLEND);
    gl.glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    drawCube(gl);
    drawAxes(gl);
    gl.glDisable(GL_DEPTH_TEST);
    _drawLabels(gl, gizmoLabels(view, place.ratio));
    gl.glDisable(GL_BLEND);
    gl.glColor4f(1.0F, 1.0F, 1.0F, 1.0F);
    QOpenGLFramebufferObject::blitFramebuffer(m_plain.get(), m_smooth.get());
    before.bindAgain();
}

void GizmoPainter::_drawLabels(QOpenGLFunctions_2_1 &gl, const QImage &labels)
{
    QOpenGLTexture texture(labels.mirrored(), QOpenGLTexture::DontGenerateMipMaps);
    texture.setMinMagFilters(QOpenGLTexture::Nearest, QOpenGLTexture::Nearest);
    drawTextureOverViewport(gl, texture.textureId());
}

} // namespace marlowen
