#pragma once

#include <QPointF>

#include <vector>

class QOpenGLFunctions_2_1;

namespace marlowen {

class Relief;

/// A stroke point and its mirror images under the relief's symmetry; the point itself first.
std::vector<QPointF> mirrorImages(const Relief &relief, QPointF point);

/// Draws the axes of the relief's symmetry over its surface, nothing without symmetry. The matrices
/// are those of the relief; `pixelsACell` is the zoom, `ratio` the device pixel ratio.
void drawSymmetryAxes(QOpenGLFunctions_2_1 &gl, const Relief &relief, double pixelsACell,
                      double ratio);

} // namespace marlowen
