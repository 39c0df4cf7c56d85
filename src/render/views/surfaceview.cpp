#include "render/views/surfaceview.h"

#include "base/sessionlog.h"
#include "render/engines/keptpicture.h"
#include "render/engines/shader.h"
#include "render/overlays/cursors.h"
#include "render/views/turntable.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions_2_1>
#include <QOpenGLPaintDevice>
#include <QOpenGLVersionFunctionsFactory>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace marlowen {

namespace {

constexpr int laterInterval = 90; ///< milliseconds

} // namespace

SurfaceView::SurfaceView(QWidget *parent)
    : GlCanvas(parent)
{
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    QFont viewFont = font();
    viewFont.setPointSize(16);
    viewFont.setWeight(QFont::DemiBold);
    viewFont.setStyleStrategy(QFont::PreferAntialias);
    setFont(viewFont);
    connect(&m_statusTimer, &QTimer::timeout, this, &SurfaceView::statusTimeout);
    m_statusTimer.start(100);
    m_laterTimer.setSingleShot(true);
    m_laterTimer.setInterval(laterInterval);
    connect(&m_laterTimer, &QTimer::timeout, this, [this] { update(); });
    connect(&m_pace, &PictureQuality::due, this, [this] { update(); });
    connect(this, &GlCanvas::frameSwapped, &m_pace, &PictureQuality::shown);
}

SurfaceView::~SurfaceView()
{
    // The context goes after this object has stopped being a SurfaceView.
    if (context())
        context()->disconnect(this);
}

void SurfaceView::setBackdrop(const QColor &color)
{
    m_backdrop = color;
    invalidatePicture();
}

void SurfaceView::setMode(int mode)
{
    m_mode = mode;
    setCursor(cursorForMode(mode));
}

void SurfaceView::setCursorScale(int percent)
{
    marlowen::setCursorScale(percent);
    setCursor(cursorForMode(m_mode));
}

/// Higher and lower than the surface by so much that the matrices stay while its heights change a
/// little.
SceneBox SurfaceView::_roomyBox() const
{
    SceneBox box = sceneBox();
    const double step = std::max(box.width, box.height) / 16.0;
    if (step > 0.0) {
        box.zMin = std::floor(box.zMin / step) * step;
        box.zMax = std::ceil(box.zMax / step) * step;
    }
    return box;
}

ViewMatrices SurfaceView::matrices() const
{
    return viewMatrices(m_camera, _roomyBox(), size());
}

void SurfaceView::setCamera(const Camera &camera)
{
    m_camera = camera;
    m_statusPending = true;
    update();
    emit cameraChanged();
}

void SurfaceView::fit()
{
    m_fitPending = !isValid() || size().isEmpty();
    if (!m_fitPending)
        _fitCamera();
}

void SurfaceView::fitAgain()
{
    if (m_fitPending || m_fitted)
        fit();
}

void SurfaceView::zoomAll()
{
    if (!isValid() || size().isEmpty())
        return fit();
    if (!_fitCamera() && rotation() != Quaternion()) {
        setRotation({});
        _fitCamera();
    }
}

// False when the camera shows the whole surface already.
bool SurfaceView::_fitCamera()
{
    const SceneBox box = wholeBox();
    const Camera before = m_camera;
    m_fitted = !box.isEmpty();
    if (m_fitted)
        setCamera(zoomedToAll(m_camera, box, size()));
    return m_camera != before;
}

void SurfaceView::invalidatePicture()
{
    m_pictureStale = true;
    update();
}

void SurfaceView::initializeGL()
{
    connect(context(), &QOpenGLContext::aboutToBeDestroyed, this, &SurfaceView::releaseGL,
            Qt::ConnectionType(Qt::DirectConnection | Qt::UniqueConnection));
    m_gl = QOpenGLVersionFunctionsFactory::get<QOpenGLFunctions_2_1>(context());
    if (!m_gl) {
        m_message = tr("This view needs OpenGL 2.1, which the graphics driver does not offer.");
        logCritical() << "The context has no OpenGL 2.1 functions\n";
        return;
    }
    _makeShader();
    if (!m_shader)
        return;
    m_picture = std::make_unique<KeptPicture>(readsBack());
    m_pictureStale = m_depthStale = true;
    m_quality = PictureQuality::Nothing;
    m_gl->glShadeModel(GL_SMOOTH);
    m_gl->glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
    m_gl->glDepthFunc(GL_LEQUAL);
    m_gl->glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST);
    m_gl->glColor4f(1.0F, 1.0F, 1.0F, 1.0F);
    constexpr GLenum unused[] = {GL_TEXTURE_2D, GL_LIGHTING, GL_LINE_STIPPLE, GL_DEPTH_TEST};
    for (const GLenum feature : unused)
        m_gl->glDisable(feature);
    m_gl->glEnable(GL_LINE_SMOOTH);
    m_gl->glLineWidth(1.0F);
    _logErrors();
    m_pace.setSlow(
        isSoftwareRenderer(reinterpret_cast<const char *>(m_gl->glGetString(GL_RENDERER))));
    prepareGL(*m_gl);
}

