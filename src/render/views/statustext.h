#pragma once

#include "render/camera/camera.h"

#include <QString>

namespace marlowen {

/// "Position: (1.00, 0.50) z = 0.496 in." of a model point over a relief, in a unit of lengthUnits:
/// x and y from the relief's first cell to the middle of the cell, z from the floor and 0 below it.
QString statusText(const Vector &point, const SceneBox &box, int unit = 0);

} // namespace marlowen
