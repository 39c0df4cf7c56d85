#pragma once

#include "render/engines/shader.h"

#include <QRect>
#include <QRegion>
#include <QSize>

#include <cstdint>
#include <memory>
#include <vector>

namespace marlowen {

class Relief;

/// The vertex grid of a view: one vertex every `step` cells of a rectangle of the relief,
/// row-major, the first one at the rectangle's origin. Vertex (i, j) is at cell (region.x + i *
/// step, region.y + j * step).
///
/// Indices are triangle strips, one a pair of rows.
class ReliefMesh
{
public:
    /// Lays the grid over `region`, which lies inside the relief; `step` at least 1. Arrays are
    /// taken anew only when the number of columns or rows changes; their content is undefined then.
    /// True when the indices changed.
    bool layOut(const QRect &region, int step, bool withNormals);
    /// No vertices.
    void clear();

    const QRect &region() const { return m_region; }
    int step() const { return m_step; }
    int columns() const { return m_columns; }
    int rows() const { return m_rows; }
    uint32_t vertexCount() const
    {
        return static_cast<uint32_t>(m_columns) * static_cast<uint32_t>(m_rows);
    }
    QRect vertices() const { return {0, 0, m_columns, m_rows}; }

    float *positions() { return m_positions.get(); }
    float *normals() { return m_normals.get(); }
    float *selection() { return m_selection.get(); }
    /// Everything, as a Shader takes it: the strips of all vertices, then those of coarser meshes.
    ShaderMesh arrays() const;
    /// Of the mesh of all vertices.
    size_t facets() const;
    /// Where the strips of the finest mesh of at most so many facets, or of the coarsest, are in
    /// the indices.
    Shader::IndexRange strips(size_t mostFacets) const;
    /// Those of its strips that touch these rows of vertices.
    Shader::IndexRange strips(size_t mostFacets, int firstRow, int lastRow) const;
    /// Cells from one vertex of that mesh to the next.
    int stepOf(size_t mostFacets) const;

    /// The vertices whose position, normal or selection depends on one of these cells: those on
    /// them and, for the normals, on the cells around them.
    QRegion verticesTouchedBy(const QRegion &cells) const;

private:
    QRect m_region;
    int m_step = 1;
    int m_columns = 0;
    int m_rows = 0;
    bool m_withNormals = false;
    std::unique_ptr<float[]> m_positions;
    std::unique_ptr<float[]> m_normals;
    std::unique_ptr<float[]> m_selection;
    std::vector<uint32_t> m_indices;
    struct Level
    {
        Shader::IndexRange strips;
        int step = 1; ///< vertices
    };
    const Level *_level(size_t mostFacets) const;

    std::vector<Level> m_levels; ///< from the finest to the coarsest
};

/// Steps that cover a length.
constexpr int stepsOver(int length, int step)
{
    return (length + step - 1) / step;
}

/// Appends the strips of a vertex grid: for each pair of rows the vertices of the lower and the
/// upper row in turn, then 0xFFFFFFFF. With a step above 1 only every step-th column and row, and
/// the last of each.
void appendStrips(std::vector<uint32_t> &indices, int columns, int rows, int step = 1);

/// Cells of a row: `count` of them from `column` on, every step-th.
struct SelectionRun
{
    int column = 0;
    int row = 0;
    int step = 1;
    int count = 0;
};

/// The selection values that the shaders take: the cell's selection where it is selected, else its
/// mask as a negative number.
void fillSelection(const Relief &relief, const SelectionRun &run, float *out);

/// Positions, normals and selection of a rectangle of vertices, lit in model space:
///  - position = (column - width / 2, row - height / 2, height * zScale);
///  - normal from the six neighbours that share a triangle with the cell, z 1, not of unit length;
///    of a coarser mesh from the mean slopes of the step x step cells around the vertex, so that
///    fine detail does not sparkle; cells beyond the relief's edge count as the edge cell;
///  - selection as fillSelection() has it.
void fillSculptVertices(ReliefMesh &mesh, const Relief &relief, const QRect &vertices);

} // namespace marlowen
