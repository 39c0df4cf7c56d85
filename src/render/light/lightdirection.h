#pragma once

#include "render/camera/arcball.h"

#include <array>
#include <span>

namespace marlowen {

/// One choice of the light control.
struct LightPosition
{
    const char *label; ///< to be translated in the context "Light"
    const char *icon;  ///< resource
    Quaternion tilt;   ///< not of unit length
};

/// The eight choices, in the order of the control.
std::span<const LightPosition> lightPositions();

/// Where the light of a choice stands: (x, y, 1) in model space, x to the right and y up, towards
/// the light; not normalised. An index outside 0..7 counts as 0.
std::array<float, 3> lightDirection(int index);

} // namespace marlowen
