#pragma once

#include "base/progress.h"
#include "files/mesh/meshproblems.h"
#include "files/mesh/polygontessellator.h"
#include "files/mesh/trianglemesh.h"

#include <string_view>

class QIODevice;

namespace marlowen {

class TextBlocks;

/// Reads the positions ("v") and faces ("f") of a Wavefront OBJ file; polygons of more than three
/// corners are cut into triangles. A bad line never ends the reading: it is reported as a problem,
/// and the usable part of the mesh is kept.
///
/// An index of 1 or more counts from the first vertex of the file. An index of 0 or less stands for
/// vertex (number of vertices read so far) - index, counted from 0, so that -1 lies one past the
/// last vertex; with relative indices "as other programs do", -1 is the last vertex read so far.
/// Faces may precede their vertices. A face with an index outside the list, or with a corner that
/// is not finite, is dropped and is a problem; one that collapses to a line is dropped and is none.
class ObjFileReader
{
public:
    enum class RelativeIndices { Literal, AsOtherPrograms };

    explicit ObjFileReader(RelativeIndices indices = RelativeIndices::Literal);

    /// Reads the whole device, which is open. Returns whether there was no problem; when the user
    /// cancelled the mesh is of no use. Throws std::bad_alloc. To be called once.
    bool read(QIODevice &device, Progress &progress);

    /// The triangles in the order of their faces, those of faces before their vertices last.
    TriangleMesh takeMesh() { return std::move(m_mesh); }
    const MeshProblems &problems() const { return m_problems; }

private:
    /// A face whose vertices were not all there yet when it was read.
    struct LateFace
    {
        size_t firstId;      ///< in m_lateIds
        size_t count;        ///< of ids
        qint64 verticesRead; ///< before the face
    };

    void _readLines(std::string_view block);
    const char *_readVertex(const char *at);
    const char *_readSlowVertex(const char *at);
    const char *_readFace(const char *at);
    const char *_readSlowFace(const char *at);
    bool _readId(std::string_view token, qint64 &id);
    void _takeFace();
    void _addTriangle(const MeshTriangle &corners);
    void _addLateFaces();
    bool _resolve(std::span<const qint64> ids, qint64 verticesRead);
    qint64 _placeOf(qint64 id, qint64 verticesRead) const;
    void _addResolved();
    void _makeRoom(const TextBlocks &text, size_t blockBytes);

    RelativeIndices m_indices;
    TriangleMesh m_mesh;
    MeshProblems m_problems;
    PolygonTessellator m_tessellator;
    bool m_allFinite = true;        ///< every position read so far
    std::vector<qint64> m_ids;      ///< of the face that is being read, as given in the file
    std::vector<quint32> m_corners; ///< of that face, as places in the positions
    std::vector<qint64> m_lateIds;
    std::vector<LateFace> m_lateFaces;
    size_t m_positionsBefore = 0; ///< the last block
    size_t m_trianglesBefore = 0;
};

} // namespace marlowen
