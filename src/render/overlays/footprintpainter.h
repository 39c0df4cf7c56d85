#pragma once

#include "render/camera/camera.h"

#include <cstdint>
#include <vector>

class QOpenGLFunctions_2_1;

namespace marlowen {

class Relief;
struct FootprintShape;
struct ToolParams;

/// Draws the brush footprint draped over the relief's surface, with the fixed-function matrices of
/// the relief in force. Owns the texture of the alpha brush. Every call needs the view's context.
class FootprintPainter
{
public:
    struct Place
    {
        QPointF centre; ///< stroke point
        double zoom = 1.0;
        double ratio = 1.0; ///< device pixel ratio
    };

    void draw(QOpenGLFunctions_2_1 &gl, const Relief &relief, const ToolParams &tool,
              const Place &place);
    void release(QOpenGLFunctions_2_1 &gl);

private:
    struct SurfacePoint
    {
        float x;
        float y;
        float z;
    };
    using Loop = std::vector<SurfacePoint>;

    static Loop _draped(const Relief &relief, const std::vector<QPointF> &outline,
                        const Place &place, double fraction);
    static void _fill(QOpenGLFunctions_2_1 &gl, const Loop &loop, double zoom);
    static void _line(QOpenGLFunctions_2_1 &gl, const Loop &loop, const float *rgba);
    void _drawTextured(QOpenGLFunctions_2_1 &gl, const Relief &relief, const FootprintShape &shape,
                       const Place &place);
    void _updateTexture(QOpenGLFunctions_2_1 &gl);

    uint32_t m_texture = 0;
    uint32_t m_textureChange = 0;
};

} // namespace marlowen
