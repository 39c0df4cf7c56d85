#pragma once

#include "import/mesh/facetedges.h"
#include "import/mesh/facetfours.h"

namespace marlowen {

/// What is found out about the planes and edges of four facets at once, one in each lane. Compiled
/// into the loops over the facets, as facetlanes.h is.

/// A place within the tolerance of a row or column is moved onto it.
CELL_INLINE inline void snapFour(FourDoubles &values)
{
    FourDoubles whole;
    nearestWhole(values, whole);
    const FourDoubles off = values - whole;
    values = (off < 0.0 ? -off : off) <= facetTolerance ? whole : values;
}

/// Four facets that are drawn row by row, from where the edges meet the row.
struct FourPlanes
{
    using Places = std::array<FourDoubles, 3>;

    Places x, y, z;                                      ///< corners in the order of y
    Places height;                                       ///< as that of the Edge, by EdgeNumber
    Places reach;                                        ///< as that of the Edge, by EdgeNumber
    FourDoubles perColumn, perRow;                       ///< change of height
    FourInts firstColumn, lastColumn, firstRow, lastRow; ///< within the grid

    enum EdgeNumber : size_t { Whole, Lower, Upper };

    // Without values before find(): many are made at a time.
    CELL_INLINE FourPlanes() {} // NOLINT(modernize-use-equals-default)

    /// Everything but the rows and columns.
    CELL_INLINE void find(const FourCorners &corners)
    {
        x = corners.x;
        y = corners.y;
        z = corners.z;
#pragma GCC unroll 3
        for (size_t i = 0; i < 3; ++i) {
            snapFour(x[i]);
            snapFour(y[i]);
        }
        _sort(0, 1);
        _sort(1, 2);
        _sort(0, 1);
        const FourDoubles area = (x[1] - x[0]) * (y[2] - y[0]) - (y[1] - y[0]) * (x[2] - x[0]);
        findSlopes(x, y, z, area, perColumn, perRow);
        _findEdge(Whole, 0, 2);
        _findEdge(Lower, 0, 1);
        _findEdge(Upper, 1, 2);
    }

    CELL_INLINE FacetPoint corner(size_t which, size_t lane) const
    {
        return {x[which][lane], y[which][lane], z[which][lane]};
    }
    CELL_INLINE Edges edges(size_t lane) const
    {
        const FacetPoint a = corner(0, lane), b = corner(1, lane), c = corner(2, lane);
        return {{a, c, height[Whole][lane], reach[Whole][lane]},
                {a, b, height[Lower][lane], reach[Lower][lane]},
                {b, c, height[Upper][lane], reach[Upper][lane]}};
    }

private:
    CELL_INLINE void _sort(size_t low, size_t high)
    {
        const auto turned = y[high] < y[low];
        for (Places *places : {&x, &y, &z}) {
            const FourDoubles before = (*places)[low];
            (*places)[low] = turned ? (*places)[high] : before;
            (*places)[high] = turned ? before : (*places)[high];
        }
    }
    CELL_INLINE void _findEdge(size_t number, size_t low, size_t high)
    {
        const FourDoubles across = x[high] - x[low];
        const FourDoubles run = across < 0.0 ? -across : across;
        const FourDoubles along = y[high] - y[low];
        const FourDoubles exact = run / along;
        const FourDoubles slope = run < steepest * along ? exact : FourDoubles{} + steepest;
        height[number] = along;
        reach[number] = facetTolerance * (slope > 1.0 ? slope : FourDoubles{} + 1.0);
    }
};

} // namespace marlowen
