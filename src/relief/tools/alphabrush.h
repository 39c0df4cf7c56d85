#pragma once

#include "relief/grid/floatgrid.h"

#include <cstdint>
#include <vector>

namespace marlowen {

/// The words for AlphaBrush::Mode.
inline constexpr char alphaModeNames[] = "Shape|Tile|Stamp";

/// The grey image that can shape or texture every footprint; one for the process.
class AlphaBrush
{
public:
    enum Mode { Shape, Tile, Stamp };

    static AlphaBrush &instance();

    /// Copies a square image of grey values 0..1. An empty one removes the image.
    void setImage(GridView image);
    bool loaded() const { return !m_values.empty(); }
    const std::vector<float> &values() const { return m_values; }
    int side() const { return m_side; }

    static constexpr int initialRepeat = 3;
    int mode = Shape;                ///< AlphaBrush::Mode
    int repeatCount = initialRepeat; ///< tiles across the footprint in Tile mode
    /// Grows by two with every change of image.
    uint32_t changeCounter() const { return m_changes; }

private:
    AlphaBrush() = default;

    std::vector<float> m_values;
    int m_side = 0;
    uint32_t m_changes = 0;
};

/// Bilinear sample at (u * side - 0.5, v * side - 0.5). With wrap the indices run modulo side;
/// without it (u, v) outside 0..1 gives 0 and neighbour cells are clamped to the image.
double alphaSample(GridView image, double u, double v, bool wrap);

} // namespace marlowen
