#pragma once

#include "relief/grid/cellcode.h"
#include "relief/grid/relief.h"
#include "relief/strokes/strokebuffers.h"
#include "relief/tools/tool.h"

#include <QPointF>
#include <QRect>

#include <cmath>

namespace marlowen {

/// One application of a brush at one point; a mirror image is a separate dab.
struct Dab
{
    Relief &relief;
    Tool &tool;
    QPointF centre;          ///< columns and rows, real
    QPointF shift;           ///< distance from the last applied point, mirrored like the dab itself
    QRect box;               ///< cells on the grid that the radius covers; never empty
    int image = 0;           ///< 0 the dab itself, 1..3 its mirror images
    double decayCubed = 1.0; ///< factor of the strength
    float pressure = 1.0F;   ///< factor of the footprint's weights
    const FootprintWeights *weights = nullptr; ///< of the dab's size; never null
    bool skipEmpty = false;                    ///< cells of height 0 stay as they are
    bool skipUnselected = false;
    bool maskWeakens = true; ///< unmasked is 1 - mask; otherwise 1
    float direction =
        0.0F; ///< 1 for a tool that raises, -1 for one that lowers, reversed when inverted
    double plane = 0.0; ///< only for UsesPlane: mean of the footprint when the stroke began

    const ToolParams &params() const { return tool.params(); }
};

/// Centre of a dab at a stroke point, in columns and rows.
QPointF dabCentre(const Relief &relief, QPointF point);
/// Cells that a dab covers: centre - radius to centre + radius, truncated toward zero, both ends
/// included, clipped to the relief.
QRect dabBox(const Relief &relief, QPointF centre, double radius);
/// A height that may be painted: NaN, infinite and negative ones become 0.
float paintableHeight(float height);
/// Fills the tool's column runs for the dab's box.
void mapColumns(const Dab &dab);

/// A stretch of one row of a dab whose cells lie side by side in the relief and in the footprint.
/// Cells of a negative weight, and cells whose height is `skipped`, are to be left alone.
struct CellSpan
{
    int column = 0;
    int row = 0;
    int count = 0;
    qsizetype cell = 0;              ///< index of the first cell in the relief
    qsizetype foot = 0;              ///< index of the first cell in the footprint's weights
    const float *weight = nullptr;   ///< falloff weight 0..1, or negative
    const float *unmasked = nullptr; ///< 1 - mask
    float skipped = -1.0F;           ///< 0 to keep empty cells, otherwise no height at all

    CELL_INLINE bool leavesAlone(int i, float height) const
    {
        return static_cast<bool>(static_cast<int>(weight[i] < 0.0F) |
                                 static_cast<int>(height == skipped));
    }
};

/// The footprint cells of one run of a row. Cells outside the selection are taken out of the
/// weights. The rows a span points to hold until the next call with these buffers.
CellSpan cellsOf(const Dab &dab, const ColumnRun &run, int row, SpanBuffers &buffers);
/// With the buffers of the thread that applies the dab.
inline CellSpan cellsOf(const Dab &dab, const ColumnRun &run, int row)
{
    return cellsOf(dab, run, row, dab.tool.buffers().span);
}

/// The values of a layer under a span, zeros for layers that were never written.
inline const float *rowUnder(const Dab &dab, const GridLayer &layer, const CellSpan &span)
{
    return layer.written() ? layer.constData() + span.cell : dab.tool.buffers().zeros.data();
}

/// The changes of one span: `brush(span, i, before)` gives the new height of its cell i. True when
/// a stored value differs from what it was. Brushes compute with floats; they add the change to the
/// height rather than blend old and new, so that the result is as exact as the stored height.
template <typename Brush>
CELL_INLINE inline bool paintSpan(const CellSpan &span, float *values, const Brush &brush)
{
    const CellSpan local = span;
    int changed = 0;
#pragma omp simd reduction(| : changed)
    for (int i = 0; i < local.count; ++i) {
        const float before = values[i];
        const float after = brush(local, i, before);
        const float stored = local.leavesAlone(i, before) ? before : after;
        changed |= static_cast<int>(stored != before);
        values[i] = stored;
    }
    return changed != 0;
}

/// The loop that all brushes share. It walks the dab's box and has the brush compute every cell of
/// the footprint that is not skipped. `brushOf(span)` returns the brush for one span, with the rows
/// it reads bound to it; it is called once a span, from the top row down. True when a cell changed.
template <typename BrushOf>
CELL_INLINE inline bool paintCells(const Dab &dab, GridLayer &layer, BrushOf &&brushOf)
{
    float *values = layer.data();
    bool changed = false;
    for (int row = dab.box.top(); row <= dab.box.bottom(); ++row) {
        for (const ColumnRun &run : dab.tool.buffers().runs) {
            const CellSpan span = cellsOf(dab, run, row);
            changed |= paintSpan(span, values + span.cell, brushOf(span));
        }
    }
    return changed;
}

/// paintCells() on the heights.
template <typename BrushOf>
CELL_INLINE inline bool paintHeights(const Dab &dab, BrushOf &&brushOf)
{
    return paintCells(dab, dab.relief.heights(), brushOf);
}

} // namespace marlowen
