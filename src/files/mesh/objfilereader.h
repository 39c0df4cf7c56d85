#pragma once

#include "base/progress.h"
#include "files/mesh/meshproblems.h"
#include "files/mesh/objpiece.h"
#include "files/mesh/polygontessellator.h"
#include "files/mesh/trianglemesh.h"

#include <deque>
#include <span>
#include <string_view>
#include <vector>

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
    /// A piece of the file on its way.
    struct Slot
    {
        std::vector<char> text;
        std::string_view lines; ///< in the text
        qint64 bytesLeft = 0;   ///< of the file, behind the piece
        ObjPiece piece;
    };
    /// A face whose vertices were not all there yet when it was read.
    struct LateFace
    {
        size_t firstId;      ///< in the ids
        size_t count;        ///< of ids
        qint64 verticesRead; ///< before the face
    };
    /// Those of a piece: one list of all would be copied whole as it grows, which holds up
    /// "Cancel".
    struct LateFaces
    {
        std::vector<qint64> ids;
        std::vector<LateFace> faces;
    };

    bool _fill(TextBlocks &text, Slot &slot);
    void _take(const Slot &slot);
    void _takePositions(std::span<const MeshPoint> positions);
    void _takeTriangles(std::span<const MeshTriangle> triangles);
    void _takeProblems(std::span<const ObjPiece::Problem> problems, size_t count);
    void _takeFace(std::span<const qint64> ids);
    void _addLateFaces(const LateFaces &late);
    bool _resolve(std::span<const qint64> ids, qint64 verticesRead);
    qint64 _placeOf(qint64 id, qint64 verticesRead) const;
    void _addResolved();
    void _makeRoom(const Slot &slot, size_t positionsBefore, size_t trianglesBefore);

    RelativeIndices m_indices;
    TriangleMesh m_mesh;
    MeshProblems m_problems;
    PolygonTessellator m_tessellator;
    Progress *m_progress = nullptr; ///< of read()
    bool m_atStart = true;          ///< of the file
    bool m_allFinite = true;        ///< every position read so far
    std::vector<quint32> m_corners; ///< of a face, as places in the positions
    std::deque<LateFaces> m_late;
    size_t m_positionsAdded = 0; ///< by the last piece
    size_t m_trianglesAdded = 0;
};

} // namespace marlowen
