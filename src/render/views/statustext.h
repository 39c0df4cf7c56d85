#pragma once

#include "render/camera/camera.h"

#include <QString>

namespace marlowen {

/// "Position: (%1, %2) z = %3" of a model point over a relief, in inches from the relief's first
/// cell, two decimals; z counts from the floor and is 0 below it.
QString statusText(const Vector &point, const SceneBox &box);

} // namespace marlowen
