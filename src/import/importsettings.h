#pragma once

namespace marlowen {

/// What the import controls ask for. Values are the stored ones, not slider positions.
struct ImportSettings
{
    bool flipY = false;
    bool invertZ = false;
    bool transparency = true; ///< cells of height 0 stay 0 through smoothing
    bool preview = true;      ///< off: raise/lower, trim, smoothing and bas-relief are left out
    double smoothing = 0.0;   ///< 0 .. 5 passes
    int raiseLower = 0;       ///< -100 .. 100 percent of the range; positive lowers
    int trim = 0;             ///< 0 .. 20 cells eaten from the outline
    int tiltHorizontal = 0;   ///< -100 .. 100, tenths of a degree
    int tiltVertical = 0;     ///< -100 .. 100, tenths of a degree
    double depth = 0.0;       ///< height that the whole source range spans; 0: source units
    bool basRelief = false;
    int gridSize = 2;       ///< bas-relief
    int contrastFactor = 8; ///< bas-relief
    int smoothness = 20000; ///< bas-relief

    bool tilted() const { return tiltHorizontal != 0 || tiltVertical != 0; }
    bool operator==(const ImportSettings &) const = default;
};

} // namespace marlowen
