#include "import/mesh/facetwide.h"

#ifdef WIDE_CODE

#include "import/mesh/facetcells.h"

#include <immintrin.h>

#define WIDE_INLINE __attribute__((always_inline, WIDE_CODE)) inline

namespace marlowen {

namespace {

constexpr int wideCount = 8;
/// Of eight numbers: with it the compiler does not take those left out for uninitialized ones.
constexpr __mmask8 allEight = 0xFF;
/// Cells of a row that are raised at a time.
constexpr int rowCells = 2 * wideCount;
constexpr __m512d wideCounts{0, 1, 2, 3, 4, 5, 6, 7};
constexpr __m512d countsInFour{0, 1, 2, 3, 0, 1, 2, 3};

WIDE_INLINE __m512d wide(double value)
{
    return _mm512_set1_pd(value);
}

WIDE_INLINE unsigned firstBits(int count)
{
    return _bzhi_u32(~0U, static_cast<unsigned>(count));
}

WIDE_INLINE __m512d pick(__mmask8 first, const __m512d &a, const __m512d &b)
{
    return _mm512_mask_mov_pd(b, first, a);
}

/// A value of a small facet at the cells of a row.
template <int groups>
struct WideSlope
{
    __m512d at[groups];
    __m512d step;

    WIDE_INLINE WideSlope(const FourSlopes &slope, size_t which)
        : step(wide(slope.perRow[which]))
    {
#pragma GCC unroll 4
        for (int g = 0; g < groups; ++g)
            at[g] =
                slope.first[which] + slope.perColumn[which] * (wideCounts + wide(g * wideCount));
    }
};

/// How far the cells of a row are outside one side of a small facet, with the tolerance.
template <int groups>
struct WideSide : WideSlope<groups>
{
    WIDE_INLINE WideSide(const FourSides &side, size_t which)
        : WideSlope<groups>(side.distance, which)
    {
#pragma GCC unroll 4
        for (int g = 0; g < groups; ++g)
            this->at[g] -= side.reach[which];
    }
};

/// Which numbers are negative in all of three.
WIDE_INLINE __mmask8 negatives(const __m512d &a, const __m512d &b, const __m512d &c)
{
    return _mm512_movepi64_mask(_mm512_castpd_si512(_mm512_and_pd(_mm512_and_pd(a, b), c)));
}

/// Draws a small facet in groups of eight columns; at the right edge of the grid they go on in the
/// row behind, which is only read.
template <int groups>
WIDE_INLINE void fillSmallIn(const FacetGrid &grid, const FourFacets &facets, size_t which)
{
    WideSide<groups> a(facets.sides[0], which);
    WideSide<groups> b(facets.sides[1], which);
    WideSide<groups> c(facets.sides[2], which);
    WideSlope<groups> plane(facets.height, which);
    const unsigned room =
        firstBits(std::min(grid.columns - facets.firstColumn[which], groups * wideCount));
#pragma GCC unroll 4
    for (int g = 0; g < groups; ++g)
        a.at[g] = pick(static_cast<__mmask8>(room >> (g * wideCount)), a.at[g], wide(farOutside));
    float *cells = cellAt(grid, facets.firstColumn[which], facets.firstRow[which]);
    const int stride = grid.columns;
    const int rows = facets.lastRow[which] - facets.firstRow[which] + 1;
    for (int r = 0; r < rows; ++r, cells += stride) {
#pragma GCC unroll 4
        for (int g = 0; g < groups; ++g) {
            // No -0: the reach that was taken off is not 0.
            const __mmask8 inside = negatives(a.at[g], b.at[g], c.at[g]);
            float *group = cells + g * wideCount;
            const __m256 heights = _mm512_maskz_cvtpd_ps(allEight, plane.at[g]);
            const __m256 raised = _mm256_max_ps(heights, _mm256_loadu_ps(group));
            _mm256_mask_storeu_ps(group, inside, raised);
            a.at[g] += a.step;
            b.at[g] += b.step;
            c.at[g] += c.step;
            plane.at[g] += plane.step;
        }
    }
}

/// Draws the facets of a part by fillSmallIn().
template <int groups>
WIDE_INLINE void fillAllIn(const FacetGrid &grid, std::span<const FourFacets> fours, BatchPart part)
{
    for (; part; part &= part - 1) {
        const auto [four, lane] = firstOf(part);
        fillSmallIn<groups>(grid, fours[four], lane);
    }
}

WIDE_INLINE void store(int *eight, const __m256i &values)
{
    _mm256_store_si256(reinterpret_cast<__m256i *>(eight), values);
}

/// Rows of a broad facet.
struct WideRows
{
    alignas(32) int first[wideCount];  ///< columns
    alignas(32) int counts[wideCount]; ///< of columns
    alignas(64) double heights[wideCount];

