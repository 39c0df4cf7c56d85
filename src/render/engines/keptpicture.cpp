#include "render/engines/keptpicture.h"

#include "render/camera/depthimage.h"
#include "render/engines/imagebuffer.h"

#include <QOpenGLFramebufferObject>
#include <QOpenGLFunctions_2_1>

namespace marlowen {

namespace {

QOpenGLFramebufferObjectFormat formatOf(int samples)
{
    QOpenGLFramebufferObjectFormat format;
    format.setAttachment(QOpenGLFramebufferObject::CombinedDepthStencil);
    // The format of the widget's own buffer, so that copying into that is a plain copy.
    format.setInternalTextureFormat(GL_RGBA8);
    format.setSamples(samples);
    return format;
}

} // namespace

KeptPicture::KeptPicture(bool asImage)
    : m_asImage(asImage)
{
}

KeptPicture::~KeptPicture() = default;

QSize KeptPicture::size() const
{
    return m_buffer ? m_buffer->size() : QSize();
}

bool KeptPicture::resize(QSize size)
{
    if (size.isEmpty()) {
        m_buffer.reset();
        m_samples.reset();
        return false;
    }
    if (m_buffer && m_buffer->size() == size)
        return false;
    m_samples.reset();
    const BoundFramebuffer before; // making a framebuffer leaves another one bound
    m_buffer = m_asImage ? imageBuffer(size, formatOf(0))
                         : std::make_unique<QOpenGLFramebufferObject>(size, formatOf(0));
    before.bindAgain();
    if (!m_buffer->isValid())
        m_buffer.reset();
    return true;
}

void KeptPicture::begin(QOpenGLFunctions_2_1 &gl, const Kind &kind)
{
    m_before.emplace(); // before another is made
    if (kind.smooth && !m_samples)
        m_samples = std::make_unique<QOpenGLFramebufferObject>(m_buffer->size(), formatOf(4));
    m_target = kind.smooth && m_samples->isValid() ? m_samples.get() : m_buffer.get();
    m_part = kind.part;
    m_target->bind();
    gl.glViewport(0, 0, m_buffer->width(), m_buffer->height());
    gl.glEnable(GL_SCISSOR_TEST);
    gl.glScissor(m_part.x(), m_part.y(), m_part.width(), m_part.height());
    gl.glDepthMask(GL_TRUE);
    gl.glClearColor(kind.backdrop.redF(), kind.backdrop.greenF(), kind.backdrop.blueF(), 1.0F);
    gl.glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    // The half-transparent floor is blended with the backdrop here, once: the picture is opaque.
    gl.glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_FALSE);
}

void KeptPicture::end(QOpenGLFunctions_2_1 &gl)
{
    gl.glDisable(GL_SCISSOR_TEST);
    gl.glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    if (m_target != m_buffer.get())
        QOpenGLFramebufferObject::blitFramebuffer(m_buffer.get(), m_part, m_samples.get(), m_part,
                                                  GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT,
                                                  GL_NEAREST);
    m_before->bindAgain();
}

void KeptPicture::draw(QOpenGLFramebufferObject *target) const
{
    QOpenGLFramebufferObject::blitFramebuffer(target, m_buffer.get(), GL_COLOR_BUFFER_BIT,
                                              GL_NEAREST);
    if (target)
        target->bind();
}

void KeptPicture::readDepth(QOpenGLFunctions_2_1 &gl, DepthImage &depth) const
{
    if (depth.size() != m_buffer->size())
        depth.resize(m_buffer->size());
    const BoundFramebuffer before;
    m_buffer->bind();
    gl.glPixelStorei(GL_PACK_ALIGNMENT, 4);
    gl.glReadPixels(0, 0, m_buffer->width(), m_buffer->height(), GL_DEPTH_COMPONENT, GL_FLOAT,
                    depth.data());
    before.bindAgain();
}

void drawTextureOverViewport(QOpenGLFunctions_2_1 &gl, uint32_t texture)
{
    gl.glMatrixMode(GL_PROJECTION);
    gl.glLoadIdentity();
    gl.glMatrixMode(GL_MODELVIEW);
    gl.glLoadIdentity();
    gl.glEnable(GL_TEXTURE_2D);
    gl.glBindTexture(GL_TEXTURE_2D, texture);
    gl.glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    gl.glBegin(GL_TRIANGLE_STRIP);
    for (int corner = 0; corner < 4; ++corner) {
        const int x = corner & 1;
        const int y = corner >> 1;
        gl.glTexCoord2i(x, y);
        gl.glVertex2i(2 * x - 1, 2 * y - 1);
    }
    gl.glEnd();
    gl.glBindTexture(GL_TEXTURE_2D, 0);
    gl.glDisable(GL_TEXTURE_2D);
}

} // namespace marlowen
