#pragma once

#include "base/progress.h"
#include "files/mesh/meshproblems.h"
#include "files/mesh/trianglemesh.h"

#include <memory>
#include <span>

namespace marlowen {

class PolygonCut;

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
    /// std::bad_alloc. Once the user cancelled it returns within a few milliseconds, without
    /// triangles; what GLU is busy with then ends in the background or with the process. While it
    /// waits for GLU it calls advance(0) now and then.
    void cut(std::span<const quint32> corners, Progress &progress);
    /// The same without the short cut for convex quads.
    void tessellate(std::span<const quint32> corners, Progress &progress);
    /// Gives the new points their places behind the positions. To be called once, at the end.
    void finish();

private:
    bool _cutQuad(std::span<const quint32> corners);
    void _add(const PolygonCut &cut);

    TriangleMesh &m_mesh;
    MeshProblems &m_problems;
    std::unique_ptr<PolygonCut> m_cut;  ///< serves the small polygons
    std::vector<MeshPoint> m_newPoints; ///< number k has the index lastIndex - k for the time being
};

} // namespace marlowen
