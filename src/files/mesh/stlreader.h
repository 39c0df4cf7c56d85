#pragma once

#include "base/progress.h"
#include "files/mesh/meshproblems.h"
#include "files/mesh/trianglemesh.h"

class QIODevice;

namespace marlowen {

/// A mesh and the problems of its file.
struct ReadMesh
{
    TriangleMesh mesh;
    MeshProblems problems;
};

/// Reads an STL file, binary or text. It is binary when its size fits its count of facets, a 32-bit
/// integer at byte 80 with the facets at 84 or a 64-bit one with the facets at 88; its
/// first word does not matter. Otherwise it is text when it begins with "solid", and else a damaged
/// binary file, read as far as its facets go.
///
/// Corners of equal value are one position. A facet with a value that is not finite, or with fewer
/// than three different corners, is left out and is a problem. The stored normals are not used. The
/// device is open and has a size; when the user cancelled the mesh is of no use. Throws
/// std::bad_alloc.
ReadMesh readStl(QIODevice &device, Progress &progress);

} // namespace marlowen
