#include "import/mesh/facetrows.h"

#include "import/mesh/facetcells.h"
#include "import/mesh/facetwide.h"

#include <algorithm>
#include <vector>

namespace marlowen {

namespace {

/// What drawing costs, in half nanoseconds beside one for each cell of the box.
constexpr double facetCost = 64.0;
constexpr double smallRowCost = 8.0;
constexpr double largeRowCost = 64.0;

/// A facet that is a line as seen from y: the outline of its three edges.
CELL_INLINE inline void fillAlongRow(float *row, int columns, const FacetCorners &corners)
{
    const auto end = [&](size_t i) { return Span{corners[i].x, corners[i].z, facetTolerance}; };
    fillSpan(row, columns, end(0), end(1));
    fillSpan(row, columns, end(1), end(2));
    fillSpan(row, columns, end(2), end(0));
}

/// A facet of any shape: every row from where it meets the edges.
CELL_INLINE inline void fillNarrow(const FacetGrid &grid, const FourPlanes &planes, size_t lane)
{
    const int firstRow = planes.firstRow[lane];
    const Edges edges = planes.edges(lane);
    if (edges.whole.low.y == edges.whole.high.y) {
        fillAlongRow(cellAt(grid, 0, firstRow), grid.columns,
                     {edges.whole.low, edges.lower.high, edges.whole.high});
        return;
    }
    for (int r = firstRow; r <= planes.lastRow[lane]; ++r) {
        const auto [a, b] = rowEnds(edges, r);
        fillSpan(cellAt(grid, 0, r), grid.columns, a, b);
    }
    fillBesideEdges(grid, planes, lane);
}

CELL_INLINE inline BatchPart anyOf(const FourMasks &bits)
{
    return static_cast<BatchPart>(bits[0] | bits[1] | bits[2] | bits[3]);
}

/// Some facets that are drawn together, all those of one kind in a row: the processor then rarely
/// guesses wrong.
struct FacetBatch
{
    const TriangleMesh &mesh;
    const CellPlacement &placement;
    const FacetGrid &grid;
    std::span<const quint32> triangles; ///< at most facetsAtOnce
    std::array<FourFacets, foursAtOnce> fours;
    std::array<FourPlanes, foursAtOnce> planes;
    BatchPart small, uneven, broad, narrow;

    // Without values before find().
    CELL_INLINE FacetBatch(const TriangleMesh &ofMesh, const CellPlacement &placed,
                           const FacetGrid &drawn)
        : mesh(ofMesh)
        , placement(placed)
        , grid(drawn)
    {
    }

    CELL_INLINE void find(std::span<const quint32> numbers)
    {
        triangles = numbers;
        const auto triangle = [this](size_t n) { return mesh.triangles.data() + triangles[n]; };
        for (size_t i = 0; i < triangles.size(); i += laneCount)
            fours[i / laneCount].find({mesh, fourFrom(i, triangles.size(), triangle), placement},
                                      grid);
        FourMasks smalls{}, unevens{}, broads{}, narrows{};
        for (size_t i = 0; i < triangles.size(); i += laneCount) {
            const FourFacets &four = fours[i / laneCount];
            const auto left = static_cast<long long>(triangles.size() - i);
            const FourMasks bits =
                (FourMasks{0, 1, 2, 3} < left) & (FourMasks{1, 2, 4, 8} << static_cast<int>(i));
            smalls |= four.small & bits;
            unevens |= four.uneven & bits;
            broads |= four.broad & bits;
            narrows |= four.narrow & bits;
        }
        small = anyOf(smalls);
        uneven = anyOf(unevens);
        broad = anyOf(broads);
        narrow = anyOf(narrows);
    }

