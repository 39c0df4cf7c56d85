#include "render/engines/imagebuffer.h"

#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QOpenGLFunctions>

namespace marlowen {

namespace {

constexpr GLenum packInvert = 0x8758; ///< GL_PACK_INVERT_MESA

}

std::unique_ptr<QOpenGLFramebufferObject> imageBuffer(QSize size,
                                                      const QOpenGLFramebufferObjectFormat &format)
{
    auto buffer = std::make_unique<QOpenGLFramebufferObject>(size, format);
    if (!buffer->isValid())
        return buffer;
    // The storage anew, in the order of the data that it is said to get.
    QOpenGLFunctions &gl = *QOpenGLContext::currentContext()->functions();
    gl.glBindTexture(GL_TEXTURE_2D, buffer->texture());
    gl.glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, size.width(), size.height(), 0, GL_BGRA,
                    GL_UNSIGNED_INT_8_8_8_8_REV, nullptr);
    gl.glBindTexture(GL_TEXTURE_2D, 0);
    return buffer;
}

void readImage(QImage &image)
{
    QOpenGLContext &context = *QOpenGLContext::currentContext();
    QOpenGLFunctions &gl = *context.functions();
    const bool inverts = context.hasExtension(QByteArrayLiteral("GL_MESA_pack_invert"));
    if (inverts)
        gl.glPixelStorei(packInvert, GL_TRUE);
    gl.glPixelStorei(GL_PACK_ALIGNMENT, 4);
    gl.glReadPixels(0, 0, image.width(), image.height(), GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV,
                    image.bits());
    if (inverts)
        gl.glPixelStorei(packInvert, GL_FALSE);
    else
        image.mirror();
}

} // namespace marlowen
