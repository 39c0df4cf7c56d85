#pragma once

#include "base/progress.h"
#include "base/result.h"
#include "files/stlframe.h"
#include "relief/grid/floatgrid.h"

#include <QByteArray>
#include <QString>

#include <vector>

class QDataStream;

namespace marlowen {

class Relief;

/// A height grid to be written as a binary STL.
struct StlGrid
{
    GridView heights;
    double zFactor = 1.0;
    QByteArray header;            ///< at most 80 bytes of it are written
    Progress *progress = nullptr; ///< may be null; cancelling makes the writer return false
};

/// Two triangles a grid square at full resolution, (column/128, row/128, height/128 * zFactor),
/// normals by the right-hand rule over the vertices in written order; triangles whose three heights
/// are 0 are left out. The count is a 32-bit integer. Sets the stream to little-endian and single
/// precision. Returns whether the stream is Ok after the last value.
bool writeGridStl(QDataStream &stream, const StlGrid &grid);

/// The facets as they are. The count is a 64-bit integer, so that the facets begin at byte 88: the
/// programs that read these files expect it. Returns false at the first failure.
bool writeMeshStl(QDataStream &stream, const std::vector<StlFacet> &facets,
                  const QByteArray &header);

/// Fails with "Save Failed" when a height times the Z scale is beyond the numbers of a mesh file.
Outcome heightsFitMeshes(const Relief &relief);

/// The relief at full resolution, its Z scale applied. Fails with "Save Failed"; the file that was
/// there stays. `progress` may be null.
Outcome exportGridStl(const Relief &relief, const QString &path, Progress *progress = nullptr);

} // namespace marlowen
