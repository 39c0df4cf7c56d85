#pragma once

#include "files/mesh/meshproblems.h"
#include "files/mesh/trianglemesh.h"

#include <memory>
#include <span>

class GLUtesselator;

namespace marlowen {

/// Cuts polygons into triangles with the GLU tessellator: odd winding rule, new points where edges
/// cross. One tessellator serves all polygons of a mesh; the triangles go to the mesh's end, new
/// points to its positions when finish() is called.
class PolygonTessellator
{
public:
    PolygonTessellator(TriangleMesh &mesh, MeshProblems &problems);
    ~PolygonTessellator();
    PolygonTessellator(const PolygonTessellator &) = delete;
    PolygonTessellator &operator=(const PolygonTessellator &) = delete;

    /// The corners are indices of finite positions of the mesh, three or more. Throws
    /// std::bad_alloc.
    void cut(std::span<const quint32> corners);
    /// The same without the short cut for convex quads.
    void tessellate(std::span<const quint32> corners);
    /// Gives the new points their places behind the positions. To be called once, at the end.
    void finish();

private:
    struct Callbacks;

    bool _cutQuad(std::span<const quint32> corners);
    bool _makeTessellator();

    TriangleMesh &m_mesh;
    MeshProblems &m_problems;
    GLUtesselator *m_tessellator = nullptr;
    std::vector<MeshPoint> m_newPoints; ///< number k has the index lastIndex - k for the time being
    MeshTriangle m_triangle{};          ///< the one the callbacks are filling
    size_t m_filled = 0;
    bool m_outOfMemory = false;
};

} // namespace marlowen
