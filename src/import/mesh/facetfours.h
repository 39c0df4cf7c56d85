#pragma once

#include "import/mesh/facetlanes.h"
#include "import/mesh/facetrows.h"

#include <bit>
#include <utility>

namespace marlowen {

/// What is found out about four facets at once, one in each lane. Compiled into the loops over the
/// facets, as facetlanes.h is.

/// Of the square of the altitudes of a broad facet.
inline constexpr double broadness = 0.0625;

/// Boxes up to this size are drawn cell by cell, larger ones row by row.
inline constexpr int smallColumns = 32;
inline constexpr int smallRows = mostRowsAtOnce - 1;
/// Cells that a small facet reads at a time, at most.
inline constexpr int smallGroup = 8;
/// A facet is uneven when its lowest corner has less than this share of the height of its highest:
/// the height over the lowest, computed as that of a plane, would differ in the last bits.
inline constexpr double unevenShare = 1.0 / (1 << 20);

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
    /// Only the whole numbers within the tolerance, all below `count`.
    CELL_INLINE void cut(int count)
    {
        low -= facetTolerance;
        high += facetTolerance;
        wholeBetween(low, high, count);
    }
};

/// Changes of a plane's height to the next column and row, from three corners and twice their area.
CELL_INLINE inline void findSlopes(const std::array<FourDoubles, 3> &x,
                                   const std::array<FourDoubles, 3> &y,
                                   const std::array<FourDoubles, 3> &z, const FourDoubles &area,
                                   FourDoubles &perColumn, FourDoubles &perRow)
{
    const FourDoubles first = z[1] - z[0], second = z[2] - z[0];
    perColumn = (first * (y[2] - y[0]) - second * (y[1] - y[0])) / area;
    perRow = (second * (x[1] - x[0]) - first * (x[2] - x[0])) / area;
}

/// A value of each facet that changes by the same amount from cell to cell.
struct FourSlopes
{
    FourDoubles first; ///< in the first row and column of the facet
    FourDoubles perRow;
    FourDoubles perColumn;
};

/// One edge of each facet.
struct FourSides
{
    /// Distance of a cell, times the length of the edge: 0 on the edge, negative inside.
    FourSlopes distance;
    FourDoubles reach;  ///< of the tolerance, times the length of the edge; more than 0
    FourDoubles height; ///< what the distance adds to the height, per unit; only of uneven facets
};

/// How four facets are drawn.
class FourFacets
{
public:
    FourInts firstColumn, lastColumn, firstRow, lastRow; ///< within the grid
    /// How a facet is drawn; none holds for one that raises no cell. The small ones are followed by
    /// smallGroup cells of the grid, or more.
    FourMasks small;  ///< cell by cell, as a plane
    FourMasks uneven; ///< cell by cell, with heights that follow from the sides
    FourMasks broad;  ///< in the rows of the band, as a plane
    FourMasks narrow; ///< in the rows of the band, as a line in each
    std::array<FourSides, 3> sides;
    FourSlopes height; ///< of small facets that are not uneven

    // Without values before find(): many are made at a time.
    CELL_INLINE FourFacets() {} // NOLINT(modernize-use-equals-default)

    CELL_INLINE void find(const FourCorners &corners, const FacetGrid &grid)
    {
        auto [x, y, z] = corners;
        FourReaches across(x);
        FourReaches along(y);
        across.cut(grid.columns);
        along.cut(grid.rows);
        firstColumn = __builtin_convertvector(across.low, FourInts);
        lastColumn = __builtin_convertvector(across.high, FourInts);
        firstRow = __builtin_convertvector(along.low, FourInts);
        lastRow = __builtin_convertvector(along.high, FourInts);
        const FourDoubles area = (x[1] - x[0]) * (y[2] - y[0]) - (y[1] - y[0]) * (x[2] - x[0]);
        _findBroad(x, y, area);
        _choose((z[0] > 0.0) | (z[1] > 0.0) | (z[2] > 0.0), across, along, grid);
        _findHeight(corners, area, across.low, along.low);
        _turn(x, area);
        _turn(y, area);
#pragma GCC unroll 3
        for (size_t i = 0; i < 3; ++i)
            _findSide(sides[i], x, y, i, across.low, along.low);
        _findUneven(z);
        if ((uneven[0] | uneven[1] | uneven[2] | uneven[3]) == 0)
            return;
        _turn(z, area);
        const FourDoubles inverse = -1.0 / (area < 0.0 ? -area : area);
#pragma GCC unroll 3
        for (size_t i = 0; i < 3; ++i)
            sides[i].height = z[(i + 2) % 3] * inverse;
    }

private:
    using Places = std::array<FourDoubles, 3>;

