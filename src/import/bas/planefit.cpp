#include "import/bas/planefit.h"

#include "relief/grid/cellcode.h"

#include <algorithm>
#include <array>

namespace marlowen {
namespace {

constexpr int windowReach = 7;
/// Window weights along an axis: a box of 11 nodes blurred by a box of 5, so that a step enters a
/// window gradually.
constexpr std::array<float, 2 * windowReach + 1> windowWeights{1, 2, 3, 4, 5, 5, 5, 5,
                                                               5, 5, 5, 4, 3, 2, 1};
constexpr float windowWeightSum = 55.0F;
/// Keeps the fit defined where a window holds a single row of cells; far below the variance of a
/// full window (about 12).
constexpr float ridge = 0.02F;
/// The distance of a block from the mean of the blocks within this reach is a ripple: it is no sign
/// of a step. Where a block within the reach has empty cells ripples cannot be told from slopes.
constexpr int rippleReach = 3;
/// So windows with empty cells may deviate more: the square of the threshold is this many times as
/// large, fully so from a share of 1 / emptyRoom of empty cells on.
constexpr float outlineRoom = 4.0F;
constexpr float emptyRoom = 8.0F;
/// Rows are worked on in pieces whose sums stay in the fastest cache.
constexpr int pieceNodes = 256;

/// Moments of the filled cells of a row of windows: count (n) and heights (h), by powers of x.
enum RowSum { N, Nx, Nxx, H, Hx, Hh };
static_assert(Hh + 1 == planeSums);

/// Filled share, mean height times share, and mean height squared times share of the blocks of a
/// row, with windowReach zeros at both ends.
struct BlockRow
{
    explicit BlockRow(int columns)
        : share(static_cast<size_t>(columns + 2 * windowReach))
        , height(share.size())
        , square(share.size())
    {
    }
    std::vector<float> share;
    std::vector<float> height;
    std::vector<float> square;
};

CELL_LOOP void addCells(const float *heights, const uint8_t *filled, float *sums, int count)
{
    float *shares = sums + count;
#pragma omp simd
    for (int x = 0; x < count; ++x) {
        sums[x] += heights[x];
        shares[x] += static_cast<float>(filled[x]);
    }
}

/// Sums of blocks of the row of column sums, scaled to means over whole blocks.
void sumBlocks(const std::vector<float> &columnSums, int width, int spacing, BlockRow &row)
{
    const float scale = 1.0F / static_cast<float>(spacing * spacing);
    size_t node = windowReach;
    for (int first = 0; first < width; first += spacing, ++node) {
        float height = 0.0F;
        float share = 0.0F;
        for (int x = first; x < std::min(width, first + spacing); ++x) {
            height += columnSums[static_cast<size_t>(x)];
            share += columnSums[static_cast<size_t>(width + x)];
        }
        row.share[node] = share * scale;
        row.height[node] = height * scale;
        row.square[node] = share > 0.0F ? height * height / share * scale : 0.0F;
    }
}

struct BlockPiece
{
    const float *share;
    const float *height;
    const float *square;
};

CELL_LOOP void addRowMoments(const BlockPiece &blocks, int tap, float (*sums)[pieceNodes],
                             int count)
{
    const float k = windowWeights[static_cast<size_t>(tap)] / windowWeightSum;
    const float kx = k * static_cast<float>(tap - windowReach);
    const float kxx = kx * static_cast<float>(tap - windowReach);
    const BlockPiece b{blocks.share + tap, blocks.height + tap, blocks.square + tap};
#pragma omp simd
    for (int i = 0; i < count; ++i) {
        sums[N][i] += k * b.share[i];
        sums[Nx][i] += kx * b.share[i];
        sums[Nxx][i] += kxx * b.share[i];
        sums[H][i] += k * b.height[i];
        sums[Hx][i] += kx * b.height[i];
        sums[Hh][i] += k * b.square[i];
    }
}

CELL_LOOP void addBlocks(const float *from, float *to, int count)
{
#pragma omp simd
    for (int i = 0; i < count; ++i)
        to[i] += from[i];
}

/// Squares without the ripples of the blocks; `around` has the sums of the columns of shares and
/// heights, beginning rippleReach columns before the first block.
CELL_LOOP void takeRipples(const BlockPiece &blocks, const BlockPiece &around, float *squares,
                           int count)
{
    const BlockPiece b = blocks;
    const BlockPiece a = around;
    constexpr int side = 2 * rippleReach + 1;
#pragma omp simd
    for (int i = 0; i < count; ++i) {
        float share = 0.0F;
        float height = 0.0F;
        for (int d = 0; d < side; ++d) {
            share += a.share[i + d];
            height += a.height[i + d];
        }
        const float ripple = b.height[i] - height * (1.0F / (side * side));
        squares[i] = b.square[i] - (share >= side * side - 0.01F ? ripple * ripple : 0.0F);
    }
}

/// The rows of blocks around a row, read in their order.
class BlockRows
{
public:
    BlockRows(int columns, int rows)
        : m_columns(columns)
        , m_rows(rows)
        , m_ring(2 * rippleReach + 1, BlockRow(columns))
        , m_calm(columns)
        , m_shares(static_cast<size_t>(columns + 2 * rippleReach))
        , m_heights(m_shares.size())
    {
    }

