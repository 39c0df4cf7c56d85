#pragma once

#include "render/camera/camera.h"

#include <QImage>

namespace marlowen {

/// The names of the gizmo's faces, lying on the faces that look at the viewer, and the letters of
/// its axes; transparent elsewhere. `view` are the gizmo's matrices, the picture
/// covers their viewport with `ratio` pixels a logical pixel.
QImage gizmoLabels(const ViewMatrices &view, double ratio);

} // namespace marlowen
