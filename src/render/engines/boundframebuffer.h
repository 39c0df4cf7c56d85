#pragma once

#include <QOpenGLContext>
#include <QOpenGLFunctions>

namespace marlowen {

/// The framebuffer that is bound in the current context, to be bound again later.
class BoundFramebuffer
{
public:
    BoundFramebuffer() { functions().glGetIntegerv(GL_FRAMEBUFFER_BINDING, &m_name); }
    void bindAgain() const
    {
        functions().glBindFramebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(m_name));
    }

private:
    static QOpenGLFunctions &functions() { return *QOpenGLContext::currentContext()->functions(); }

    GLint m_name = 0;
};

} // namespace marlowen
