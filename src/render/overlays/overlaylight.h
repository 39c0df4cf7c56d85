#pragma once

class QOpenGLFunctions_2_1;

namespace marlowen {

/// The white light on overlays (footprint, gizmo): fixed-function lighting is on while the object
/// exists.
class OverlayLight
{
public:
    explicit OverlayLight(QOpenGLFunctions_2_1 &gl);
    ~OverlayLight();
    OverlayLight(const OverlayLight &) = delete;
    OverlayLight &operator=(const OverlayLight &) = delete;

private:
    QOpenGLFunctions_2_1 &m_gl;
};

} // namespace marlowen
