#include "import/deband/debandblocks.h"

#include "relief/grid/cellcode.h"

namespace marlowen {

BlockJoiner::BlockJoiner(int width)
    : m_width(static_cast<size_t>(width))
{
    for (auto *part : {&m_columns.low, &m_columns.high, &m_columns.least, &m_columns.most})
        part->resize(m_width + 1);
    m_columns.whole.resize(m_width + 1);
}

void BlockJoiner::join(const JoinRows &rows, float step, const BlockRow &blocks)
{
    _joinColumns(rows, m_columns, static_cast<int>(m_width));
    for (auto *part : {&m_columns.low, &m_columns.high, &m_columns.least, &m_columns.most})
        part->back() = (*part)[m_width - 1];
    m_columns.whole.back() = m_columns.whole[m_width - 1];
    _joinPairs(m_columns, step, blocks, static_cast<int>((m_width + 1) / 2));
}

CELL_LOOP void BlockJoiner::_joinColumns(const JoinRows &rows, Columns &columns, int count)
{
    const JoinRows r = rows;
    float *low = columns.low.data();
    float *high = columns.high.data();
    float *least = columns.least.data();
    float *most = columns.most.data();
    uint8_t *whole = columns.whole.data();
#pragma omp simd
    for (int x = 0; x < count; ++x) {
        const float a = r.values[0][x];
        const float b = r.values[1][x];
        const float lowA = a - r.reach[0][x];
        const float lowB = b - r.reach[1][x];
        const float highA = a + r.reach[0][x];
        const float highB = b + r.reach[1][x];
        low[x] = lowA > lowB ? lowA : lowB;
        high[x] = highA < highB ? highA : highB;
        least[x] = a < b ? a : b;
        most[x] = a > b ? a : b;
        whole[x] =
            static_cast<uint8_t>((r.flags[0][x] != 0 ? 1 : 0) & (r.flags[1][x] != 0 ? 1 : 0));
    }
}

CELL_LOOP void BlockJoiner::_joinPairs(const Columns &columns, float step, const BlockRow &blocks,
                                       int count)
{
    const BlockRow b = blocks;
    const float *lows = columns.low.data();
    const float *highs = columns.high.data();
    const float *leasts = columns.least.data();
    const float *mosts = columns.most.data();
    const uint8_t *whole = columns.whole.data();
#pragma omp simd
    for (int i = 0; i < count; ++i) {
        const int x = 2 * i;
        const float low = lows[x] > lows[x + 1] ? lows[x] : lows[x + 1];
        const float high = highs[x] < highs[x + 1] ? highs[x] : highs[x + 1];
        const float least = leasts[x] < leasts[x + 1] ? leasts[x] : leasts[x + 1];
        const float most = mosts[x] > mosts[x + 1] ? mosts[x] : mosts[x + 1];
        const float half = 0.5F * (high - low);
        const float quarter = 0.25F * (most - least);
        b.values[i] = 0.5F * (low + high);
        b.reach[i] = half > quarter ? half : quarter;
        b.valid[i] = static_cast<uint8_t>(whole[x] & whole[x + 1] & (most - least <= step ? 1 : 0));
    }
}

} // namespace marlowen
