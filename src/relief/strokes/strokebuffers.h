#pragma once

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

/// The memory of one stroke. A finished stroke leaves it for the next one, since fresh memory of
/// this size costs many times what filling it does.
struct StrokeBuffers
{
    WarmBuffer<unsigned char> footprint;
    WarmBuffer<double> distance;
    WarmBuffer<float> weights;
    WarmBuffer<FootprintWeights::Extent> extents;
    WarmBuffer<float> gated;                ///< a row of weights with the skipped cells taken out
    WarmBuffer<float> unmasked;             ///< a row of 1 - mask
    WarmBuffer<float> samples;              ///< a row of heights that will be painted
    WarmBuffer<float> ones;                 ///< a row of 1
    WarmBuffer<float> zeros;                ///< a row of 0, read in place of unwritten layers
    WarmBuffer<float> copy;                 ///< heights as they were before the dab
    std::unique_ptr<BrushState> brushState; ///< of the last brush that had one
    std::vector<ColumnRun> runs;            ///< columns of the dab being applied

    static std::unique_ptr<StrokeBuffers> take();
    static void giveBack(std::unique_ptr<StrokeBuffers> buffers);
};

} // namespace marlowen
