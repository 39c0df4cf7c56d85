#pragma once

#include <QImage>

namespace marlowen {

struct Material;

/// A ball of the material on transparent ground, lit as the 3D view lights a relief from this light
/// position; `side` pixels wide and high.
QImage materialBall(const Material &material, int lightPosition, int side);

} // namespace marlowen
