#pragma once

#include "render/camera/arcball.h"

#include <QRect>

#include <array>

namespace marlowen {

/// The orientation gizmo: a translucent cube with three axes in a square viewport in the view's
/// top-left corner.

/// Half the cube's side, and from where to where its axes run.
inline constexpr double gizmoHalf = 37.5;
inline constexpr double gizmoAxisStart = -24.375;
inline constexpr double gizmoAxisEnd = gizmoAxisStart + 48.75;

/// Side 150, or a quarter of a widget at least 604 high, never more than the widget. In widget
/// coordinates (y down).
QRect gizmoViewport(QSize widget);

/// The gizmo's matrices in a widget of this height: orthographic, the model 4000 towards the viewer
/// and as close to the corner as it can turn.
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

/// The rotation that shows a face straight: the faces ±z with +y upwards, the others with +z, where
/// a relief rises, upwards. Identity for any other id.
Quaternion presetOrientation(int face);

} // namespace marlowen
