#include "import/bas/coarserow.h"
#include "import/bas/poissonlevels.h"

#include "relief/grid/cellcode.h"

#include <algorithm>

namespace marlowen {
namespace {

/// Pointers to the rows around a row of cells.
struct FineRow
{
    const float *above;
    const float *here;
    const float *below;
    const float *rhs;
    const uint8_t *links;
};

/// Relaxes a row of which row.here is a copy with a zero before and after. (Reading back what was
/// just written would hold up the vector loop.)
CELL_LOOP void relaxCells(const FineRow &row, float *surface, int count, int colour,
                          float screening)
{
    const FineRow r = row;
#pragma omp simd
    for (int x = 0; x < count; ++x) {
        const float around = (r.above[x] + r.below[x]) + (r.here[x] + r.here[x + 2]);
        const float diagonal = static_cast<float>(r.links[x]) - 1.0F + screening;
        const float value = (r.rhs[x] + around) / diagonal;
        // Factors instead of branches, which would hold up the vector loop as well.
        const float here = r.here[x + 1];
        const float change = static_cast<float>((x ^ colour ^ 1) & 1) * (value - here);
        surface[x] = here + (r.links[x] != 0 ? change : 0.0F);
    }
}

/// Adds the residual of a row to sums of its columns.
CELL_LOOP void addRest(const FineRow &row, float *sums, int count, float screening)
{
    const FineRow r = row;
    const int last = count - 1;
#pragma omp simd
    for (int x = 1; x < last; ++x) {
        const float around = (r.above[x] + r.below[x]) + (r.here[x - 1] + r.here[x + 1]);
        const float diagonal = static_cast<float>(r.links[x]) - 1.0F + screening;
        const float rest = r.rhs[x] + around - diagonal * r.here[x];
        sums[x] += r.links[x] != 0 ? rest : 0.0F;
    }
    for (int x = 0; x < count; x += std::max(1, last)) {
        const float sides = last == 0 ? 0.0F : r.here[x == 0 ? 1 : last - 1];
        const float diagonal = static_cast<float>(r.links[x]) - 1.0F + screening;
        const float rest = r.rhs[x] + ((r.above[x] + r.below[x]) + sides) - diagonal * r.here[x];
        sums[x] += r.links[x] != 0 ? rest : 0.0F;
    }
}

CELL_LOOP void addCorrection(const float *correction, const uint8_t *filled, float *surface,
                             int count)
{
#pragma omp simd
    for (int x = 0; x < count; ++x)
        surface[x] += filled[x] != 0 ? correction[x] : 0.0F;
}

/// 1 + the number of filled side neighbours of the filled cells of a row; 0 in empty ones.
CELL_LOOP void countRow(const uint8_t *above, const uint8_t *here, const uint8_t *below,
                        uint8_t *links, int count)
{
    const int last = count - 1;
#pragma omp simd
    for (int x = 1; x < last; ++x) {
        const int all = 1 + here[x - 1] + here[x + 1] + above[x] + below[x];
        links[x] = static_cast<uint8_t>(all * here[x]);
    }
    for (int x = 0; x < count; x += std::max(1, last)) {
        const int side = last == 0 ? 0 : here[x == 0 ? 1 : last - 1];
        links[x] = static_cast<uint8_t>((1 + side + above[x] + below[x]) * here[x]);
    }
}

} // namespace

FineLevel::FineLevel(FloatGrid &surface, const FloatGrid &rhs, const CellMask &filled,
                     float screening)
    : m_surface(surface)
    , m_rhs(rhs)
    , m_screening(screening)
    , m_filled(filled)
    , m_zeros(surface.columns())
    , m_noCells(surface.columns())
{
}

const float *FineLevel::_rowOrZeros(int y) const
{
    return y < 0 || y >= m_surface.height ? m_zeros.data() : m_surface.row(y);
}

const uint8_t *FineLevel::_filled(int y) const
{
    return y < 0 || y >= m_surface.height
               ? m_noCells.data()
               : m_filled.data() + static_cast<size_t>(y) * m_surface.columns();
}

void FineLevel::_countLinks(int y, CellMask &links) const
{
    countRow(_filled(y - 1), _filled(y), _filled(y + 1), links.data(), m_surface.width);
}

bool FineLevel::relax(WorkMeter &meter)
{
    const auto relaxRow = [this](int y, int colour, std::vector<float> &bordered) {
        float *here = m_surface.row(y);
        CellMask links(m_surface.columns());
        _countLinks(y, links);
        std::copy_n(here, m_surface.width, bordered.data() + 1);
        relaxCells(
            {_rowOrZeros(y - 1), bordered.data(), _rowOrZeros(y + 1), m_rhs.row(y), links.data()},
            here, m_surface.width, (y + colour) & 1, m_screening);
    };
    return relaxByColours(m_surface.height, m_surface.width, relaxRow, meter);
}

bool FineLevel::restrictTo(CoarseProblem &coarse, WorkMeter &meter)
{
    return meter.rows(coarse.rhs.height, 2 * m_surface.width, [&](int first, int end) {
        std::vector<float> sums(m_surface.columns());
        CellMask links(m_surface.columns());
        for (int row = first; row < end; ++row) {
            std::fill(sums.begin(), sums.end(), 0.0F);
            for (int y = 2 * row; y < std::min(2 * row + 2, m_surface.height); ++y) {
                _countLinks(y, links);
                addRest({_rowOrZeros(y - 1), m_surface.row(y), _rowOrZeros(y + 1), m_rhs.row(y),
                         links.data()},
                        sums.data(), m_surface.width, m_screening);
            }
            sumPairs(sums, {coarse.rhs.row(row) + 1, (sums.size() + 1) / 2});
        }
    });
}

bool FineLevel::correctFrom(const CoarseProblem &coarse, WorkMeter &meter)
{
    return meter.rows(m_surface.height, m_surface.width, [&](int first, int end) {
        CoarseRow correction(coarse);
        for (int y = first; y < end; ++y)
            addCorrection(correction.compute(y).data(), _filled(y), m_surface.row(y),
                          m_surface.width);
    });
}

bool FineLevel::coarsen(CoarseProblem &coarse, WorkMeter &meter) const
{
    const int width = m_surface.width;
    const int height = m_surface.height;
    const auto addRow = [&](int y) {
        const uint8_t *here = _filled(y);
        const uint8_t *below = _filled(y + 1);
        float *mass = coarse.mass.row(y / 2) + 1;
        float *east = coarse.east.row(y / 2) + 1;
        float *south = coarse.south.row(y / 2) + 1;
        for (int x = 0; x < width; ++x) {
            if (here[x] == 0)
                continue;
            mass[x / 2] += 1.0F;
            if (x % 2 != 0 && x + 1 < width && here[x + 1] != 0)
                east[x / 2] += 0.5F;
            if (y % 2 != 0 && below[x] != 0)
                south[x / 2] += 0.5F;
        }
    };
    return meter.rows((height + 1) / 2, 2 * width, [&](int first, int end) {
        for (int y = 2 * first; y < std::min(2 * end, height); ++y)
            addRow(y);
    });
}

} // namespace marlowen
