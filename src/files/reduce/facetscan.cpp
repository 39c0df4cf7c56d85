#include "files/reduce/facetscan.h"

#include "files/reduce/trianglerows.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

namespace marlowen {

namespace {

constexpr int lanes = 4;
using Floats = float __attribute__((vector_size(4 * lanes)));
using Ints = int32_t __attribute__((vector_size(4 * lanes)));
using Doubles = double __attribute__((vector_size(8 * lanes)));

constexpr int32_t withoutSign = 0x7fffffff;

/// Rounding of a plane relative to its largest corner, for triangles that are not too thin.
constexpr double planeRounding = 1e-12;
/// A bounding box of more times the triangle's area makes it too thin.
constexpr int64_t thinness = 256;

/// A triangle on its grid.
struct Facet
{
    CELL_INLINE Facet(const GridView &view, const CellTriangle &cells)
        : grid(view)
    {
        const auto width = static_cast<uint32_t>(view.width);
        for (size_t i = 0; i < 3; ++i) {
            corner[i] = {cells[i] % width, cells[i] / width};
            z[i] = static_cast<double>(view.values[cells[i]]);
        }
        area = twiceArea(corner[0], corner[1], corner[2]);
    }

    TriangleRows rows(int stride) const { return {corner[0], corner[1], corner[2], stride}; }

    const GridView &grid;
    std::array<CellPoint, 3> corner{};
    std::array<double, 3> z{};
    int64_t area;
};

/// The height of the plane as weights of the corners, which are whole: exact at the corners and
/// along level edges, and no worse than the heights themselves anywhere.
class ExactPlane
{
public:
    explicit ExactPlane(const Facet &facet)
        : m_facet(facet)
    {
    }

    /// |height - plane|; 0 when it is nothing but rounding.
    float error(int64_t column, int64_t row, float height) const
    {
        const CellPoint p{column, row};
        const auto &c = m_facet.corner;
        const std::array<int64_t, 3> weights{twiceArea(p, c[1], c[2]), twiceArea(c[0], p, c[2]),
                                             twiceArea(c[0], c[1], p)};
        double sum = 0.0;
        double magnitude = 0.0;
        for (size_t i = 0; i < 3; ++i) {
            if (weights[i] == m_facet.area)
                return 0.0F; // a corner, also where its height is NaN
            const double term = static_cast<double>(weights[i]) * m_facet.z[i];
            sum += term;
            magnitude += std::abs(term);
        }
        const auto area = static_cast<double>(m_facet.area);
        const double error = std::abs(static_cast<double>(height) - sum / area);
        return error <= 1e-15 * magnitude / area ? 0.0F : static_cast<float>(error);
    }

private:
    const Facet &m_facet;
};

/// The plane by its slopes: quick, and good for triangles that are neither thin nor enormously
/// high.
class SlopePlane
{
public:
    CELL_INLINE SlopePlane(const Facet &facet)
    {
        const auto &c = facet.corner;
        const auto along = [](int64_t to, int64_t from) { return static_cast<double>(to - from); };
        const double x1 = along(c[1].x, c[0].x);
        const double y1 = along(c[1].y, c[0].y);
        const double x2 = along(c[2].x, c[0].x);
        const double y2 = along(c[2].y, c[0].y);
        const double z1 = facet.z[1] - facet.z[0];
        const double z2 = facet.z[2] - facet.z[0];
        const auto area = static_cast<double>(facet.area);
        m_perColumn = (z1 * y2 - z2 * y1) / area;
        m_perRow = (z2 * x1 - z1 * x2) / area;
        m_corner = c[0];
        m_height = facet.z[0];
    }

