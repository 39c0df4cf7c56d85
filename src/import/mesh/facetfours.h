#pragma once

#include "import/mesh/facetlanes.h"
#include "import/mesh/facetrows.h"

#include <utility>

namespace marlowen {

/// What is found out about four facets at once, one in each lane. Compiled into the loops over the
/// facets, as facetlanes.h is.

/// Boxes up to this size are drawn cell by cell, larger ones row by row.
inline constexpr int smallColumns = 16;
inline constexpr int smallRows = mostRowsAtOnce - 1;

CELL_INLINE inline void lowest(const FourDoubles &a, const FourDoubles &b, FourDoubles &result)
{
    result = b < a ? b : a;
}

CELL_INLINE inline void highest(const FourDoubles &a, const FourDoubles &b, FourDoubles &result)
{
    result = a < b ? b : a;
}

using FourTriangles = std::array<const MeshTriangle *, laneCount>;

/// Triangles in a row by triangle(number), from number `first` on; where they end, at `count`, the
/// last of them several times.
template <typename Triangle>
CELL_INLINE inline FourTriangles fourFrom(size_t first, size_t count, Triangle triangle)
{
    const size_t last = count - 1;
    return {triangle(first), triangle(std::min(first + 1, last)),
            triangle(std::min(first + 2, last)), triangle(std::min(first + 3, last))};
}

/// Where the corners of four triangles lie, in cells.
struct FourCorners
{
    std::array<FourDoubles, 3> x, y, z;

    CELL_INLINE FourCorners(const TriangleMesh &mesh, const FourTriangles &triangles,
                            const CellPlacement &placement)
    {
        const MeshPoint *points = mesh.positions.data();
        const auto place = [&](const std::array<const double *, laneCount> &from, size_t axis,
                               FourDoubles &result) CELL_INLINE {
            const size_t at = placement.model.axis[axis];
            const FourDoubles values{from[0][at], from[1][at], from[2][at], from[3][at]};
            result = (values * placement.model.factor[axis] - placement.low[axis]) *
                     placement.cellsPerUnit;
        };
#pragma GCC unroll 3
        for (size_t i = 0; i < 3; ++i) {
            const auto corner = [&](size_t lane) { return points[(*triangles[lane])[i]].data(); };
            const std::array<const double *, laneCount> from{corner(0), corner(1), corner(2),
                                                             corner(3)};
            place(from, 0, x[i]);
            place(from, 1, y[i]);
            place(from, 2, z[i]);
        }
    }
};

/// The lowest and highest of three places.
struct FourReaches
{
    FourDoubles low, high;

    CELL_INLINE explicit FourReaches(const std::array<FourDoubles, 3> &places)
    {
        lowest(places[0], places[1], low);
        lowest(low, places[2], low);
        highest(places[0], places[1], high);
        highest(high, places[2], high);
    }
    /// The whole numbers within the tolerance.
    CELL_INLINE void whole(int count, FourInts &first, FourInts &last) const
    {
        const FourInts up = ceilOf(low - facetTolerance);
        const FourInts down = floorOf(high + facetTolerance);
        first = up > 0 ? up : FourInts{};
        last = down < count - 1 ? down : FourInts{} + (count - 1);
    }
};

/// One edge of each facet. The side of it that a point lies on, times the edge's length, is 0 on
/// the edge and positive inside the facet.
struct FourSides
{
    FourDoubles fromX;
    FourDoubles atRow;     ///< side of points with x = fromX in the first row of the facet
    FourDoubles perRow;    ///< change of the side to the next row
    FourDoubles perColumn; ///< change from the next column
    FourDoubles least;     ///< side of points that count as inside
    FourDoubles height;    ///< what the side adds to the height, per unit
};

/// How four facets are drawn.
class FourFacets
{
public:
    FourInts firstColumn, lastColumn, firstRow, lastRow; ///< within the grid
    FourInts raising;                                    ///< not 0: may raise a cell
    FourInts small;                 ///< not 0: broad and of few cells, so that the sides hold
    std::array<FourSides, 3> sides; ///< of the edges opposite to the corners

    // Without values before find(): many are made at a time.
    CELL_INLINE FourFacets() {} // NOLINT(modernize-use-equals-default)

    CELL_INLINE void find(const FourCorners &corners, const FacetGrid &grid)
    {
        auto [x, y, z] = corners;
        FourReaches(x).whole(grid.columns, firstColumn, lastColumn);
        FourReaches(y).whole(grid.rows, firstRow, lastRow);
        const auto above = (z[0] > 0.0) | (z[1] > 0.0) | (z[2] > 0.0);
        raising = __builtin_convertvector(above, FourInts) & (firstColumn <= lastColumn) &
                  (firstRow <= lastRow);
        const FourDoubles area = (x[1] - x[0]) * (y[2] - y[0]) - (y[1] - y[0]) * (x[2] - x[0]);
        small = _broad(x, y, area) & (lastColumn - firstColumn < smallColumns) &
                (lastRow - firstRow < smallRows);
        _turn(x, area);
        _turn(y, area);
        _turn(z, area);
        const FourDoubles inverse = 1.0 / (area < 0.0 ? -area : area);
#pragma GCC unroll 3
        for (size_t i = 0; i < 3; ++i)
            _findSide(i, x, y, z[i] * inverse);
    }

private:
    using Places = std::array<FourDoubles, 3>;

