#pragma once

namespace marlowen {

struct Dab;

/// Mean height, when the stroke began, of the dab's footprint cells that are not skipped; that of
/// the cell under its centre when there are none, 0 off the relief.
double footprintMean(const Dab &dab);

} // namespace marlowen
