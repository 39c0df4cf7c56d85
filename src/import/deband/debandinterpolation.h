#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace marlowen {

/// A row of a level of the debanding; null pointers beyond the border.
struct LevelRow
{
    const float *values;
    const uint8_t *flags; ///< not 0 where a cell takes part
};

/// Interpolates rows of a coarser level for the rows of a finer one, along parabolas that stay on
/// one surface.
class DebandInterpolation
{
public:
    explicit DebandInterpolation(int coarseWidth);

    /// The row of the finer level between its own coarse row (first) and the near one (second); the
    /// far one lies on the other side. Values that differ by more than `step` belong to different
    /// surfaces.
    void interpolate(const std::array<LevelRow, 3> &rows, float step);

    /// Two values a coarse cell.
    const float *values() const { return m_fine.data(); }
    /// One value a coarse cell: 1 where it takes part.
    const float *valid() const { return m_valid[0].data() + 1; }

private:
    void _load(const LevelRow &row, std::size_t place);

    int m_width;
    std::vector<float> m_mixed;
    std::vector<float> m_fine;
    std::array<std::vector<float>, 3> m_values;
    std::array<std::vector<float>, 3> m_valid;
};

} // namespace marlowen
