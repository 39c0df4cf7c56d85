#include "import/bas/islands.h"

#include <numeric>

namespace marlowen {
namespace {

/// Filled cells of one row without a gap.
struct Run
{
    int first;
    int end; ///< one past the last cell
    int island;
};

/// The filled cells as runs, row by row.
class Islands
{
public:
    Islands(const CellMask &filled, int width, int height)
    {
        m_rowStarts.push_back(0);
        for (int y = 0; y < height; ++y) {
            _findRuns(filled.data() + static_cast<size_t>(y) * static_cast<size_t>(width), width);
            if (y > 0)
                _joinRows(m_rowStarts[static_cast<size_t>(y) - 1], m_rowStarts.back());
            m_rowStarts.push_back(m_runs.size());
        }
        _number();
    }

    size_t count() const { return m_count; }

    /// Calls visit(row, run) for all runs.
    template <typename Visit>
    void forEach(Visit visit) const
    {
        for (size_t y = 0; y + 1 < m_rowStarts.size(); ++y)
            for (size_t i = m_rowStarts[y]; i < m_rowStarts[y + 1]; ++i)
                visit(static_cast<int>(y), m_runs[i]);
    }

private:
    void _findRuns(const uint8_t *row, int width)
    {
        for (int x = 0; x < width; ++x) {
            if (!row[x])
                continue;
            const int first = x;
            while (x < width && row[x])
                ++x;
            m_runs.push_back({first, x, static_cast<int>(m_runs.size())});
        }
    }

    /// Every run points at an earlier one of its island, or at itself.
    int _root(int run)
    {
        while (_at(run).island != run) {
            _at(run).island = _at(_at(run).island).island;
            run = _at(run).island;
        }
        return run;
    }

    Run &_at(int run) { return m_runs[static_cast<size_t>(run)]; }

    void _joinRows(size_t above, size_t here)
    {
        size_t below = here;
        size_t i = above;
        while (i < here && below < m_runs.size()) {
            const Run &a = m_runs[i];
            const Run &b = m_runs[below];
            if (a.first < b.end && b.first < a.end) {
                const int one = _root(static_cast<int>(i));
                const int two = _root(static_cast<int>(below));
                _at(std::max(one, two)).island = std::min(one, two);
            }
            if (a.end < b.end)
                ++i;
            else
                ++below;
        }
    }

    void _number()
    {
        for (size_t i = 0; i < m_runs.size(); ++i) {
            const int parent = m_runs[i].island;
            const bool first = parent == static_cast<int>(i);
            m_runs[i].island = first ? static_cast<int>(m_count++) : _at(parent).island;
        }
    }

    std::vector<Run> m_runs;
    std::vector<size_t> m_rowStarts;
    size_t m_count = 0;
};

std::vector<double> meansOf(const FloatGrid &values, const Islands &islands)
{
    std::vector<double> sums(islands.count());
    std::vector<double> cells(islands.count());
    islands.forEach([&](int y, const Run &run) {
        const float *row = values.row(y);
        sums[static_cast<size_t>(run.island)] +=
            std::accumulate(row + run.first, row + run.end, 0.0);
        cells[static_cast<size_t>(run.island)] += run.end - run.first;
    });
    for (size_t i = 0; i < sums.size(); ++i)
        sums[i] /= cells[i];
    return sums;
}

} // namespace

std::vector<double> islandMeans(const FloatGrid &values, const CellMask &filled)
{
    return meansOf(values, Islands(filled, values.width, values.height));
}

void setIslandMeans(FloatGrid &values, const CellMask &filled, const std::vector<double> &means)
{
    const Islands islands(filled, values.width, values.height);
    const std::vector<double> now = meansOf(values, islands);
    islands.forEach([&](int y, const Run &run) {
        const size_t island = static_cast<size_t>(run.island);
        const float shift = static_cast<float>(means[island] - now[island]);
        float *row = values.row(y);
        for (int x = run.first; x < run.end; ++x)
            row[x] += shift;
    });
}

} // namespace marlowen
