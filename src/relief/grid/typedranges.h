#pragma once

#include "base/fieldtable.h"

namespace marlowen {

/// Ranges of typed numbers that are not fields of a record (those stand in the field tables). They
/// bound what a field accepts; whether a size can be made is checked apart (exceedsAreaLimit).

inline constexpr FieldRange sideRange{2.0, 1e6};           ///< cells along a side of a relief
inline constexpr FieldRange startHeightRange{0.0, 1e5};    ///< cells
inline constexpr FieldRange axisSizeRangeInches{0.0, 1e4}; ///< along X, Y or Z
inline constexpr FieldRange sampleRangeInches{0.0, 1e4};   ///< height of Sample
inline constexpr FieldRange importDepthRangeInches{0.0, 1e3};
inline constexpr FieldRange growthRange{1.0, 200.0}; ///< cells that a selection grows by

} // namespace marlowen
