#pragma once

#include "render/camera/arcball.h"

#include <QRect>

#include <array>

namespace marlowen {

/// The orientation gizmo: a translucent cube with three axes in a square viewport in the view's
/// top-left corner. Its units are logical pixels.

/// Side 150, or a quarter of a widget at least 604 high, never more than the widget. In widget
/// coordinates (y down).
QRect gizmoViewport(QSize widget);

/// The gizmo's matrices in a widget of this height: orthographic, the model 4000 towards the
/// viewer.
ViewMatrices gizmoMatrices(const Matrix &rotation, const QRect &viewport, int widgetHeight);

/// One face of the cube: corners counter-clockwise seen from outside.
struct GizmoFace
{
    std::array<Vector, 4> corners;
    Vector normal;
};

/// Faces with the ids 1 to 6: front (+z), back, top (+y), bottom, right (+x), left.
const std::array<GizmoFace, 6> &gizmoFaces();

/// Id of the face nearest to the viewer under window coordinates (y up), or -1.
int gizmoFaceAt(QPointF window, const ViewMatrices &view);

/// The rotation that shows a face straight from the front. The four sides keep +y upwards; the top
/// face shows the relief's front (+z) pointing down, the bottom face pointing up. Identity for any
/// other id.
Quaternion presetOrientation(int face);

} // namespace marlowen