    WIDE_INLINE bool anyLong() const
    {
        const __m256i all = _mm256_load_si256(reinterpret_cast<const __m256i *>(counts));
        return _mm256_cmpgt_epi32_mask(all, _mm256_set1_epi32(rowCells)) != 0;
    }
    /// From row `row` on; behind the facet's last row that one again.
    WIDE_INLINE void find(const FourPlanes &planes, size_t lane, int row, int columns);
};

/// As findRowEnds().
WIDE_INLINE void WideRows::find(const FourPlanes &planes, size_t lane, int row, int columns)
{
    const __m512d last = wide(planes.lastRow[lane]);
    const __m512d y = _mm512_maskz_min_pd(allEight, wide(row) + wideCounts, last);
    const FourPlanes::Places &xs = planes.x, &ys = planes.y;
    const FourPlanes::Places &heightOf = planes.height, &reachOf = planes.reach;
    const __m512d ax = wide(xs[0][lane]), bx = wide(xs[1][lane]), cx = wide(xs[2][lane]);
    const __m512d ay = wide(ys[0][lane]), by = wide(ys[1][lane]), cy = wide(ys[2][lane]);
    const __mmask8 below = _mm512_cmp_pd_mask(y, by, _CMP_LT_OQ);
    const __m512d lowX = pick(below, ax, bx), highX = pick(below, bx, cx);
    const __m512d lowY = pick(below, ay, by), highY = pick(below, by, cy);
    const __m512d height = pick(below, wide(heightOf[FourPlanes::Lower][lane]),
                                wide(heightOf[FourPlanes::Upper][lane]));
    const __m512d reach =
        pick(below, wide(reachOf[FourPlanes::Lower][lane]), wide(reachOf[FourPlanes::Upper][lane]));
    const __mmask8 slopes = _mm512_cmp_pd_mask(height, wide(0.0), _CMP_GT_OQ);
    const __m512d a = (ax * (cy - y) + cx * (y - ay)) / heightOf[FourPlanes::Whole][lane];
    const __m512d crossed = (lowX * (highY - y) + highX * (y - lowY)) / height;
    const __m512d b = pick(slopes, crossed, bx);
    const __m512d reachA = wide(reachOf[FourPlanes::Whole][lane]);
    const __m512d reachB = pick(slopes, reach, wide(facetTolerance));
    const __mmask8 turned = _mm512_cmp_pd_mask(b, a, _CMP_LT_OQ);
    const __m512d low = pick(turned, b, a) - pick(turned, reachB, reachA);
    const __m512d high = pick(turned, a, b) + pick(turned, reachA, reachB);
    const __m512d up = _mm512_maskz_roundscale_pd(allEight, low, _MM_FROUND_TO_POS_INF);
    const __m512d down = _mm512_maskz_roundscale_pd(allEight, high, _MM_FROUND_TO_NEG_INF);
    const __m512d begin = _mm512_maskz_max_pd(allEight, up, wide(0.0));
    const __m512d end = _mm512_maskz_min_pd(allEight, down, wide(columns - 1));
    const __m512d size = _mm512_maskz_max_pd(allEight, end - begin + 1.0, wide(0.0));
    store(first, _mm512_maskz_cvttpd_epi32(allEight, begin));
    store(counts, _mm512_maskz_cvttpd_epi32(allEight, size));
    _mm512_store_pd(heights, planes.z[0][lane] + planes.perColumn[lane] * (begin - ax) +
                                 planes.perRow[lane] * (y - ay));
}

/// Changes of a plane's height along a row.
struct PlaneSteps
{
    __m512d inFour; ///< to cells 0 to 3 of four, twice
    __m512d perFour;

    WIDE_INLINE explicit PlaneSteps(double perColumn)
        : inFour(perColumn * countsInFour)
        , perFour(wide(perColumn * laneCount))
    {
    }
};

/// The cells of a row that a plane is still to raise. Heights are computed as by fillPlane().
struct WideRow
{
    __m512d low, high; ///< heights of the next cells
    float *cells;
    int left;

