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
    KeptPicture();
    ~KeptPicture();

    /// Physical pixels. True when the picture was made anew and has no content.
    bool resize(QSize size);
    bool isValid() const { return m_buffer != nullptr; }

    /// Directs drawing into the picture, cleared to this colour, until end(). A smooth one is drawn
    /// with several samples a pixel where the driver can.
    void begin(QOpenGLFunctions_2_1 &gl, const QColor &backdrop, bool smooth);
    void end(QOpenGLFunctions_2_1 &gl);

    /// Copies it into a framebuffer of the same size, null being the context's default one, and
    /// leaves that bound.
    void draw(QOpenGLFramebufferObject *target) const;
    void readDepth(QOpenGLFunctions_2_1 &gl, DepthImage &depth) const;

private:
    std::unique_ptr<QOpenGLFramebufferObject> m_buffer;
    std::unique_ptr<QOpenGLFramebufferObject> m_samples; ///< made for the first smooth picture
    QOpenGLFramebufferObject *m_target = nullptr;        ///< between begin() and end()
    std::optional<BoundFramebuffer> m_before;            ///< bound at begin()
};

/// A texture stretched over the current viewport, colours as they are. Matrices are lost.
void drawTextureOverViewport(QOpenGLFunctions_2_1 &gl, uint32_t texture);

} // namespace marlowen
