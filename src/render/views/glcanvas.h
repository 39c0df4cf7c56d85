#pragma once

#include <QImage>
#include <QWidget>

#include <memory>

class QOffscreenSurface;
class QOpenGLContext;
class QOpenGLFramebufferObject;

namespace marlowen {

/// Whether a driver of this name (GL_RENDERER) draws with the processor.
bool isSoftwareRenderer(const QByteArray &name);

/// A widget whose picture is drawn with OpenGL, with the functions of QOpenGLWidget.
///
/// With graphics hardware it holds a QOpenGLWidget, whose window is composed by the hardware. A
/// driver that draws with the processor takes some 30 ms to compose a window of 1200 x 800 pixels;
/// there the picture is drawn into a framebuffer object, read back, and painted like any other
/// widget's, in a tenth of that time.
class GlCanvas : public QWidget
{
    Q_OBJECT

public:
    explicit GlCanvas(QWidget *parent = nullptr);
    ~GlCanvas() override;

    /// How canvases made from now on show their pictures, instead of by what the driver is.
    enum class Way { ByDriver, Composed, ReadBack };
    static void setWay(Way way);

    /// There is a context, and initializeGL() was called.
    bool isValid() const;
    QOpenGLContext *context() const;
    /// Makes the context current and binds the framebuffer of the picture. Does nothing when there
    /// is no context or it cannot be made current.
    void makeCurrent();
    void doneCurrent();
    /// Draws the picture anew; shown or not.
    QImage grabFramebuffer();

public slots:
    /// Draws the picture anew, soon. (QWidget::update() would only show it again.)
    void update();

signals:
    /// A new picture is on its way to the screen.
    void frameSwapped();

protected:
    // The context is current.
    virtual void initializeGL() = 0;
    /// Logical pixels.
    virtual void resizeGL(int width, int height) = 0;
    /// The framebuffer of the picture is bound.
    virtual void paintGL() = 0;
    /// The size of the picture in pixels of the screen.
    QSize pixels() const;
    size_t pixelCount() const;
    /// Pictures are read back: known before there is a context.
    bool readsBack() const { return m_composed == nullptr; }
    /// The framebuffer of the picture; null in initializeGL(), and where it is the default one of
    /// the context.
    QOpenGLFramebufferObject *target() const { return m_target.get(); }

    bool event(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    class ComposedWidget;

    bool _start();
    bool _prepareTarget();
    void _draw();

    ComposedWidget *m_composed = nullptr; ///< null while pictures are read back
    std::unique_ptr<QOffscreenSurface> m_surface;
    std::unique_ptr<QOpenGLContext> m_context;
    std::unique_ptr<QOpenGLFramebufferObject> m_target;
    QImage m_picture;
    bool m_failed = false; ///< there is no context
    bool m_stale = true;
};

} // namespace marlowen