    /// As isBroad().
    CELL_INLINE static FourInts _broad(const Places &x, const Places &y, const FourDoubles &area)
    {
        FourDoubles longest{};
#pragma GCC unroll 3
        for (size_t i = 0; i < 3; ++i) {
            const FourDoubles dx = x[i] - x[(i + 1) % 3];
            const FourDoubles dy = y[i] - y[(i + 1) % 3];
            highest(longest, dx * dx + dy * dy, longest);
        }
        return __builtin_convertvector(area * area > longest * broadness, FourInts);
    }
    /// Makes the facets turn counter-clockwise.
    CELL_INLINE static void _turn(Places &places, const FourDoubles &area)
    {
        const FourDoubles second = places[1];
        places[1] = area < 0.0 ? places[2] : second;
        places[2] = area < 0.0 ? second : places[2];
    }
    CELL_INLINE void _findSide(size_t corner, const Places &x, const Places &y,
                               const FourDoubles &height)
    {
        const size_t from = (corner + 1) % 3;
        const size_t to = (corner + 2) % 3;
        const FourDoubles dx = x[to] - x[from];
        const FourDoubles dy = y[to] - y[from];
        FourDoubles larger;
        highest(dx < 0.0 ? -dx : dx, dy < 0.0 ? -dy : dy, larger);
        const FourDoubles row = __builtin_convertvector(firstRow, FourDoubles);
        FourSides &side = sides[corner];
        side.fromX = x[from];
        side.atRow = dx * (row - y[from]);
        side.perRow = dx;
        side.perColumn = dy;
        side.least = -facetTolerance * larger;
        side.height = height;
    }
};

/// Cells of a facet that are worked on together: rows from its first one on.
struct LanePlace
{
    int column; ///< of the first lane
    int rows;
    int firstColumn, endColumn; ///< cells before and from there on are left as they are
};

/// Farther from an edge than any point of a grid.
inline constexpr double outside = 1e300;

/// Raises a number of groups of cells to facet `which` of the four; `cells` is the first of them.
/// All must lie in the grid. More groups keep the processor busier.
template <int lanes, int groups>
CELL_INLINE inline void fillGroups(float *cells, int stride, const FourFacets &facets, size_t which,
                                   const LanePlace &place)
{
    using Doubles = typename Lanes<lanes>::Doubles;
    const auto &[a, b, c] = facets.sides;
    Doubles as[groups], bs[groups], cs[groups];
    const bool whole =
        place.column >= place.firstColumn && place.column + groups * lanes <= place.endColumn;
#pragma GCC unroll 2
    for (int g = 0; g < groups; ++g) {
        const Doubles columns = static_cast<double>(place.column + g * lanes) + Lanes<lanes>::count;
        as[g] = a.atRow[which] - a.perColumn[which] * (columns - a.fromX[which]);
        bs[g] = b.atRow[which] - b.perColumn[which] * (columns - b.fromX[which]);
        cs[g] = c.atRow[which] - c.perColumn[which] * (columns - c.fromX[which]);
        if (!whole) {
            as[g] = columns >= double(place.firstColumn) ? as[g] : Doubles{} - outside;
            keepApart<lanes>(as[g]);
            as[g] = columns < double(place.endColumn) ? as[g] : Doubles{} - outside;
        }
    }
    const double za = a.height[which], zb = b.height[which], zc = c.height[which];
    const double leastA = a.least[which], leastB = b.least[which], leastC = c.least[which];
    const double stepA = a.perRow[which], stepB = b.perRow[which], stepC = c.perRow[which];
    for (int r = 0; r < place.rows; ++r, cells += stride) {
#pragma GCC unroll 2
        for (int g = 0; g < groups; ++g) {
            Doubles height = as[g] * za + bs[g] * zb + cs[g] * zc;
            height = as[g] >= leastA ? height : Doubles{};
            keepApart<lanes>(height);
            height = bs[g] >= leastB ? height : Doubles{};
            keepApart<lanes>(height);
            height = cs[g] >= leastC ? height : Doubles{};
            keepApart<lanes>(height);
            raiseCells<lanes>(cells + g * lanes, height);
            as[g] += stepA;
            bs[g] += stepB;
            cs[g] += stepC;
        }
    }
}

} // namespace marlowen
