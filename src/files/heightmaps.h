#pragma once

#include "base/result.h"
#include "relief/grid/floatgrid.h"
#include "relief/grid/relief.h"

#include <QString>

#include <memory>

namespace marlowen {

/// Height maps that other programs read.

/// PFM, the portable float map: "Pf", width and height, a scale whose sign is the byte order
/// (negative: little-endian, as written here), then rows from the bottom one up. Values
/// are written unchanged. https://www.pauldebevec.com/Research/HDR/PFM/
Outcome savePfm(const GridView &grid, const QString &path);
/// Reads grey maps ("Pf") of either byte order. Values may be anything, NaN included. Takes no
/// memory for cells that the file does not hold.
Result<FloatGrid> loadPfm(const QString &path);
/// A grid as a relief: heights and reference layer are its values, and the range is that of the
/// values, which must be those a relief may hold. Throws std::bad_alloc.
std::unique_ptr<Relief> reliefOf(const FloatGrid &grid);
/// A grey map as a relief; values that no relief may hold become 0.
Result<std::unique_ptr<Relief>> loadHeightMap(const QString &path);

/// 16-bit grey PNG: the lowest height black, the highest white; a flat relief is black.
Outcome saveHeightPng(const GridView &grid, const QString &path);

} // namespace marlowen
