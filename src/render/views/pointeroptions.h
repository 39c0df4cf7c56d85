#pragma once

#include <array>

namespace marlowen {

/// How wheel and pen act, in all views. Settings: "/state/view/wheelZoomsIn", "penStrength",
/// "penSize" and "penCurve" beside it.
struct PointerOptions
{
    bool wheelZoomsIn = false; ///< turned away from the user
    bool penStrength = true;   ///< its pressure acts on the strength of a dab
    bool penSize = false;      ///< and on its size
    int penCurve = 1;          ///< index in penCurves
};

/// How the pressure of the pen is bent before it acts: pressure to the power of `exponent`.
struct PenCurve
{
    const char *label;
    double exponent;
};
inline constexpr std::array<PenCurve, 3> penCurves{{{"Soft", 0.5}, {"Even", 1.0}, {"Firm", 2.0}}};

/// Read from the settings once a process.
const PointerOptions &pointerOptions();
/// Writes the settings.
void setPointerOptions(const PointerOptions &options);

} // namespace marlowen
