#pragma once

#include <array>

namespace marlowen {

/// How wheel and pen act, in all views. Settings: "/state/view/wheelZoomsIn", "penStrength",
/// "penSize" and "penCurve".
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
    const char *label; ///< to be translated in the context "PenCurves"
    double exponent;
};
inline constexpr std::array<PenCurve, 3> penCurves{{{QT_TRANSLATE_NOOP("PenCurves", "Soft"), 0.5},
                                                    {QT_TRANSLATE_NOOP("PenCurves", "Even"), 1.0},
                                                    {QT_TRANSLATE_NOOP("PenCurves", "Firm"), 2.0}}};

/// Read from the settings once a process.
const PointerOptions &pointerOptions();
/// Writes the settings.
void setPointerOptions(const PointerOptions &options);

} // namespace marlowen
