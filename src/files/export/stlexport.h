#pragma once

#include "files/export/exportmesh.h"

class QDataStream;

namespace marlowen {

class Progress;

/// The facet count of an STL.
enum class StlCount {
    Standard, ///< 32 bits: what other programs read
    Wide,     ///< 64 bits, so that the facets begin at byte 88
};

/// Writes a mesh as binary STL with normals by the right-hand rule. Returns false when the stream
/// fails, when there are more facets than the count can hold, or when `progress` was cancelled.
bool writeStl(QDataStream &stream, const ExportMesh &mesh, StlCount count, Progress &progress);

} // namespace marlowen
