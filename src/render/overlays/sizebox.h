#pragma once

#include "render/camera/camera.h"

#include <QPointF>
#include <QString>

#include <array>
#include <memory>
#include <optional>

class QColor;
class QOpenGLFunctions_2_1;
class QOpenGLTexture;

namespace marlowen {

/// The place of the label of an axis (0 x, 1 y, 2 z): beside the middle of that edge of the
/// box that lies farthest out on the screen, the lower or right one of two. In logical window
/// coordinates, y up; nothing when the edge is seen nearly end-on.
std::optional<QPointF> sizeLabelPlace(const SceneBox &box, size_t axis, const ViewMatrices &view);

/// The box about a model with its three sizes, and the plane it is carved down to. Every call, the
/// destructor excepted, needs the view's OpenGL context.
class SizeBox
{
public:
    SizeBox();
    ~SizeBox();

    /// The labels along x, y and z.
    void setSizes(const std::array<QString, 3> &texts);

    /// The box's edges and its floor, within the picture: depth test on, matrices set, which stay.
    static void draw(QOpenGLFunctions_2_1 &gl, const SceneBox &box, const QColor &ink);
    /// The sizes, over the picture that was drawn with `view`; the matrices are lost.
    void drawSizes(QOpenGLFunctions_2_1 &gl, const SceneBox &box, const ViewMatrices &view,
                   double ratio);
    /// Deletes the OpenGL objects.
    void release();

private:
    struct Label
    {
        QString text;
        std::unique_ptr<QOpenGLTexture> texture; ///< made when first drawn
    };
    std::array<Label, 3> m_labels;
    double m_ratio = 0.0;
};

} // namespace marlowen
