#pragma once

#include "import/bas/poissonlevels.h"

#include <span>
#include <vector>

namespace marlowen {

/// Sums of neighbouring pairs of values; the last one may be alone. `sums` has half as many values,
/// rounded up.
void sumPairs(std::span<const float> values, std::span<float> sums);

/// Interpolates the correction of a coarse level for rows of the level below it.
class CoarseRow
{
public:
    explicit CoarseRow(const CoarseProblem &coarse);
    /// Corrections of the cells of row y of the finer level; may hold one cell more than a row.
    /// Coarse cells without filled cells do not count.
    std::span<const float> compute(int y);

private:
    const CoarseProblem &m_coarse;
    std::vector<float> m_values;
    std::vector<float> m_shares;
    std::vector<float> m_row;
};

} // namespace marlowen
