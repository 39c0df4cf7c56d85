#pragma once

#include "files/export/exportmesh.h"

class QIODevice;

namespace marlowen {

class Progress;

/// Writes a mesh as Wavefront OBJ: one `v` for every grid point that a facet uses (and one below it
/// for every point of a base), a `vn` for each of them and for every wall, and a face of three
/// "vertex//normal" pairs a facet. Coordinates are in inches, narrowed to 32-bit floats, in the
/// shortest decimal form that reads back to the same float; normals have four decimals. Lines end
/// in a line feed. Returns false when the device fails or `progress` was cancelled.
bool writeObj(QIODevice &device, const ExportMesh &mesh, Progress &progress);

} // namespace marlowen
