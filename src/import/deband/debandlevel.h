#pragma once

#include "base/workmeter.h"
#include "relief/grid/floatgrid.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace marlowen {

/// What holds for all levels, in the units of the values.
struct DebandLimits
{
    float lowest; ///< no value falls below
    float step;   ///< neighbours that differ by more belong to different surfaces
};

/// The cells of one level.
struct DebandCells
{
    FloatGrid values;
    /// How far each value may move to both sides: a grid of the same size, or a single row that
    /// holds for all.
    FloatGrid reach;
    /// 1 where a cell takes part, 0 elsewhere (there the value stays).
    std::vector<uint8_t> valid;
};

/// One grid of the debanding: values, those that replace them, and which second differences count.
class DebandLevel
{
public:
    DebandLevel(DebandCells cells, const DebandLimits &limits, WorkMeter &meter);

    int width() const { return m_values.width; }
    int height() const { return m_values.height; }

    /// Blocks of 2 x 2 cells; only blocks of valid cells on one surface are valid. A value may move
    /// as far as all four allow together; where a terrace ends inside a block that is little, so
    /// that coarse surfaces fit between the terraces already.
    DebandLevel coarser(WorkMeter &meter) const;
    /// Begins from the values of a coarser level, interpolated, where it is valid around a cell.
    bool beginFrom(const DebandLevel &coarse, WorkMeter &meter);
    /// Takes steps toward the smoothest values. False when the user cancelled.
    bool smooth(int steps, WorkMeter &meter);

    const FloatGrid &values() const { return m_values; }
    FloatGrid takeSmoothed() { return std::move(m_now); }

private:
    void _markDifferences(WorkMeter &meter);
    bool _step(float momentum, WorkMeter &meter);
    const uint8_t *_flags(int y) const;
    const float *_reach(int y) const { return m_reach.row(m_reach.height > 1 ? y : 0); }

    FloatGrid m_values;
    FloatGrid m_reach;
    std::vector<uint8_t> m_flags; ///< which second differences around a cell count; 0x80: valid
    DebandLimits m_limits;
    FloatGrid m_now;
    FloatGrid m_before;
    FloatGrid m_next;
};

} // namespace marlowen
