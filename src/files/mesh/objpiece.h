#pragma once

#include "files/mesh/trianglemesh.h"

#include <string_view>
#include <vector>

namespace marlowen {

/// Whole lines of an OBJ file, read without knowing what stands before them.
struct ObjPiece
{
    enum class Kind : quint32 {
        Vertices,  ///< `count` of the positions
        Triangles, ///< `count` of the triangles
        Face,      ///< `count` of the ids, 3 or more
        Problems   ///< `count` of the problems
    };
    /// What comes next, in the order of the lines.
    struct Run
    {
        Kind kind;
        quint32 count;
    };
    struct Problem
    {
        const char *before;
        std::string_view token; ///< in the lines
        const char *after;
    };

    std::vector<Run> runs;
    std::vector<MeshPoint> positions;
    /// Faces of three positive ids as nearly all are, less 1; the vertices may not be there.
    std::vector<MeshTriangle> triangles;
    std::vector<qint64> ids; ///< of other faces, as they stand in the file
    /// Only the first thousand are told apart; of later ones only the runs know.
    std::vector<Problem> problems;
    bool allFinite = true; ///< the positions

    void clear();
};

/// Reads the lines into the piece, which is cleared before. The last line ends in a line end, and
/// textSpareBytes (textnumbers.h) behind it may be read. The problems point into the lines. Throws
/// std::bad_alloc.
void readObjLines(std::string_view lines, ObjPiece &piece);

} // namespace marlowen
