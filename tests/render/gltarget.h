#pragma once

#include <QImage>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QOpenGLFunctions_2_1>
#include <QOpenGLVersionFunctionsFactory>

#include <memory>

using namespace marlowen;

/// A current compatibility context drawing into its own framebuffer object, for tests that
/// look at pixels. One unit of model space is one pixel, the origin in the middle, y up.
class GlTarget
{
public:
    explicit GlTarget(QSize size)
        : m_size(size)
    {
        QSurfaceFormat format;
        // No version: asking for 3.3 makes the driver hand out a core profile, without the matrix
        // stacks that the shaders read.
        format.setProfile(QSurfaceFormat::CompatibilityProfile);
        m_context.setFormat(format);
        m_surface.setFormat(format);
        m_surface.create();
        if (!m_context.create() || !m_context.makeCurrent(&m_surface))
            qFatal("no OpenGL context for the test");
        m_gl = QOpenGLVersionFunctionsFactory::get<QOpenGLFunctions_2_1>(&m_context);
        m_buffer = std::make_unique<QOpenGLFramebufferObject>(
            size, QOpenGLFramebufferObject::CombinedDepthStencil);
        m_buffer->bind();
    }
    ~GlTarget()
    {
        m_buffer.reset();
        m_context.doneCurrent();
    }

    QOpenGLFunctions_2_1 &gl() { return *m_gl; }

    /// Clears to the colour and sets matrices, viewport and depth test.
    void begin(QColor background = Qt::black)
    {
        m_gl->glViewport(0, 0, m_size.width(), m_size.height());
        m_gl->glClearColor(background.redF(), background.greenF(), background.blueF(), 1.0F);
        m_gl->glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        m_gl->glEnable(GL_DEPTH_TEST);
        m_gl->glMatrixMode(GL_PROJECTION);
        m_gl->glLoadIdentity();
        m_gl->glOrtho(-m_size.width() / 2.0, m_size.width() / 2.0, -m_size.height() / 2.0,
                      m_size.height() / 2.0, -1000.0, 1000.0);
        m_gl->glMatrixMode(GL_MODELVIEW);
        m_gl->glLoadIdentity();
    }

    /// The picture, without its alpha; row 0 is the top.
    QImage image() const
    {
        QImage image(m_size, QImage::Format_RGB32);
        m_gl->glReadPixels(0, 0, m_size.width(), m_size.height(), GL_BGRA, GL_UNSIGNED_BYTE,
                           image.bits());
        return image.mirrored()
            .convertToFormat(QImage::Format_RGB888)
            .convertToFormat(QImage::Format_RGB32);
    }

private:
    QSize m_size;
    QOffscreenSurface m_surface;
    QOpenGLContext m_context;
    std::unique_ptr<QOpenGLFramebufferObject> m_buffer;
    QOpenGLFunctions_2_1 *m_gl = nullptr;
};
