#pragma once

#include <QRect>

namespace marlowen {

class Relief;
class ReliefMesh;

/// The height steps of the 2D view: a range of heights (unscaled) cut into `count` levels.
struct HeightLevels
{
    double minimum = 0.0;
    double maximum = 0.0;
    double count = 64.0; ///< at least 2
};

/// The height that the 2D view shows for a cell: the upper end of the level it lies in, the minimum
/// for an empty cell (exactly 0). Without a range there are no levels and every cell shows the
/// minimum.
double levelledHeight(double height, const HeightLevels &levels);

/// Positions and selection of a rectangle of vertices (columns and rows of the mesh), no normals:
/// position = (column - width / 2, row - height / 2, levelled height * zScale), selection as
/// fillSelection() has it.
void fillFlatVertices(ReliefMesh &mesh, const Relief &relief, const QRect &vertices,
                      const HeightLevels &levels);

} // namespace marlowen
