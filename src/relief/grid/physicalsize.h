#pragma once

#include "base/result.h"

#include <QString>

#include <array>

namespace marlowen {

/// Cells along one inch of a relief.
inline constexpr double cellsPerInch = 128.0;

/// Patterns must stay below this area.
inline constexpr double areaLimitSquareInches = 1000.0;

/// A unit that sizes are shown and typed in.
struct LengthUnit
{
    const char *label; ///< see unitLabel()
    double inches;     ///< inches in one of it
    int decimals;      ///< that show a cell (1/128 inch)
};

/// In the order of the choice: inches, centimetres, millimetres.
inline constexpr std::array<LengthUnit, 3> lengthUnits{{
    {QT_TRANSLATE_NOOP("PhysicalSize", "in."), 1.0, 3},
    {QT_TRANSLATE_NOOP("PhysicalSize", "cm"), 0.39370078740157477, 2},
    {QT_TRANSLATE_NOOP("PhysicalSize", "mm"), 0.03937007874015748, 1},
}};

/// Its label in the language of the window.
QString unitLabel(const LengthUnit &unit);

/// Area of a grid in square inches.
constexpr double squareInches(double widthCells, double heightCells)
{
    return widthCells / cellsPerInch * (heightCells / cellsPerInch);
}

/// Whether a pattern of this area is too large to work with.
constexpr bool exceedsAreaLimit(double areaSquareInches)
{
    return !(areaSquareInches < areaLimitSquareInches);
}

/// The message about a size that is too large.
Failure sizeLimitFailure(double areaSquareInches);

} // namespace marlowen
