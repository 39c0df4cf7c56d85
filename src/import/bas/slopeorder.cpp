#include "import/bas/slopeorder.h"

#include "relief/grid/cellcode.h"

#include <algorithm>
#include <array>

namespace marlowen {
namespace {

/// How far a pair is moved of what would just do, a round each. More than 1 needs fewer rounds; the
/// last one takes no more from the detail than it has to.
constexpr std::array<float, 3> eagerness{1.42F, 1.42F, 1.0F};

/// Rows that are worked on together, even; they stay in the cache.
constexpr int blockRows = 32;

/// A pair of rows, or a row and itself one cell further.
struct PairRow
{
    const float *reference;
    const float *referenceNext;
    const uint8_t *filled;
    const uint8_t *filledNext;
    float share;
    float part; ///< that each of the two moves of what is wanting
};

/// By how much the two of a pair are to move together, the first down and the next up.
CELL_INLINE inline float wanting(float wanted, float is)
{
    const float rise = wanted > is ? wanted - is : 0.0F;
    const float fall = wanted < is ? wanted - is : 0.0F;
    return wanted > 0.0F ? rise : (wanted < 0.0F ? fall : 0.0F);
}

CELL_LOOP void movePairs(const PairRow &row, float *first, float *next, int count)
{
    const PairRow r = row;
#pragma omp simd
    for (int x = 0; x < count; ++x) {
        const float both = static_cast<float>(r.filled[x] & r.filledNext[x]);
        const float wanted = r.share * (r.referenceNext[x] - r.reference[x]) * both;
        const float move = r.part * wanting(wanted, next[x] - first[x]);
        first[x] -= move;
        next[x] += move;
    }
}

/// Moves of the pairs along a row that begin at even or at odd cells; 0 for the others. `moves` has
/// one place more at both ends.
CELL_LOOP void movesAlong(const PairRow &row, const float *values, int odd, float *moves, int count)
{
    const PairRow r = row;
#pragma omp simd
    for (int x = 0; x < count; ++x) {
        const float both = static_cast<float>(r.filled[x] & r.filledNext[x] & ((x ^ odd ^ 1) & 1));
        const float wanted = r.share * (r.referenceNext[x] - r.reference[x]) * both;
        moves[x + 1] = r.part * wanting(wanted, values[x + 1] - values[x]);
    }
}

CELL_LOOP void moveAlong(const float *moves, float *values, int count)
{
#pragma omp simd
    for (int x = 0; x < count; ++x)
        values[x] += moves[x] - moves[x + 1];
}

/// The rounds over a surface.
class SlopeOrder
{
public:
    SlopeOrder(const GridView &reference, const CellMask &filled, float share, FloatGrid &surface)
        : m_reference(reference)
        , m_filled(filled)
        , m_share(share)
        , m_surface(surface)
    {
    }

    void beginRound(float eager) { m_part = 0.5F * eager; }
    /// All pairs within the block of rows that begins at `first`. The pairs between odd rows and
    /// the next ones come after those on both sides, so the result does not depend on the blocks.
    void within(int first, std::vector<float> &moves)
    {
        const int end = std::min(first + blockRows, m_surface.height);
        for (int y = first; y < end; y += 2) {
            _along(y, moves);
            if (y + 1 < end) {
                _along(y + 1, moves);
                across(y);
            }
            if (y > first)
                across(y - 1);
        }
    }
    /// The pairs between row y and the next one.
    void across(int y)
    {
        movePairs({m_reference.row(y), m_reference.row(y + 1), _filled(y), _filled(y + 1), m_share,
                   m_part},
                  m_surface.row(y), m_surface.row(y + 1), m_surface.width);
    }

private:
    /// The pairs along row y; `moves` has a place more than the row and zeros at both ends.
    void _along(int y, std::vector<float> &moves)
    {
        const PairRow row{m_reference.row(y),
                          m_reference.row(y) + 1,
                          _filled(y),
                          _filled(y) + 1,
                          m_share,
                          m_part};
        for (const int odd : {0, 1}) {
            movesAlong(row, m_surface.row(y), odd, moves.data(), m_surface.width - 1);
            moveAlong(moves.data(), m_surface.row(y), m_surface.width);
        }
    }
    const uint8_t *_filled(int y) const
    {
        return m_filled.data() + static_cast<size_t>(y) * m_surface.columns();
    }

    GridView m_reference;
    const CellMask &m_filled;
    float m_share;
    float m_part = 0.5F;
    FloatGrid &m_surface;
};

} // namespace

bool keepSlopeSigns(const GridView &reference, const CellMask &filled, float share,
                    FloatGrid &surface, WorkMeter &meter)
{
    SlopeOrder order(reference, filled, share, surface);
    const int blocks = (surface.height + blockRows - 1) / blockRows;
    const auto within = [&](int first, int end) {
        std::vector<float> moves(surface.columns() + 1);
        for (int block = first; block < end; ++block)
            order.within(block * blockRows, moves);
    };
    const auto between = [&](int first, int end) {
        for (int block = std::max(first, 1); block < end; ++block)
            order.across(block * blockRows - 1);
    };
    const qsizetype blockCells = static_cast<qsizetype>(surface.width) * blockRows;
    for (const float eager : eagerness) {
        order.beginRound(eager);
        if (!meter.rows(blocks, blockCells, within) || !meter.rows(blocks, surface.width, between))
            return false;
    }
    return true;
}

} // namespace marlowen
