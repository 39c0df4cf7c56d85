#include "render/views/glcanvas.h"

#include "base/sessionlog.h"
#include "render/camera/depthimage.h"
#include "render/engines/imagebuffer.h"

#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QOpenGLFunctions>
#include <QOpenGLWidget>
#include <QPaintEvent>
#include <QPainter>

#include <algorithm>

namespace marlowen {

namespace {

GlCanvas::Way chosenWay = GlCanvas::Way::ByDriver;

/// GL_RENDERER of a context of the default format; empty when there is none.
QByteArray rendererName()
{
    QOpenGLContext context;
    QOffscreenSurface surface;
    if (!context.create())
        return {};
    surface.setFormat(context.format());
    surface.create();
    if (!context.makeCurrent(&surface))
        return {};
    return reinterpret_cast<const char *>(context.functions()->glGetString(GL_RENDERER));
}

bool pictureIsReadBack()
{
    if (chosenWay != GlCanvas::Way::ByDriver)
        return chosenWay == GlCanvas::Way::ReadBack;
    static const bool software = isSoftwareRenderer(rendererName());
    return software;
}

} // namespace

bool isSoftwareRenderer(const QByteArray &name)
{
    constexpr const char *software[] = {"llvmpipe",    "softpipe", "swrast",
                                        "SwiftShader", "Software", "GDI Generic"};
    return std::any_of(std::begin(software), std::end(software),
                       [&name](const char *word) { return name.contains(word); });
}

/// Fills the canvas and leaves pointer and keys to it.
class GlCanvas::ComposedWidget : public QOpenGLWidget
{
public:
    explicit ComposedWidget(GlCanvas &canvas)
        : QOpenGLWidget(&canvas)
        , m_canvas(canvas)
    {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setFocusPolicy(Qt::NoFocus);
        connect(this, &QOpenGLWidget::frameSwapped, &canvas, &GlCanvas::frameSwapped);
    }

protected:
    void initializeGL() override { m_canvas.initializeGL(); }
    void resizeGL(int width, int height) override { m_canvas.resizeGL(width, height); }
    void paintGL() override { m_canvas.paintGL(); }

private:
    GlCanvas &m_canvas;
};

GlCanvas::GlCanvas(QWidget *parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    if (!pictureIsReadBack())
        m_composed = new ComposedWidget(*this);
}

GlCanvas::~GlCanvas()
{
    if (!m_target)
        return;
    m_context->makeCurrent(m_surface.get());
    m_target.reset();
}

void GlCanvas::setWay(Way way)
{
    chosenWay = way;
}

bool GlCanvas::isValid() const
{
    return m_composed ? m_composed->isValid() : m_context != nullptr;
}

QOpenGLContext *GlCanvas::context() const
{
    return m_composed ? m_composed->context() : m_context.get();
}

void GlCanvas::makeCurrent()
{
    if (m_composed)
        m_composed->makeCurrent();
    else if (m_context && m_context->makeCurrent(m_surface.get()) && m_target)
        m_target->bind();
}

void GlCanvas::doneCurrent()
{
    if (m_composed)
        m_composed->doneCurrent();
    else if (m_context)
        m_context->doneCurrent();
}

QImage GlCanvas::grabFramebuffer()
{
    if (m_composed)
        return m_composed->grabFramebuffer();
    _draw();
    return m_picture;
}

void GlCanvas::update()
{
    m_stale = true;
    if (m_composed)
        m_composed->update();
    else
        QWidget::update();
}

QSize GlCanvas::pixels() const
{
    return physicalSize(size(), devicePixelRatioF());
}

size_t GlCanvas::pixelCount() const
{
    const QSize size = pixels();
    return static_cast<size_t>(size.width()) * static_cast<size_t>(size.height());
}

bool GlCanvas::event(QEvent *event)
{
    const bool handled = QWidget::event(event);
    constexpr QEvent::Type redrawn[] = {QEvent::FocusIn, QEvent::FocusOut, QEvent::PaletteChange,
                                        QEvent::StyleChange, QEvent::EnabledChange};
    if (std::find(std::begin(redrawn), std::end(redrawn), event->type()) != std::end(redrawn))
        update();
    return handled;
}

void GlCanvas::resizeEvent(QResizeEvent *)
{
    if (m_composed) {
        m_composed->resize(size());
    } else if (!size().isEmpty() && _start()) {
        _prepareTarget();
        doneCurrent();
    }
}

/// Makes the context, once; false when there is none.
bool GlCanvas::_start()
{
    if (m_context || m_failed)
        return !m_failed;
    auto context = std::make_unique<QOpenGLContext>();
    m_surface = std::make_unique<QOffscreenSurface>();
    m_failed = !context->create();
    if (!m_failed) {
        m_surface->setFormat(context->format());
        m_surface->create();
        m_failed = !context->makeCurrent(m_surface.get());
    }
    if (m_failed) {
        logCritical() << "A view got no OpenGL context\n";
        return false;
    }
    m_context = std::move(context);
    initializeGL();
    return true;
}

/// Makes the context current and gives the framebuffer the size of the widget; false when the
/// driver lost the context.
bool GlCanvas::_prepareTarget()
{
    makeCurrent();
    if (QOpenGLContext::currentContext() != m_context.get())
        return false;
    const QSize size = pixels();
    if (!m_target || m_target->size() != size) {
        m_target = imageBuffer(size, {});
        m_picture = QImage(size, QImage::Format_RGB32);
        m_picture.setDevicePixelRatio(devicePixelRatioF());
        m_target->bind();
        resizeGL(width(), height());
    }
    m_stale = true;
    return true;
}

void GlCanvas::_draw()
{
    if (size().isEmpty() || !_start() || !_prepareTarget())
        return;
    m_stale = false; // paintGL() may ask for the next picture
    paintGL();
    m_target->bind();
    readImage(m_picture);
    doneCurrent();
}

void GlCanvas::paintEvent(QPaintEvent *event)
{
    if (m_composed)
        return;
    if (m_stale || event->rect().contains(rect())) {
        _draw();
        // After the window was given to the display.
        QMetaObject::invokeMethod(this, &GlCanvas::frameSwapped, Qt::QueuedConnection);
    }
    QPainter painter(this);
    if (m_picture.isNull())
        painter.fillRect(rect(), Qt::black);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(QPoint(), m_picture);
}

} // namespace marlowen
