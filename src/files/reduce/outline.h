#pragma once

#include "files/reduce/gridtriangulation.h"
#include "relief/grid/floatgrid.h"

#include <optional>

namespace marlowen {

/// Finds where a relief's material ends, so that a triangle does not extend it over empty cells.
/// Empty cells beside a cell with a height carry the rim of the outermost triangles of the full
/// mesh; no triangle of that mesh reaches farther.
class Outline
{
public:
    /// Empty: isPlain().
    Outline() = default;
    explicit Outline(const GridView &grid);

    /// No cell is empty, or none is not: nothing can be wrong.
    bool isPlain() const { return m_kinds.empty(); }

    /// For a triangle that holds a cell with a height: nothing when it holds no empty cell farther
    /// away from the material than the rim. Otherwise a cell whose insertion helps to separate the
    /// two: it lies within the triangle's circumcircle and is not a corner.
    std::optional<uint32_t> separator(const CellTriangle &triangle) const;

private:
    enum Kind : uint8_t { Empty, Rim, Material };

    using Corners = std::array<CellPoint, 3>;

    CellPoint point(uint32_t cell) const;
    /// Calls `found` for the cells of a kind on a triangle, from row to row, until it returns
    /// false.
    template <typename Visit>
    void visit(const Corners &corner, Kind kind, Visit found) const;
    bool holds(const Corners &corner, Kind kind) const;
    std::optional<uint32_t> farthest(const Corners &corner, Kind kind) const;
    std::optional<uint32_t> reflected(const Corners &corner) const;

    int m_width = 0;
    int m_height = 0;
    std::vector<uint8_t> m_kinds;
};

} // namespace marlowen
