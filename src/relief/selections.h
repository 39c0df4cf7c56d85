#pragma once

#include <QPointF>
#include <QPolygon>
#include <QRect>

class Relief;

/// How a new shape meets the selection that is there.
enum class SelectionModifier { Normal, Additive, Subtractive };

/// The Magic Tool: cells whose height is within the tolerance (a share of the relief's range) of the
/// height under the stroke point; `continuous` keeps to cells joined by sides.
struct MagicSelection
{
    QPointF point;
    double tolerance = 0.02;
    bool continuous = true;
};
void magicSelect(Relief &relief, const MagicSelection &magic, SelectionModifier modifier);

/// Shapes in cells (column, row); corners in any order, both ends included, clipped to the grid.
void selectRectangle(Relief &relief, QPoint corner, QPoint opposite, SelectionModifier modifier);
void selectEllipse(Relief &relief, QPointF corner, QPointF opposite, SelectionModifier modifier);
/// The outline and every cell whose centre lies inside by the even-odd rule.
void selectPolygon(Relief &relief, const QPolygon &corners, SelectionModifier modifier);

/// Merges the work layer into the selection and sets the selection flag.
void combineSelection(Relief &relief, SelectionModifier modifier);

/// No selection: the layer is cleared and the flag is off.
void selectNone(Relief &relief);
