#pragma once

#include "relief/grid/floatgrid.h"
#include "relief/grid/warmbuffer.h"
#include "relief/operations/linetaps.h"

#include <array>
#include <cstddef>

namespace marlowen {

/// Rows that are resampled side by side, each in its own lane: cell after cell, `rowLanes` floats
/// each.
constexpr int rowLanes = 8;

/// Length of a line of at least `cells` that loops over whole groups of lanes may run over.
constexpr size_t paddedCells(int cells)
{
    return (static_cast<size_t>(cells) + rowLanes - 1) / rowLanes * rowLanes;
}

/// Some rows of a layer after the row pass: `rowLanes` lines, `stride` apart.
struct WideRows
{
    CellRange rows;    ///< of the layer; at most `rowLanes`
    CellRange columns; ///< new columns beyond which all cells are 0; none: all rows are empty
    CellRange full;    ///< whole groups of lanes where `covered` is not set: all are covered
    size_t stride = 0;
    WarmBuffer<float> values;
    WarmBuffer<float> covered; ///< how far each new cell is covered by cells that are not 0

    size_t line(int row) const { return static_cast<size_t>(row - rows.first) * stride; }
    /// The columns before, in and after those that are full; each may be empty.
    std::array<CellRange, 3> parts() const
    {
        return {intersected(columns, {columns.first, full.first}), intersected(columns, full),
                intersected(columns, {full.end, columns.end})};
    }
};

/// Resamples the rows of a layer, a block at a time. The last two blocks are kept: the column pass
/// asks for rows in rising order but for the one that two new rows share.
class RowPass
{
public:
    /// What the rows of a layer become. With `covers` cells of height 0 are empty, and the share of
    /// each new cell that is covered is computed beside its value.
    struct Job
    {
        GridView layer;
        const LinePlan *across;
        bool covers;
    };
    /// Begins with other rows; nothing is kept.
    void begin(const Job &job, CellRange rows);
    /// The block with this row. It holds until the block after the next one is asked for.
    const WideRows &blockOf(int row);

private:
    void _load(WideRows &block, int firstRow);
    void _sum(WideRows &block, CellRange columns);
    void _clearAround(WideRows &block) const;

    Job m_job{};
    CellRange m_rows;
    WarmBuffer<float> m_columns; ///< the source rows of a block, in lanes
    std::array<WideRows, 2> m_blocks;
};

} // namespace marlowen