    bool has(int y) const { return y >= 0 && y < m_rows; }
    BlockRow &at(int y) { return m_ring[static_cast<size_t>(y + rippleReach) % m_ring.size()]; }

    /// Row y with squares that leave the ripples out.
    const BlockRow &calm(int y)
    {
        const BlockRow &row = at(y);
        std::fill(m_shares.begin(), m_shares.end(), 0.0F);
        std::fill(m_heights.begin(), m_heights.end(), 0.0F);
        for (int near = y - rippleReach; near <= y + rippleReach; ++near) {
            if (!has(near))
                continue;
            addBlocks(at(near).share.data() + windowReach, m_shares.data() + rippleReach,
                      m_columns);
            addBlocks(at(near).height.data() + windowReach, m_heights.data() + rippleReach,
                      m_columns);
        }
        m_calm.share = row.share;
        m_calm.height = row.height;
        takeRipples({row.share.data() + windowReach, row.height.data() + windowReach,
                     row.square.data() + windowReach},
                    {m_shares.data(), m_heights.data(), nullptr},
                    m_calm.square.data() + windowReach, m_columns);
        return m_calm;
    }

private:
    int m_columns;
    int m_rows;
    std::vector<BlockRow> m_ring;
    BlockRow m_calm;
    std::vector<float> m_shares;
    std::vector<float> m_heights;
};

void sumRowMoments(const BlockRow &blocks, NodeGrids &sums, int y)
{
    float piece[planeSums][pieceNodes];
    for (int first = 0; first < sums.columns(); first += pieceNodes) {
        const int count = std::min(pieceNodes, sums.columns() - first);
        std::fill_n(&piece[0][0], planeSums * pieceNodes, 0.0F);
        for (int tap = 0; tap <= 2 * windowReach; ++tap)
            addRowMoments({blocks.share.data() + first, blocks.height.data() + first,
                           blocks.square.data() + first},
                          tap, piece, count);
        for (int part = 0; part < planeSums; ++part)
            std::copy_n(piece[part], count, sums.row(part, y) + first);
    }
}

/// Moments of whole windows.
enum WindowSum { S, Sx, Sy, Sxx, Sxy, Syy, T, Tx, Ty, Tt, windowSums };

CELL_LOOP void addColumnMoments(const float *const *rows, int tap, float (*sums)[pieceNodes],
                                int count)
{
    const float k = windowWeights[static_cast<size_t>(tap)] / windowWeightSum;
    const float ky = k * static_cast<float>(tap - windowReach);
    const float kyy = ky * static_cast<float>(tap - windowReach);
    const float *n = rows[N];
    const float *nx = rows[Nx];
    const float *nxx = rows[Nxx];
    const float *h = rows[H];
    const float *hx = rows[Hx];
    const float *hh = rows[Hh];
#pragma omp simd
    for (int i = 0; i < count; ++i) {
        sums[S][i] += k * n[i];
        sums[Sy][i] += ky * n[i];
        sums[Syy][i] += kyy * n[i];
        sums[Sx][i] += k * nx[i];
        sums[Sxy][i] += ky * nx[i];
        sums[Sxx][i] += k * nxx[i];
        sums[T][i] += k * h[i];
        sums[Ty][i] += ky * h[i];
        sums[Tx][i] += k * hx[i];
        sums[Tt][i] += k * hh[i];
    }
}

/// Fits the planes and turns their deviations into gains and weights.
CELL_LOOP void fitPiece(const float (*sums)[pieceNodes], float threshold, float *const *model,
                        int count)
{
    const float perDeviation = 1.0F / (threshold * threshold);
    float *weight = model[Weight];
    float *gain = model[Gain];
    float *level = model[Level];
    float *slopeX = model[SlopeX];
    float *slopeY = model[SlopeY];
#pragma omp simd
    for (int i = 0; i < count; ++i) {
        const float share = sums[S][i];
        const float per = 1.0F / (share > 1e-6F ? share : 1.0F);
        const float x = sums[Sx][i] * per;
        const float y = sums[Sy][i] * per;
        const float mean = sums[T][i] * per;
        const float xx = sums[Sxx][i] * per - x * x + ridge;
        const float yy = sums[Syy][i] * per - y * y + ridge;
        const float xy = sums[Sxy][i] * per - x * y;
        const float hx = sums[Tx][i] * per - mean * x;
        const float hy = sums[Ty][i] * per - mean * y;
        const float perArea = 1.0F / (xx * yy - xy * xy);
        const float px = (hx * yy - hy * xy) * perArea;
        const float py = (hy * xx - hx * xy) * perArea;
        const float rest = sums[Tt][i] * per - mean * mean - px * hx - py * hy;
        const float gap = emptyRoom * (1.0F - share);
        const float within = gap > 0.0F ? (gap < 1.0F ? gap : 1.0F) : 0.0F;
        const float room = 1.0F + (outlineRoom - 1.0F) * within;
        const float ratio = (rest > 0.0F ? rest : 0.0F) * perDeviation / room;
        const float fit = 1.0F / (1.0F + ratio);
        const float w = share > 1e-6F ? share * fit * fit * fit : 0.0F;
        const float plane = w / (1.0F + ratio * ratio);
        weight[i] = w;
        gain[i] = w - plane;
        level[i] = plane * (mean - px * x - py * y);
        slopeX[i] = plane * px;
        slopeY[i] = plane * py;
    }
}

void fitRow(const NodeGrids &sums, NodeGrids &model, int y, float threshold)
{
    float piece[windowSums][pieceNodes];
    for (int first = 0; first < sums.columns(); first += pieceNodes) {
        const int count = std::min(pieceNodes, sums.columns() - first);
        std::fill_n(&piece[0][0], windowSums * pieceNodes, 0.0F);
        for (int tap = 0; tap <= 2 * windowReach; ++tap) {
            const int from = y + tap - windowReach;
            if (from < 0 || from >= sums.rows())
                continue;
            std::array<const float *, planeSums> rows;
            for (int part = 0; part < planeSums; ++part)
                rows[static_cast<size_t>(part)] = sums.row(part, from) + first;
            addColumnMoments(rows.data(), tap, piece, count);
        }
        std::array<float *, modelParts> out;
        for (int part = 0; part < modelParts; ++part)
            out[static_cast<size_t>(part)] = model.row(part, y) + first;
        fitPiece(piece, threshold, out.data(), count);
    }
}

/// Reads the rows of cells that a row of nodes covers.
void readBlocks(const FilledHeights &input, int node, std::vector<float> &columnSums)
{
    std::fill(columnSums.begin(), columnSums.end(), 0.0F);
    const int first = node * input.spacing;
    for (int y = first; y < std::min(input.heights.height, first + input.spacing); ++y)
        addCells(input.heights.row(y),
                 input.filled.data() + static_cast<size_t>(y) * input.heights.columns(),
                 columnSums.data(), input.heights.width);
}

} // namespace

bool sumRows(const FilledHeights &input, NodeGrids &sums, WorkMeter &meter)
{
    const qsizetype cellsPerRow = static_cast<qsizetype>(input.heights.width) * input.spacing;
    return meter.rows(sums.rows(), cellsPerRow, [&](int first, int end) {
        std::vector<float> columnSums(2 * input.heights.columns());
        BlockRows blocks(sums.columns(), sums.rows());
        const auto read = [&](int y) {
            if (!blocks.has(y))
                return;
            readBlocks(input, y, columnSums);
            sumBlocks(columnSums, input.heights.width, input.spacing, blocks.at(y));
        };
        for (int y = first - rippleReach; y < first + rippleReach; ++y)
            read(y);
        for (int y = first; y < end; ++y) {
            read(y + rippleReach);
            sumRowMoments(blocks.calm(y), sums, y);
        }
    });
}

bool fitPlanes(const NodeGrids &sums, float threshold, NodeGrids &model, WorkMeter &meter)
{
    return meter.rows(model.rows(), 4 * static_cast<qsizetype>(model.columns()),
                      [&](int first, int end) {
                          for (int y = first; y < end; ++y)
                              fitRow(sums, model, y, threshold);
                      });
}

} // namespace marlowen