    CELL_INLINE void _findBroad(const Places &x, const Places &y, const FourDoubles &area)
    {
        FourDoubles longest{};
#pragma GCC unroll 3
        for (size_t i = 0; i < 3; ++i) {
            const FourDoubles dx = x[i] - x[(i + 1) % 3];
            const FourDoubles dy = y[i] - y[(i + 1) % 3];
            highest(longest, dx * dx + dy * dy, longest);
        }
        broad = area * area > longest * broadness;
    }
    CELL_INLINE void _choose(const FourMasks &raising, const FourReaches &across,
                             const FourReaches &along, const FacetGrid &grid)
    {
        const double columns = grid.columns, rows = grid.rows;
        const FourMasks drawn = raising & (across.low <= across.high) & (along.low <= along.high);
        small = drawn & broad & (across.high - across.low < double{smallColumns}) &
                (along.high - along.low < double{smallRows}) &
                ((rows - along.high) * columns >= across.high + double{smallGroup});
        const FourMasks byRows = drawn & ~small & (along.low < double(grid.endRow)) &
                                 (along.high >= double(grid.firstRow));
        narrow = byRows & ~broad;
        broad &= byRows;
    }
    CELL_INLINE void _findUneven(const Places &z)
    {
        FourReaches reach(z);
        uneven = small & (reach.low < reach.high * unevenShare);
        small &= ~uneven;
    }
    /// Makes the facets turn counter-clockwise.
    CELL_INLINE static void _turn(Places &places, const FourDoubles &area)
    {
        const FourDoubles second = places[1];
        places[1] = area < 0.0 ? places[2] : second;
        places[2] = area < 0.0 ? second : places[2];
    }
    CELL_INLINE void _findHeight(const FourCorners &corners, const FourDoubles &area,
                                 const FourDoubles &column, const FourDoubles &row)
    {
        const auto &[x, y, z] = corners;
        findSlopes(corners.x, corners.y, corners.z, area, height.perColumn, height.perRow);
        height.first = z[0] + height.perRow * (row - y[0]) + height.perColumn * (column - x[0]);
    }
    CELL_INLINE static void _findSide(FourSides &side, const Places &x, const Places &y,
                                      size_t from, const FourDoubles &column,
                                      const FourDoubles &row)
    {
        const size_t to = (from + 1) % 3;
        const FourDoubles dx = x[to] - x[from];
        const FourDoubles dy = y[to] - y[from];
        FourDoubles larger;
        highest(dx < 0.0 ? -dx : dx, dy < 0.0 ? -dy : dy, larger);
        side.distance = {dy * (column - x[from]) - dx * (row - y[from]), -dx, dy};
        side.reach = facetTolerance * larger;
    }
};

/// Facets whose lanes are found before they are drawn: four at a time.
inline constexpr size_t foursAtOnce = 8;
inline constexpr size_t facetsAtOnce = laneCount * foursAtOnce;

/// Some of these facets, a bit each.
using BatchPart = quint32;
static_assert(facetsAtOnce == 32);

/// Where the first facet of a part is found.
struct PlaceInBatch
{
    size_t four, lane;
};
CELL_INLINE inline PlaceInBatch firstOf(BatchPart part)
{
    const auto bit = static_cast<size_t>(std::countr_zero(part));
    return {bit / laneCount, bit % laneCount};
}

} // namespace marlowen
