#include "files/mesh/modelplacement.h"

#include <algorithm>

namespace marlowen {

namespace {

constexpr std::array<ModelTurnRow, 7> turnRows{{
    {ModelTurn::Left, "left"},
    {ModelTurn::Right, "right"},
    {ModelTurn::Up, "up"},
    {ModelTurn::Down, "down"},
    {ModelTurn::CounterClockwise, "ccw"},
    {ModelTurn::Clockwise, "cw"},
    {ModelTurn::Flip, "flip"},
}};

/// The effect of one turn on each axis as seen: the axis that moves there, and its sign.
struct TurnMatrix
{
    std::array<size_t, 3> from;
    std::array<double, 3> sign;
};

/// Rotations by the right-hand rule, in the order of the rows: by -90 and 90 degrees about y, -90
/// and 90 about x, 90 and -90 about z, 180 about y.
constexpr std::array<TurnMatrix, turnRows.size()> turnMatrices{{
    {{2, 1, 0}, {-1.0, 1.0, 1.0}},
    {{2, 1, 0}, {1.0, 1.0, -1.0}},
    {{0, 2, 1}, {1.0, 1.0, -1.0}},
    {{0, 2, 1}, {1.0, -1.0, 1.0}},
    {{1, 0, 2}, {-1.0, 1.0, 1.0}},
    {{1, 0, 2}, {1.0, -1.0, 1.0}},
    {{0, 1, 2}, {-1.0, 1.0, -1.0}},
}};

} // namespace

std::span<const ModelTurnRow> modelTurns()
{
    return turnRows;
}

void ModelOrientation::turn(ModelTurn turn)
{
    const TurnMatrix &matrix = turnMatrices[static_cast<size_t>(turn)];
    const ModelOrientation before = *this;
    for (size_t seen = 0; seen < 3; ++seen) {
        m_axis[seen] = before.m_axis[matrix.from[seen]];
        m_sign[seen] = before.m_sign[matrix.from[seen]] * matrix.sign[seen];
    }
}

ModelBox ModelPlacement::at(const ModelBox &box) const
{
    const MeshPoint a = at(box.low);
    const MeshPoint b = at(box.high);
    ModelBox placed;
    for (size_t i = 0; i < 3; ++i) {
        placed.low[i] = std::min(a[i], b[i]) + 0.0; // -0 is not shown
        placed.high[i] = std::max(a[i], b[i]) + 0.0;
    }
    return placed;
}

ModelBox boxOf(const TriangleMesh &mesh)
{
    if (mesh.triangles.empty())
        return {};
    const MeshPoint &first = mesh.corner(mesh.triangles.front(), 0);
    ModelBox box{first, first};
    for (const MeshTriangle &triangle : mesh.triangles) {
        for (size_t which = 0; which < 3; ++which) {
            const MeshPoint &point = mesh.corner(triangle, which);
            for (size_t i = 0; i < 3; ++i) {
                box.low[i] = std::min(box.low[i], point[i]);
                box.high[i] = std::max(box.high[i], point[i]);
            }
        }
    }
    return box;
}

} // namespace marlowen
