#pragma once

#include "relief/grid/relief.h"
#include "relief/history/sculptundo.h"
#include "relief/strokes/sculptengine.h"
#include "relief/tools/alphabrush.h"

#include <functional>
#include <vector>

using namespace marlowen;

using Layer = std::vector<float>;

inline Layer copyOf(const GridLayer &layer)
{
    return {layer.constData(), layer.constData() + layer.size()};
}

/// Loads a white alpha image that stamps.
inline void stampImage()
{
    const float white[] = {1.0F};
    AlphaBrush::instance().setImage({white, 1, 1});
    AlphaBrush::instance().mode = AlphaBrush::Stamp;
}

/// A level relief of height 2 whose diagonal is 500 cells, so that size 0.02 is a radius of 1. That
/// round footprint is an outline of five cells: the centre, its left, right and upper and its upper
/// left neighbour.
struct SculptBench
{
    SculptBench()
    {
        engine.attach(&relief, &undo);
        fill([](int, int) { return 2.0; });
        params.size = 0.02;
    }

    void fill(const std::function<double(int, int)> &height)
    {
        for (int row = 0; row < relief.height(); ++row)
            for (int column = 0; column < relief.width(); ++column)
                at(column, row) = static_cast<float>(height(column, row));
    }
    float &at(int column, int row) { return relief.heights().data()[relief.index(column, row)]; }

    Relief relief{300, 400};
    SculptUndo undo;
    SculptEngine engine;
    ToolParams params;
};
