#include "import/bas/poisson.h"

#include "import/bas/poissonlevels.h"

#include <algorithm>
#include <memory>

namespace marlowen {
namespace {

/// Cycles over all levels; each takes the error down by about ten.
constexpr int cycles = 2;
/// Levels end where the larger side has this many cells.
constexpr int smallestSide = 2;
constexpr int coarsestPasses = 16;

/// All levels of one problem, the finest first.
class Multigrid
{
public:
    Multigrid(FloatGrid &surface, const FloatGrid &rhs, const CellMask &filled, float screening)
        : m_screening(screening)
    {
        m_levels.push_back(std::make_unique<FineLevel>(surface, rhs, filled, screening));
    }

    bool run(WorkMeter &meter)
    {
        if (!_addLevels(meter))
            return false;
        for (int i = 0; i < cycles; ++i) {
            if (!_cycle(0, meter))
                return false;
        }
        return true;
    }

private:
    bool _addLevels(WorkMeter &meter)
    {
        while (std::max(m_levels.back()->width(), m_levels.back()->height()) > smallestSide) {
            const PoissonLevel &finer = *m_levels.back();
            m_problems.push_back(
                std::make_unique<CoarseProblem>((finer.width() + 1) / 2, (finer.height() + 1) / 2));
            if (!finer.coarsen(*m_problems.back(), meter))
                return false;
            m_levels.push_back(std::make_unique<CoarseLevel>(*m_problems.back(), m_screening));
        }
        return true;
    }

    bool _cycle(size_t index, WorkMeter &meter)
    {
        PoissonLevel &level = *m_levels[index];
        if (index == m_problems.size())
            return _relax(level, coarsestPasses, meter);
        CoarseProblem &coarse = *m_problems[index];
        if (!_relax(level, 1, meter) || !level.restrictTo(coarse, meter))
            return false;
        std::fill(coarse.correction.grid.values.begin(), coarse.correction.grid.values.end(), 0.0F);
        // Coarser levels cost little; visiting them twice spares cycles over the finest one.
        const int visits = index == 0 ? 1 : 2;
        for (int i = 0; i < visits; ++i) {
            if (!_cycle(index + 1, meter))
                return false;
        }
        return level.correctFrom(coarse, meter) && _relax(level, 1, meter);
    }

    static bool _relax(PoissonLevel &level, int passes, WorkMeter &meter)
    {
        for (int i = 0; i < passes; ++i) {
            if (!level.relax(meter))
                return false;
        }
        return true;
    }

    float m_screening;
    std::vector<std::unique_ptr<CoarseProblem>> m_problems;
    std::vector<std::unique_ptr<PoissonLevel>> m_levels;
};

} // namespace

bool solvePoisson(FloatGrid &surface, const FloatGrid &rhs, const CellMask &filled, float screening,
                  WorkMeter &meter)
{
    return Multigrid(surface, rhs, filled, screening).run(meter);
}

} // namespace marlowen
