#pragma once

#include "base/result.h"
#include "files/mesh/stlreader.h"

namespace marlowen {

struct MeshReadOptions
{
    bool relativeIndices = false; ///< negative OBJ indices as other programs read them
};

/// Whether the name is an OBJ file's, in any case.
bool isObjFile(const QString &name);

/// Reads a mesh file: OBJ or else STL, by its name. A file with problems is read
/// too, and the result lists them. Fails with "Open Failed" when the file cannot be read, holds
/// no triangle or needs more memory than there is, and with an empty sentence when the user
/// cancelled.
Result<ReadMesh> readMesh(const QString &path, const MeshReadOptions &options, Progress &progress);

} // namespace marlowen
