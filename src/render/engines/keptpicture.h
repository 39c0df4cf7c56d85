#pragma once

#include "render/engines/boundframebuffer.h"

#include <QColor>
#include <QSize>

#include <cstdint>
#include <memory>
#include <optional>

class QOpenGLFramebufferObject;
class QOpenGLFunctions_2_1;

namespace marlowen {

class DepthImage;

/// The drawn surface, kept with its depth in a framebuffer object so that overlays can change
/// without drawing it again. Every call, the destructor included, needs the view's context.
class KeptPicture
{
public:
    /// One that is copied into an imageBuffer() is one itself.
    explicit KeptPicture(bool asImage = false);
    ~KeptPicture();

    /// Physical pixels. True when the picture was made anew and has no content.
    bool resize(QSize size);
    bool isValid() const { return m_buffer != nullptr; }

    QSize size() const;

    struct Kind
    {
        QColor backdrop;
        bool smooth = false; ///< drawn with several samples a pixel where the driver can
        /// What is drawn of it, y up; the rest stays, if it was smooth or not as this one is.
        QRect part;
    };
    /// Directs drawing into that part of the picture, cleared to the backdrop, until end().
    void begin(QOpenGLFunctions_2_1 &gl, const Kind &kind);
    void end(QOpenGLFunctions_2_1 &gl);

    /// Copies it into a framebuffer of the same size, null being the context's default one, and
    /// leaves that bound.
    void draw(QOpenGLFramebufferObject *target) const;
    void readDepth(QOpenGLFunctions_2_1 &gl, DepthImage &depth) const;

private:
    bool m_asImage;
    QRect m_part; ///< between begin() and end()
    std::unique_ptr<QOpenGLFramebufferObject> m_buffer;
    std::unique_ptr<QOpenGLFramebufferObject> m_samples; ///< made for the first smooth picture
    QOpenGLFramebufferObject *m_target = nullptr;        ///< between begin() and end()
    std::optional<BoundFramebuffer> m_before;            ///< bound at begin()
};

/// A texture stretched over the current viewport, colours as they are. Matrices are lost.
void drawTextureOverViewport(QOpenGLFunctions_2_1 &gl, uint32_t texture);

} // namespace marlowen
