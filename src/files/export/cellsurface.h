#pragma once

#include "files/reduce/gridtriangulation.h"
#include "relief/grid/floatgrid.h"
#include "relief/grid/physicalsize.h"

#include <array>
#include <optional>
#include <vector>

namespace marlowen {

class Pulse;

/// x, y, z in inches: (column / 128, row / 128, height / 128 * zFactor).
using SurfacePoint = std::array<double, 3>;

/// Two cells, in the direction of circulation of their facet: the facet lies to the left.
using CellEdge = std::array<uint32_t, 2>;

/// Facets between points of a height grid, counter-clockwise seen from above: those of a list, or
/// all of the grid. Every facet has a height that is not 0.
class CellSurface
{
public:
    /// Every grid triangle in the order of the rows, without those whose three heights are 0. The
    /// heights must outlive the surface.
    CellSurface(const GridView &heights, double zFactor);
    CellSurface(const GridView &heights, double zFactor, std::vector<CellTriangle> facets);

    const GridView &heights() const { return m_heights; }
    double zFactor() const { return m_zFactor; }
    /// The list; null for all of the grid.
    const std::vector<CellTriangle> *facets() const { return m_facets ? &*m_facets : nullptr; }
    /// Number of facets.
    uint64_t count() const { return m_count; }
    SurfacePoint point(uint32_t cell) const
    {
        const auto width = static_cast<uint32_t>(m_heights.width);
        const uint32_t row = cell / width;
        return {(cell % width) / cellsPerInch, row / cellsPerInch,
                static_cast<double>(m_heights.values[cell]) / cellsPerInch * m_zFactor};
    }

    /// Calls visit(const CellTriangle &) for every facet until it returns false; returns whether
    /// all were visited.
    template <typename Visit>
    bool forEachFacet(Visit visit) const;

    /// The edges with a facet on one side only, one closed line after the other; incomplete when
    /// the work was cancelled.
    std::vector<CellEdge> border(Pulse &pulse) const;
    /// Number of those edges.
    uint64_t borderLength(Pulse &pulse) const;

private:
    bool isFilled(const CellTriangle &triangle) const
    {
        return m_heights.values[triangle[0]] != 0.0F || m_heights.values[triangle[1]] != 0.0F ||
               m_heights.values[triangle[2]] != 0.0F;
    }
    /// The two triangles of the square whose lowest column and row are those of `cell`.
    CellTriangle first(uint32_t cell) const { return {cell, cell + 1, cell + columns()}; }
    CellTriangle second(uint32_t cell) const
    {
        return {cell + columns(), cell + 1, cell + columns() + 1};
    }
    uint32_t columns() const { return static_cast<uint32_t>(m_heights.width); }

    std::vector<CellEdge> gridBorder(Pulse &pulse) const;
    std::vector<CellEdge> listBorder(Pulse &pulse) const;

    GridView m_heights;
    double m_zFactor;
    std::optional<std::vector<CellTriangle>> m_facets; ///< none: all of the grid
    uint64_t m_count = 0;
};

template <typename Visit>
bool CellSurface::forEachFacet(Visit visit) const
{
    if (m_facets) {
        for (const CellTriangle &facet : *m_facets) {
            if (!visit(facet))
                return false;
        }
        return true;
    }
    for (int row = 0; row + 1 < m_heights.height; ++row) {
        const uint32_t start = static_cast<uint32_t>(row) * columns();
        for (uint32_t cell = start; cell + 1 < start + columns(); ++cell) {
            if (isFilled(first(cell)) && !visit(first(cell)))
                return false;
            if (isFilled(second(cell)) && !visit(second(cell)))
                return false;
        }
    }
    return true;
}

} // namespace marlowen