    double perColumn() const { return m_perColumn; }
    double at(int64_t column, int64_t row) const
    {
        return m_height + m_perColumn * static_cast<double>(column - m_corner.x) +
               m_perRow * static_cast<double>(row - m_corner.y);
    }
    float error(int64_t column, int64_t row, float height) const
    {
        return static_cast<float>(std::abs(static_cast<double>(height) - at(column, row)));
    }

private:
    double m_perColumn;
    double m_perRow;
    CellPoint m_corner;
    double m_height;
};

float errorOf(int32_t bits)
{
    const auto error = std::bit_cast<float>(bits);
    return std::isnan(error) ? std::numeric_limits<float>::infinity() : error;
}

void countHeight(float height, FacetScan &scan)
{
    (height != 0.0F ? scan.anyHeight : scan.anyEmpty) = true;
}

/// Point by point, at any stride.
template <typename AnyPlane>
FacetScan scanPoints(const Facet &facet, const AnyPlane &plane, int stride)
{
    FacetScan scan;
    int32_t worst = 0;
    for (const double z : facet.z)
        countHeight(static_cast<float>(z), scan);
    for (TriangleRows rows = facet.rows(stride); rows.more(); rows.next()) {
        const auto row = static_cast<int>(rows.row());
        const float *heights = facet.grid.row(row);
        const int64_t first = (rows.first() + stride - 1) / stride * stride;
        for (int64_t column = first; column <= rows.last(); column += stride) {
            countHeight(heights[column], scan);
            // The bits of positive floats have the order of their values, with NaN above infinity.
            const auto bits =
                std::bit_cast<int32_t>(plane.error(column, row, heights[column])) & withoutSign;
            if (bits <= worst)
                continue;
            worst = bits;
            scan.candidate = static_cast<uint32_t>(heights + column - facet.grid.values);
        }
    }
    scan.error = errorOf(worst);
    return scan;
}

/// The worst point each lane has met.
struct Lanes
{
    Ints worst{};
    Ints candidate{};
    Ints heights{}; ///< all bits of the heights
    Ints empty{};   ///< all ones once a height was 0
};

FacetScan gather(const Lanes &found)
{
    FacetScan scan;
    int32_t worst = 0;
    for (int lane = 0; lane < lanes; ++lane) {
        scan.anyHeight = scan.anyHeight || found.heights[lane] != 0;
        scan.anyEmpty = scan.anyEmpty || found.empty[lane] != 0;
        if (found.worst[lane] <= worst)
            continue;
        worst = found.worst[lane];
        scan.candidate = static_cast<uint32_t>(found.candidate[lane]);
    }
    scan.error = errorOf(worst);
    return scan;
}

/// Four points at a time, every row and column.
CELL_LOOP void scanBlocks(const Facet &facet, Lanes &result)
{
    const Ints laneNumbers{0, 1, 2, 3};
    const SlopePlane plane(facet);
    const double slope = plane.perColumn();
    const Doubles slopes{0.0, slope, 2.0 * slope, 3.0 * slope};
    const int64_t cells = facet.grid.cells();
    Lanes found;
    for (TriangleRows rows(facet.corner[0], facet.corner[1], facet.corner[2], 1); rows.more();
         rows.next()) {
        const int64_t start = rows.row() * facet.grid.width + rows.first();
        auto left = static_cast<int32_t>(rows.last() - rows.first() + 1);
        Doubles z = plane.at(rows.first(), rows.row()) + slopes;
        for (int64_t cell = start; left > 0; cell += lanes, left -= lanes) {
            Floats heights{};
            if (cell + lanes <= cells) [[likely]]
                std::memcpy(&heights, facet.grid.values + cell, sizeof(heights));
            else
                std::memcpy(&heights, facet.grid.values + cell,
                            static_cast<size_t>(left) * sizeof(float));
            const Ints inside = laneNumbers < left;
            const Floats error =
                __builtin_convertvector(__builtin_convertvector(heights, Doubles) - z, Floats);
            const Ints bits = reinterpret_cast<Ints>(error) & withoutSign & inside;
            const Ints worse = bits > found.worst;
            found.worst = worse ? bits : found.worst;
            found.candidate = worse ? static_cast<int32_t>(cell) + laneNumbers : found.candidate;
            found.heights |= reinterpret_cast<Ints>(heights) & withoutSign & inside;
            found.empty |= (heights == 0.0F) & inside;
            z += lanes * slope;
        }
    }
    result = found;
}

bool isThin(const Facet &facet)
{
    const auto &c = facet.corner;
    const auto [left, right] = std::minmax({c[0].x, c[1].x, c[2].x});
    const auto [top, bottom] = std::minmax({c[0].y, c[1].y, c[2].y});
    return (right - left) * (bottom - top) / thinness > facet.area;
}

} // namespace

FacetScan scanFacet(const GridView &grid, const CellTriangle &triangle, const ScanRule &rule)
{
    const Facet facet(grid, triangle);
    const double highest =
        std::max({std::abs(facet.z[0]), std::abs(facet.z[1]), std::abs(facet.z[2])});
    const double rounding = highest * planeRounding;
    if (!(rounding * 16.0 < rule.tolerance) || isThin(facet))
        return scanPoints(facet, ExactPlane(facet), rule.stride);
    FacetScan scan;
    if (rule.stride > 1) {
        scan = scanPoints(facet, SlopePlane(facet), rule.stride);
    } else {
        Lanes found;
        scanBlocks(facet, found);
        scan = gather(found);
    }
    if (static_cast<double>(scan.error) <= rounding)
        scan.error = 0.0F;
    return scan;
}

} // namespace marlowen
