#pragma once

#include "base/fieldtable.h"
#include "relief/grid/floatgrid.h"
#include "relief/operations/operation.h"

#include <QPointF>
#include <QRect>

#include <memory>
#include <vector>

namespace marlowen {

/// How the heights of a pattern join those of the relief under it.
enum class PlaceJoin { Add, Subtract, Highest, Lowest, Replace };

/// Where and how a pattern lies on a relief. The middle is given in cells from the outer corner of
/// cell (0, 0): (width / 2, height / 2) is the middle of the relief.
struct Placement
{
    QPointF centre;
    double angle = 0.0;    ///< degrees, counter-clockwise with rows running up
    double scale = 1.0;    ///< of width, length and height alike
    int join = 0;          ///< PlaceJoin
    double strength = 1.0; ///< 0..1: share of the change that the whole pattern makes
    /// 0..1: the change fades toward the pattern's outline over this share of half its smaller
    /// side.
    double softEdge = 0.0;

    bool operator==(const Placement &) const = default;
};

/// All but the centre.
FieldTable<Placement> placementFields();

/// A pattern made ready to be placed at any size: its heights with those of coarser grids, and for
/// each cell the distance to the outline. Cells of height 0 do not belong to the pattern.
class PlacedPattern
{
public:
    /// `zScale` is the pattern's. The heights must be finite and not negative. Throws
    /// std::bad_alloc.
    PlacedPattern(GridView heights, double zScale);

    int width() const { return m_width; }
    int height() const { return m_height; }
    double zScale() const { return m_zScale; }

    /// One grid with a rim of two empty cells on all sides.
    struct Level
    {
        FloatGrid heights;  ///< also outside the outline, so that they can be interpolated there
        FloatGrid distance; ///< to the outline in cells of the level; negative outside
    };
    /// Level n has cells of 2^n pattern cells.
    const std::vector<Level> &levels() const { return m_levels; }

private:
    int m_width;
    int m_height;
    double m_zScale;
    std::vector<Level> m_levels;
};

/// The cells of a relief of this size that a placed pattern can reach.
QRect placementBox(const PlacedPattern &pattern, const Placement &placement, QSize relief);

/// Changes the heights under the pattern. Selection and mask are respected, no height becomes
/// negative, the pattern keeps its height in inches where the Z scales differ. One undo step;
/// nothing while a stroke is in progress. Throws std::bad_alloc.
void placePattern(Relief &relief, const PlacedPattern &pattern, const Placement &placement,
                  const EditRun &run);

/// The same, ready to run.
Operation placeOperation(std::shared_ptr<const PlacedPattern> pattern, const Placement &placement);

} // namespace marlowen
