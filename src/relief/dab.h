#pragma once

#include "relief/cellcode.h"
#include "relief/relief.h"
#include "relief/strokebuffers.h"
#include "relief/tool.h"

#include <QPointF>
#include <QRect>

#include <cmath>

/// One touch of a brush: where it lands and how strongly. Built anew for every mirror image.
struct Dab
{
    Relief &relief;
    Tool &tool;
    QPointF centre;          ///< columns and rows, real
    QPointF shift;           ///< way from the last applied point, mirrored like the dab itself
    QRect box;               ///< cells on the grid that the radius covers; never empty
    int image = 0;           ///< 0 the dab itself, 1..3 its mirror images
    double decayCubed = 1.0; ///< factor of the strength
    bool skipEmpty = false;  ///< cells of height 0 stay as they are
    bool skipUnselected = false;
    bool maskWeakens = true; ///< unmasked is 1 - mask; otherwise 1

    const ToolParams &params() const { return tool.params(); }
};

/// Centre of a dab at a stroke point, in columns and rows.
QPointF dabCentre(const Relief &relief, QPointF point);
/// Cells that a dab covers: centre - radius to centre + radius, truncated toward zero, both ends
/// included, clipped to the relief.
QRect dabBox(const Relief &relief, QPointF centre, double radius);
/// A height that may be painted: what is no number, infinite or negative becomes 0.
float paintableHeight(float height);
/// Fills the tool's column runs for the dab's box.
void mapColumns(const Dab &dab);

/// A stretch of one row of a dab whose cells lie side by side in the relief and in the footprint.
/// A negative weight is a cell to leave alone.
struct CellSpan
{
    int column = 0;
    int row = 0;
    int count = 0;
    qsizetype cell = 0;              ///< index of the first cell in the relief
    qsizetype foot = 0;              ///< index of the first cell in the footprint's weights
    const float *weight = nullptr;   ///< falloff weight 0..1, or negative
    const float *unmasked = nullptr; ///< 1 - mask
};

/// The footprint cells of one run of a row, with the cells to skip taken out of the weights.
/// `emptiness` is the layer whose zeros count as empty. The rows a span points to hold until the
/// next call.
CellSpan gatedSpan(const Dab &dab, const ColumnRun &run, int row, const GridLayer &emptiness);

/// The values of a layer under a span, without touching layers that nobody wrote to.
inline const float *rowUnder(const Dab &dab, const GridLayer &layer, const CellSpan &span)
{
    return layer.written() ? layer.constData() + span.cell : dab.tool.buffers().zeros.data();
}

/// The changes of one span: `brush(span, i, before)` gives the new height of its cell i in doubles.
/// True when a stored value differs from what it was.
template <typename Brush>
CELL_INLINE inline bool paintSpan(const CellSpan &span, float *values, const Brush &brush)
{
    const CellSpan local = span;
    int changed = 0;
#pragma omp simd reduction(| : changed)
    for (int i = 0; i < local.count; ++i) {
        const float before = values[i];
        const auto after = static_cast<float>(brush(local, i, static_cast<double>(before)));
        const float stored = local.weight[i] < 0.0F ? before : after;
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
            const CellSpan span = gatedSpan(dab, run, row, dab.relief.heights());
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

/// `target` weighed against the height that is there.
CELL_INLINE inline double blend(double target, double height, double weight)
{
    return target * weight + (1.0 - weight) * height;
}
