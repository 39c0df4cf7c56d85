#pragma once

#include "base/rowsharing.h"
#include "relief/grid/warmbuffer.h"
#include "relief/tools/tool.h"

#include <memory>

namespace marlowen {

/// A stretch of columns of a dab's box whose footprint columns follow each other as well.
struct ColumnRun
{
    int column = 0;
    int count = 0;
    int foot = 0; ///< footprint column of the first one, counted from 0 in FootprintWeights
};

/// What is written while the spans of a row are looked at: a row each.
struct SpanBuffers
{
    WarmBuffer<float> gated;    ///< weights with the skipped cells taken out
    WarmBuffer<float> unmasked; ///< 1 - mask
};

/// A span whose new heights were computed, and whether one of them differs from the old.
struct PaintedSpan
{
    int column;
    int count;
    bool changed;
};

/// The memory of one stroke. A finished stroke leaves it for the next one, since fresh memory of
/// this size costs many times what filling it does.
struct StrokeBuffers
{
    WarmBuffer<unsigned char> footprint;
    WarmBuffer<double> distance;
    WarmBuffer<float> weights;
    WarmBuffer<FootprintWeights::Extent> extents;
    SpanBuffers span;
    Borrowed<SpanBuffers> spanBuffers;      ///< of the threads that share a dab
    WarmBuffer<float> painted;              ///< heights of a dab's box that will be painted
    WarmBuffer<PaintedSpan> spans;          ///< where they are
    WarmBuffer<float> ones;                 ///< a row of 1
    WarmBuffer<float> zeros;                ///< a row of 0, read in place of unwritten layers
    WarmBuffer<float> copy;                 ///< heights as they were before the dab
    std::unique_ptr<BrushState> brushState; ///< of the last brush that had one
    std::vector<ColumnRun> runs;            ///< columns of the dab being applied

    static std::unique_ptr<StrokeBuffers> take();
    static void giveBack(std::unique_ptr<StrokeBuffers> buffers);
};

} // namespace marlowen
