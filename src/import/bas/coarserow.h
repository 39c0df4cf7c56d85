#pragma once

#include "import/bas/poissonlevels.h"

namespace marlowen {

/// Sums of neighbouring pairs of `count` values; the last one may be alone.
void sumPairs(const float *values, int count, float *sums);

/// Interpolates the correction of a coarse level for rows of the level below it.
class CoarseRow
{
public:
    explicit CoarseRow(const CoarseProblem &coarse);
    /// Corrections of the cells of row y of the finer level; may hold one cell more than a row.
    /// Coarse cells without filled cells do not count.
    const float *compute(int y);

private:
    const CoarseProblem &m_coarse;
    std::vector<float> m_values;
    std::vector<float> m_shares;
    std::vector<float> m_row;
};

} // namespace marlowen
