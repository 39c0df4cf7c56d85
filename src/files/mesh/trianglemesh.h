#pragma once

#include "base/largepages.h"

#include <QtGlobal>

#include <array>
#include <cstddef>
#include <vector>

namespace marlowen {

/// x, y, z in the model's own units.
using MeshPoint = std::array<double, 3>;
/// Three indices into the positions, counter-clockwise as seen from outside.
using MeshTriangle = std::array<quint32, 3>;

/// Triangles that share their corners. Every index lies within the positions and the position it
/// names is finite; positions may be there that no triangle uses.
struct TriangleMesh
{
    LargeVector<MeshPoint> positions;
    LargeVector<MeshTriangle> triangles;

    const MeshPoint &corner(const MeshTriangle &triangle, size_t which) const
    {
        return positions[triangle[which]];
    }
    size_t bytes() const
    {
        return positions.size() * sizeof(MeshPoint) + triangles.size() * sizeof(MeshTriangle);
    }
};

/// Number of different points, by value, among the corners of the triangles.
qsizetype distinctCorners(const TriangleMesh &mesh);

} // namespace marlowen
