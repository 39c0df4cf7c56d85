#pragma once

#include <QPointF>
#include <QPolygon>
#include <QRect>

namespace marlowen {

class CellBits;
class Relief;

/// How a new shape combines with the present selection: it replaces it, is added, is subtracted.
/// In each case the selection flag and appearance-changed are set afterwards. A shape that
/// is not one (a polygon without corners, coordinates that are NaN or infinite) changes nothing.
enum class SelectionModifier { Normal, Additive, Subtractive };

/// The Magic Tool: cells whose height is within the tolerance (a share of the relief's range) of
/// the height under the stroke point; `continuous` keeps to cells joined to that one by their
/// sides. Outside the relief the height is 0 and no cell is selected. A tolerance that is not above
/// 0 takes equal heights only.
struct MagicSelection
{
    QPointF point;
    double tolerance = 0.02;
    bool continuous = true;
};
void magicSelect(Relief &relief, const MagicSelection &magic, SelectionModifier modifier);

/// Shapes in cells (column, row), clipped to the grid; corners in any order.
/// Both corners included.
void selectRectangle(Relief &relief, QPoint corner, QPoint opposite, SelectionModifier modifier);
/// The outline of the ellipse that fills the rectangle between the corners, and its inside; the
/// outline alone when that runs through the centre cell.
void selectEllipse(Relief &relief, QPointF corner, QPointF opposite, SelectionModifier modifier);
/// The outline and every cell whose centre lies inside by the even-odd rule. The last corner is
/// joined to the first.
void selectPolygon(Relief &relief, const QPolygon &corners, SelectionModifier modifier);

/// Draws a shape into the work layer (1 for its cells, 0 elsewhere) and combines it.
void selectShape(Relief &relief, const CellBits &shape, SelectionModifier modifier);

/// No selection: the layer is cleared and the flag is off.
void selectNone(Relief &relief);

} // namespace marlowen
