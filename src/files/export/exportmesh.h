#pragma once

#include "files/export/cellsurface.h"
#include "files/stlframe.h"

#include <algorithm>

namespace marlowen {

class Progress;

/// What leaves the program as a mesh: a surface alone, or closed by walls along its border and a
/// base below. Parts of a solid that touch in a point share the vertical edge there, and its walls
/// follow each other along the border, so that programs that pair edges in the order of a file pair
/// the right ones.
class ExportMesh
{
public:
    /// The surface alone, open below.
    explicit ExportMesh(CellSurface surface)
        : m_surface(std::move(surface))
    {
    }
    /// A solid whose base lies at minus the thickness (inches, above 0). Below a list of facets it
    /// has as few facets as its border allows, below a whole grid those of the grid. When the
    /// progress was cancelled the mesh is of no use.
    ExportMesh(CellSurface surface, double baseThickness, Progress &progress);

    bool isSolid() const { return m_thickness > 0.0; }
    const CellSurface &surface() const { return m_surface; }
    double baseHeight() const { return -m_thickness; }
    /// The facets of the base as seen from above: they face down when turned round.
    const CellSurface &base() const { return m_base ? *m_base : m_surface; }
    /// The edges along which walls of two facets each go down; one closed line after the other.
    const std::vector<CellEdge> &walls() const { return m_walls; }
    /// The outward normal of the wall below an edge.
    SurfacePoint wallNormal(const CellEdge &edge) const;
    /// Number of facets with base and walls.
    uint64_t count() const
    {
        return m_surface.count() + (isSolid() ? base().count() + 2 * m_walls.size() : 0);
    }

    /// Calls visit(const StlFacet &) for every facet, counter-clockwise seen from outside and with
    /// its outward normal, until it returns false; returns whether all were visited.
    template <typename Visit>
    bool forEachFacet(Visit visit) const;

private:
    /// The facet with its normal by the right-hand rule; its area seen from above is not 0.
    static StlFacet upward(const std::array<SurfacePoint, 3> &corners);
    SurfacePoint below(uint32_t cell) const
    {
        const SurfacePoint above = m_surface.point(cell);
        return {above[0], above[1], baseHeight()};
    }

    CellSurface m_surface;
    std::optional<CellSurface> m_base;
    std::vector<CellEdge> m_walls;
    double m_thickness = 0.0;
};

template <typename Visit>
bool ExportMesh::forEachFacet(Visit visit) const
{
    const auto above = [this](uint32_t cell) { return m_surface.point(cell); };
    if (!m_surface.forEachFacet([&](const CellTriangle &facet) {
            return visit(upward({above(facet[0]), above(facet[1]), above(facet[2])}));
        }))
        return false;
    if (!isSolid())
        return true;
    if (!base().forEachFacet([&](const CellTriangle &facet) {
            return visit({{below(facet[0]), below(facet[2]), below(facet[1])}, {0.0, 0.0, -1.0}});
        }))
        return false;
    return std::all_of(m_walls.begin(), m_walls.end(), [&](const CellEdge &edge) {
        const SurfacePoint from = above(edge[0]);
        const SurfacePoint to = above(edge[1]);
        const SurfacePoint normal = wallNormal(edge);
        return visit({{to, from, below(edge[0])}, normal}) &&
               visit({{to, below(edge[0]), below(edge[1])}, normal});
    });
}

} // namespace marlowen
