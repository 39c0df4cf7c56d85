#include "import/deband/debandinterpolation.h"

#include "relief/grid/cellcode.h"

#include <algorithm>
#include <cmath>

namespace marlowen {
namespace {

/// How much a value rises a quarter of the way to a neighbour: along the parabola through the cell
/// and its two neighbours. A missing neighbour is taken from the line through the other two.
CELL_INLINE inline float quarterWay(float near, float hasNear, float far, float hasFar)
{
    const float n = hasNear * near - (1.0F - hasNear) * hasFar * far;
    const float f = hasFar * far - (1.0F - hasFar) * hasNear * near;
    return 0.15625F * n - 0.09375F * f;
}

/// 1 where a neighbour belongs to the same surface.
CELL_INLINE inline float joined(float difference, float valid, float step)
{
    return std::fabs(difference) <= step ? valid : 0.0F;
}

/// Rows of values and of their validity, 1 or 0, with a border of zeros.
struct CoarseRows
{
    const float *own;
    const float *near;
    const float *far;
    const float *hasNear;
    const float *hasFar;
};

/// A quarter of the way from the own row to the near one.
CELL_LOOP void mixAcross(const CoarseRows &rows, float step, float *out, int count)
{
    const CoarseRows r = rows;
#pragma omp simd
    for (int i = 0; i < count; ++i) {
        const float near = r.near[i] - r.own[i];
        const float far = r.far[i] - r.own[i];
        out[i] = r.own[i] + quarterWay(near, joined(near, r.hasNear[i], step), far,
                                       joined(far, r.hasFar[i], step));
    }
}

/// A quarter of the way to the left and to the right of every cell; pointers begin with the border.
CELL_LOOP void mixAlong(const float *values, const float *valid, float step, float *out, int count)
{
#pragma omp simd
    for (int i = 0; i < count; ++i) {
        const float left = values[i] - values[i + 1];
        const float right = values[i + 2] - values[i + 1];
        const float hasLeft = joined(left, valid[i], step);
        const float hasRight = joined(right, valid[i + 2], step);
        out[2 * i] = values[i + 1] + quarterWay(left, hasLeft, right, hasRight);
        out[2 * i + 1] = values[i + 1] + quarterWay(right, hasRight, left, hasLeft);
    }
}

} // namespace

DebandInterpolation::DebandInterpolation(int coarseWidth)
    : m_width(coarseWidth)
    , m_mixed(static_cast<size_t>(coarseWidth) + 2)
    , m_fine(2 * static_cast<size_t>(coarseWidth))
{
    m_values.fill(m_mixed);
    m_valid.fill(m_mixed);
}

void DebandInterpolation::interpolate(const std::array<LevelRow, 3> &rows, float step)
{
    for (size_t i = 0; i < rows.size(); ++i)
        _load(rows[i], i);
    mixAcross({m_values[0].data() + 1, m_values[1].data() + 1, m_values[2].data() + 1,
               m_valid[1].data() + 1, m_valid[2].data() + 1},
              step, m_mixed.data() + 1, m_width);
    mixAlong(m_mixed.data(), m_valid[0].data(), step, m_fine.data(), m_width);
}

void DebandInterpolation::_load(const LevelRow &row, size_t place)
{
    std::vector<float> &valid = m_valid[place];
    std::fill(valid.begin(), valid.end(), 0.0F);
    if (!row.values)
        return;
    std::copy_n(row.values, m_width, m_values[place].begin() + 1);
    std::transform(row.flags, row.flags + m_width, valid.begin() + 1,
                   [](uint8_t flags) { return flags != 0 ? 1.0F : 0.0F; });
}

} // namespace marlowen