    /// Of a part of the facets, in their order. Returns how many these are.
    CELL_INLINE size_t findPlanes(BatchPart part)
    {
        std::array<quint32, facetsAtOnce> numbers;
        size_t count = 0;
        for (; part; part &= part - 1, ++count) {
            const auto [four, from] = firstOf(part);
            FourPlanes &plane = planes[count / laneCount];
            const size_t to = count % laneCount;
            plane.firstColumn[to] = fours[four].firstColumn[from];
            plane.lastColumn[to] = fours[four].lastColumn[from];
            plane.firstRow[to] = std::max(fours[four].firstRow[from], grid.firstRow);
            plane.lastRow[to] = std::min(fours[four].lastRow[from], grid.endRow - 1);
            numbers[count] = triangles[four * laneCount + from];
        }
        const auto triangle = [&](size_t n) { return mesh.triangles.data() + numbers[n]; };
        for (size_t i = 0; i < count; i += laneCount)
            planes[i / laneCount].find({mesh, fourFrom(i, count, triangle), placement});
        return count;
    }
};

template <typename Cells>
CELL_INLINE inline void drawAll(const TriangleMesh &mesh, std::span<const quint32> numbers,
                                const CellPlacement &placement, const FacetGrid &grid)
{
    FacetBatch batch(mesh, placement, grid);
    for (size_t first = 0; first < numbers.size(); first += facetsAtOnce) {
        batch.find(numbers.subspan(first, std::min(facetsAtOnce, numbers.size() - first)));
        Cells::small(grid, batch.fours, batch.small);
        for (BatchPart part = batch.uneven; part; part &= part - 1) {
            const auto [four, lane] = firstOf(part);
            fillSmall<true>(grid, batch.fours[four], lane);
        }
        Cells::broad(grid, batch.planes, batch.findPlanes(batch.broad));
        const size_t narrow = batch.findPlanes(batch.narrow);
        for (size_t i = 0; i < narrow; ++i)
            fillNarrow(grid, batch.planes[i / laneCount], i % laneCount);
    }
}

__attribute__((noinline)) void drawPlain(const TriangleMesh &mesh, std::span<const quint32> numbers,
                                         const CellPlacement &placement, const FacetGrid &grid)
{
    drawAll<CellsByFour>(mesh, numbers, placement, grid);
}

#ifdef WIDE_CODE
__attribute__((noinline, target("avx2"))) void drawByFour(const TriangleMesh &mesh,
                                                          std::span<const quint32> numbers,
                                                          const CellPlacement &placement,
                                                          const FacetGrid &grid)
{
    drawAll<CellsByFour>(mesh, numbers, placement, grid);
}

__attribute__((noinline, WIDE_CODE)) void drawByEight(const TriangleMesh &mesh,
                                                      std::span<const quint32> numbers,
                                                      const CellPlacement &placement,
                                                      const FacetGrid &grid)
{
    drawAll<WideCells>(mesh, numbers, placement, grid);
}
#endif

std::vector<DrawFacets> findWays()
{
    std::vector<DrawFacets> ways{drawPlain};
#ifdef WIDE_CODE
    if (__builtin_cpu_supports("avx2"))
        ways.push_back(drawByFour);
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
        __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512bw") &&
        __builtin_cpu_supports("bmi2"))
        ways.push_back(drawByEight);
#endif
    return ways;
}

} // namespace

CELL_LOOP double findRows(const TriangleMesh &mesh, quint32 first, const CellPlacement &placement,
                          const FacetGrid &grid, std::span<RowReach> reaches)
{
    const FourDoubles lastRow = FourDoubles{} + (grid.rows - 1);
    const size_t count = reaches.size();
    const MeshTriangle *start = mesh.triangles.data() + first;
    FourDoubles cost{};
    for (size_t i = 0; i < count; i += laneCount) {
        const FourCorners corners(mesh, fourFrom(i, count, [start](size_t n) { return start + n; }),
                                  placement);
        const FourReaches across(corners.x);
        const FourReaches along(corners.y);
        FourDoubles low, high;
        highest(along.low, FourDoubles{}, low);
        lowest(low, lastRow, low);
        highest(along.high + facetTolerance, FourDoubles{}, high);
        lowest(high, lastRow, high);
        const FourInts lows = __builtin_convertvector(low, FourInts);
        const FourInts highs = __builtin_convertvector(high, FourInts);
        for (size_t lane = 0; lane < std::min<size_t>(laneCount, count - i); ++lane)
            reaches[i + lane] = {lows[lane], highs[lane]};
        const FourDoubles rows = __builtin_convertvector(highs - lows + 1, FourDoubles);
        const FourDoubles columns = across.high - across.low + 1.0;
        const auto few = (columns <= double{smallColumns}) & (rows <= double{smallRows});
        const FourDoubles perRow =
            few ? FourDoubles{} + smallRowCost : FourDoubles{} + largeRowCost;
        cost += facetCost + rows * (columns + perRow);
    }
    return cost[0] + cost[1] + cost[2] + cost[3];
}

std::span<const DrawFacets> drawFacetsHere()
{
    static const std::vector<DrawFacets> ways = findWays();
    return ways;
}

} // namespace marlowen
