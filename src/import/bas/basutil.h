#pragma once

#include "import/basrelief.h"
#include "relief/grid/floatgrid.h"

namespace marlowen {

/// Makes a bas-relief: a shallow relief that still shows the detail and the modelling of a deep
/// one.
///
/// The heights are split into form and detail (formOf, at two scales). The slopes of the form are
/// flattened, steep ones most, within every island of filled cells, and integrated again; that is
/// scaled to a share of the old depth and the detail is added back at its own height. Where detail
/// then outweighs the flattened form it lies on, so that a slope would turn round, it is lowered
/// until most slopes run as they did (keepSlopeSigns).
/// Empty cells (height 0) stay empty and do not touch their neighbours; all others lie above 0, the
/// lowest just above. Depth is the highest minus the lowest filled height.
///   contrastFactor 2..65536  the depth of the form falls to 1 / (1 + 1.05 log2) of what it was:
///                            0.24 at 8, with the detail on it about 0.3. Larger ones also even out
///                            the slopes more, and detail gains a little.
///   smoothness 20000..1e7    blurs the detail: not at all at 20000, by 7 cells at the end.
///   gridSize 2..32           larger ones let broad forms sink against small ones, from about 4 / g
///                            of the larger side on.
/// Parameters out of range count as the nearest one in range. The same input gives the same
/// heights on every machine. Takes about six times the memory of the heights, the result included.
std::optional<std::vector<float>> makeBasRelief(const BasReliefInput &input, Progress &progress);

/// Whether a bas-relief of these heights takes so little time that it can follow a slider: at most
/// a million filled cells on at most four million.
bool basReliefIsQuick(const GridView &heights);

} // namespace marlowen