void SurfaceView::_makeShader()
{
    m_message.clear();
    for (const bool legacy : {false, true}) {
        try {
            m_shader = createShader(legacy);
            return;
        } catch (const char *reason) {
            logWarning() << (legacy ? "Legacy" : "Chosen") << " drawing engine failed: " << reason
                         << "\n";
        }
    }
    m_message = tr("The relief cannot be drawn: the graphics driver refuses the drawing programs.");
}

void SurfaceView::renewEngine()
{
    if (!m_gl)
        return;
    makeCurrent();
    m_shader.reset();
    _makeShader();
    if (m_shader)
        prepareGL(*m_gl);
    doneCurrent();
    invalidatePicture();
}

void SurfaceView::releaseGL()
{
    if (!m_gl)
        return;
    makeCurrent();
    releaseOverlays(*m_gl);
    m_shader.reset();
    m_picture.reset();
    m_gl = nullptr;
    doneCurrent();
}

void SurfaceView::resizeGL(int, int)
{
    m_pictureStale = true;
    fitAgain();
}

void SurfaceView::paintGL()
{
    if (!m_shader) {
        _paintMessage();
        return;
    }
    _updatePicture();
    if (m_picture->isValid())
        _paintOverPicture();
    _logErrors();
}

void SurfaceView::_paintOverPicture()
{
    const QSize physical = pixels();
    m_gl->glViewport(0, 0, physical.width(), physical.height());
    m_gl->glDisable(GL_BLEND);
    m_gl->glDisable(GL_DEPTH_TEST);
    m_picture->draw(target());
    // The picture is opaque; overlays leave it so.
    m_gl->glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_FALSE);
    m_gl->glDepthMask(GL_FALSE);
    m_gl->glMatrixMode(GL_PROJECTION);
    m_gl->glLoadMatrixd(m_drawn.projection.data());
    m_gl->glMatrixMode(GL_MODELVIEW);
    m_gl->glLoadMatrixd(m_drawn.modelview.data());
    drawOverlays(*m_gl);
    if (m_focusShown && hasFocus())
        _paintFocus();
    m_gl->glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    m_gl->glDepthMask(GL_TRUE);
}

/// A frame around the view.
void SurfaceView::_paintFocus()
{
    const QColor color = palette().color(QPalette::Active, QPalette::Highlight);
    const QSize physical = pixels();
    m_gl->glMatrixMode(GL_PROJECTION);
    m_gl->glLoadIdentity();
    m_gl->glOrtho(0, physical.width(), 0, physical.height(), -1, 1);
    m_gl->glMatrixMode(GL_MODELVIEW);
    m_gl->glLoadIdentity();
    m_gl->glColor3f(color.redF(), color.greenF(), color.blueF());
    const double thick = 2.0 * devicePixelRatioF();
    const double w = physical.width();
    const double h = physical.height();
    m_gl->glRectd(0, 0, w, thick);
    m_gl->glRectd(0, h - thick, w, h);
    m_gl->glRectd(0, 0, thick, h);
    m_gl->glRectd(w - thick, 0, w, h);
}

void SurfaceView::drawOverlays(QOpenGLFunctions_2_1 &gl)
{
    if (m_turntable)
        m_turntable->draw(gl, size(), devicePixelRatioF());
}

void SurfaceView::releaseOverlays(QOpenGLFunctions_2_1 &)
{
    if (m_turntable)
        m_turntable->releaseGL();
}

void SurfaceView::_paintMessage()
{
    QOpenGLPaintDevice device(pixels());
    device.setDevicePixelRatio(devicePixelRatioF());
    QPainter painter(&device);
    painter.setFont(font());
    painter.fillRect(rect(), m_backdrop);
    painter.setPen(m_backdrop.lightness() < 128 ? Qt::white : Qt::black);
    painter.drawText(rect().adjusted(16, 16, -16, -16), Qt::AlignCenter | Qt::TextWordWrap,
                     m_message);
}

void SurfaceView::_logErrors()
{
    // A lost context reports its error for ever.
    constexpr int mostErrors = 16;
    for (int i = 0; i < mostErrors; ++i) {
        const GLenum error = m_gl->glGetError();
        if (error == GL_NO_ERROR)
            return;
        logWarning() << "OpenGL error " << error << "\n";
    }
}

} // namespace marlowen
