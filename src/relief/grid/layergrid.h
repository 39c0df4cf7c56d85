#pragma once

#include "relief/grid/floatgrid.h"
#include "relief/grid/gridlayer.h"

namespace marlowen {

/// A grid in memory that the system hands out as zeros: making one writes nothing, and cells that
/// are never written take no memory. Otherwise as a FloatGrid, but it cannot be copied.
struct LayerGrid
{
    LayerGrid() = default;
    /// All 0. Throws std::bad_alloc when the memory cannot be had.
    LayerGrid(int columns, int rows)
        : width(columns)
        , height(rows)
        , values(static_cast<qsizetype>(columns) * rows)
    {
    }

    bool empty() const { return values.size() == 0; }
    qsizetype cells() const { return values.size(); }
    GridView view() const { return {values.constData(), width, height}; }
    MutableGridView view() { return {values.data(), width, height}; }

    int width = 0;
    int height = 0;
    GridLayer values;
};

} // namespace marlowen