    /// Number `which` of the rows; `row` is its cell in column 0.
    WIDE_INLINE WideRow(float *row, const WideRows &rows, int which, const PlaneSteps &steps)
        : low(rows.heights[which] + steps.inFour)
        , cells(row + rows.first[which])
        , left(rows.counts[which])
    {
        low = _mm512_mask_add_pd(low, 0xF0, low, steps.perFour);
        high = low + steps.perFour + steps.perFour;
    }
    WIDE_INLINE void raise(__mmask16 wanted) const
    {
        const __m512 heights =
            _mm512_insertf32x8(_mm512_castps256_ps512(_mm512_maskz_cvtpd_ps(allEight, low)),
                               _mm512_maskz_cvtpd_ps(allEight, high), 1);
        const __m512 before = _mm512_maskz_loadu_ps(wanted, cells);
        _mm512_mask_storeu_ps(cells, wanted, _mm512_maskz_max_ps(wanted, heights, before));
    }
    /// Of no more than rowCells.
    WIDE_INLINE void raiseLast() const { raise(static_cast<__mmask16>(firstBits(left))); }
    WIDE_INLINE void raiseNext(const PlaneSteps &steps)
    {
        raise(static_cast<__mmask16>(~0U));
        low = high + steps.perFour + steps.perFour;
        high = low + steps.perFour + steps.perFour;
        cells += rowCells;
        left -= rowCells;
    }
    WIDE_INLINE void raiseAll(const PlaneSteps &steps)
    {
        while (left > rowCells)
            raiseNext(steps);
        raiseLast();
    }
};

WIDE_INLINE void fillBroadWide(const FacetGrid &grid, const FourPlanes &planes, size_t lane)
{
    const PlaneSteps steps(planes.perColumn[lane]);
    const int lastRow = planes.lastRow[lane];
    const int stride = grid.columns;
    WideRows rows;
    for (int row = planes.firstRow[lane]; row <= lastRow; row += wideCount) {
        rows.find(planes, lane, row, stride);
        const int count = std::min(wideCount, lastRow - row + 1);
        float *cells = cellAt(grid, 0, row);
        if (!rows.anyLong()) {
            for (int i = 0; i < count; ++i, cells += stride)
                WideRow(cells, rows, i, steps).raiseLast();
            continue;
        }
        // Two rows at a time: the next heights of a row wait for those before.
        for (int i = 0; i < count; i += 2, cells += 2 * static_cast<ptrdiff_t>(stride)) {
            WideRow a(cells, rows, i, steps);
            WideRow b(cells + stride, rows, i + 1, steps);
            b.left = i + 1 < count ? b.left : 0;
            while (std::min(a.left, b.left) > rowCells) {
                a.raiseNext(steps);
                b.raiseNext(steps);
            }
            a.raiseAll(steps);
            b.raiseAll(steps);
        }
    }
    fillBesideEdges(grid, planes, lane);
}

} // namespace

void WideCells::small(const FacetGrid &grid, std::span<const FourFacets> fours, BatchPart part)
{
    // By the number of groups, so that the processor rarely guesses wrong.
    constexpr size_t mostGroups = smallColumns / wideCount;
    static_assert(mostGroups == 4);
    std::array<BatchPart, mostGroups> parts{};
    for (size_t i = 0; i < fours.size() && part >> (i * laneCount) != 0; ++i) {
        const auto across = reinterpret_cast<__m128i>(fours[i].lastColumn - fours[i].firstColumn);
        const __m128i groups = _mm_srai_epi32(across, 3);
        for (size_t g = 0; g < mostGroups; ++g) {
            const BatchPart those =
                _mm_cmpeq_epi32_mask(groups, _mm_set1_epi32(static_cast<int>(g)));
            parts[g] |= those << (i * laneCount) & part;
        }
    }
    fillAllIn<1>(grid, fours, parts[0]);
    fillAllIn<2>(grid, fours, parts[1]);
    fillAllIn<3>(grid, fours, parts[2]);
    fillAllIn<4>(grid, fours, parts[3]);
}

void WideCells::broad(const FacetGrid &grid, std::span<const FourPlanes> planes, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        fillBroadWide(grid, planes[i / laneCount], i % laneCount);
}

} // namespace marlowen

#endif
