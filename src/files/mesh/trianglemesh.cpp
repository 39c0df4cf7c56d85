#include "files/mesh/trianglemesh.h"

#include <algorithm>

namespace marlowen {

qsizetype distinctCorners(const TriangleMesh &mesh)
{
    std::vector<bool> used(mesh.positions.size());
    for (const MeshTriangle &triangle : mesh.triangles) {
        for (const quint32 place : triangle)
            used[place] = true;
    }
    std::vector<quint32> places;
    for (size_t place = 0; place < used.size(); ++place) {
        if (used[place])
            places.push_back(static_cast<quint32>(place));
    }
    const auto at = [&mesh](quint32 place) -> const MeshPoint & { return mesh.positions[place]; };
    std::sort(places.begin(), places.end(), [&at](quint32 a, quint32 b) { return at(a) < at(b); });
    const auto end = std::unique(places.begin(), places.end(),
                                 [&at](quint32 a, quint32 b) { return at(a) == at(b); });
    return end - places.begin();
}

} // namespace marlowen
