#pragma once

#include <cstdint>

namespace marlowen {

/// The tool-parameter record: written by the tool panel, read by the engine and the views.
/// Defaults are what the tool panel starts with.
struct ToolParams
{
    int32_t type = 2;       ///< Tool::Type
    int32_t mode = 0;       ///< Tool::Mode
    int32_t form = 0;       ///< Tool::Form
    double size = 0.3;      ///< 0.01 .. 1.0; radius in tenths of the relief diagonal
    double strength = 0.25; ///< 0.0001 .. 1.0, the squared slider position
    double hardness = 0.5;  ///< 0 .. 1
    double aspect = 1.0;    ///< footprint height = radius / aspect; > 0
    double angle = 0.0;     ///< footprint rotation in degrees
    bool useDecay = false;
    double decayLength = 0.5;     ///< 0 .. 1
    bool keepTransparency = true; ///< cells of height 0.0 are never touched
    bool smoothToolPaths = false;
    int32_t smoothLength = 50; ///< points a smoothed path segment, >= 1
    bool ceilingOrFloor = false;
    double tolerance = 0.02; ///< magic selection, 0.01 .. 0.99
    bool continuous = true;  ///< magic selection
    int32_t falloff = 0;     ///< Tool::Falloff
};

} // namespace marlowen
