#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace marlowen {

/// Three cells of a grid (index = row * width + column), counter-clockwise when columns count along
/// x and rows along y.
using CellTriangle = std::array<uint32_t, 3>;

/// Column and row of a cell.
struct CellPoint
{
    int64_t x;
    int64_t y;
};

/// Twice the signed area of a triangle in cells: positive when it is counter-clockwise, 0 when the
/// points lie on a line. Exact.
constexpr int64_t twiceArea(CellPoint a, CellPoint b, CellPoint c)
{
    return (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
}

/// A Delaunay triangulation of some of a grid's points that always covers the rectangle between its
/// corner points. All predicates are computed in integers, so that after any insertion every
/// triangle has a positive area and no two overlap.
///
/// A triangle is identified by its number, 0..count()-1; an insertion reuses the numbers of the
/// triangles that it removes. An edge is 3 * triangle + k and runs from corner k to corner (k + 1)
/// % 3.
///
/// After A. Bowyer and D. F. Watson, The Computer Journal 24 (1981).
class GridTriangulation
{
public:
    /// Stands for the outer side of an edge on the border.
    static constexpr uint32_t none = 0xFFFFFFFF;

    /// The rectangle as two triangles. Width and height at least 2, width * height below 2^31.
    GridTriangulation(int width, int height);

    std::size_t count() const { return m_corners.size(); }
    const CellTriangle &corners(uint32_t triangle) const { return m_corners[triangle]; }
    /// The triangle on the other side of an edge, or `none`.
    uint32_t neighbour(uint32_t triangle, int edge) const
    {
        const uint32_t twin = m_twins[triangle][static_cast<std::size_t>(edge)];
        return twin == none ? none : twin / 3;
    }
    CellPoint point(uint32_t cell) const
    {
        return {static_cast<int64_t>(cell % m_width), static_cast<int64_t>(cell / m_width)};
    }

    /// Finds the triangles that the insertion of `cell` would remove: those whose circumcircle
    /// holds it. `seed` must be one of them; the triangle on which the point lies always is. The
    /// cell must not be a corner yet. The list is valid until the next call.
    const std::vector<uint32_t> &findCavity(uint32_t cell, uint32_t seed);
    /// How many triangles would take the place of the cavity found last.
    std::size_t fanSize() const { return m_rim.size() - m_flat; }
    /// Replaces the cavity found last by triangles around its cell and returns their numbers; the
    /// list is valid until the next call. The number of triangles grows by one or two.
    const std::vector<uint32_t> &fillCavity();

    /// Takes memory for this many triangles at once.
    void reserve(std::size_t triangles);

private:
    /// An edge around the cavity, with the edge that lies against it outside.
    struct RimEdge
    {
        uint32_t from;
        uint32_t to;
        uint32_t outer;
        bool flat; ///< the new point lies on it: it is on the border and gets no triangle
    };

    bool circleHolds(uint32_t triangle, CellPoint p) const;
    void addRim(uint32_t edge, CellPoint p);
    void join(uint32_t edge, uint32_t twin);

    uint32_t m_width;
    std::vector<CellTriangle> m_corners;
    std::vector<std::array<uint32_t, 3>> m_twins;
    uint32_t m_cell = 0;
    std::size_t m_flat = 0;
    std::vector<uint32_t> m_cavity;
    std::vector<uint32_t> m_stack;
    std::vector<RimEdge> m_rim;
};

} // namespace marlowen
