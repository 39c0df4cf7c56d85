#pragma once

#include <QPoint>
#include <QRect>

#include <vector>

namespace marlowen {

class GridLayer;

/// The border of a selection: closed lines along cell edges, holes included. Corners are grid
/// coordinates: (column, row) is the corner where that cell meets the ones before it, so that cell
/// (c, r) spans c..c+1 by r..r+1. Each loop has the selected cells on its right as seen with rows
/// running down; neighbouring corners differ in exactly one coordinate and no three lie on a line.
struct SelectionOutline
{
    std::vector<QPoint> corners; ///< loop after loop; the last corner of a loop joins its first
    std::vector<int> firsts;     ///< where each loop begins in `corners`
    std::vector<int> counts;     ///< its number of corners

    bool isEmpty() const { return firsts.empty(); }
};

/// What to outline: the cells of `area` (clipped to the grid) whose value is not 0. With a step
/// above 1 the border of step x step blocks that hold such a cell. Cells beyond the area count as
/// not selected. Cells that touch only diagonally get separate borders.
SelectionOutline outlineSelection(const GridLayer &selection, QSize grid, const QRect &area,
                                  int step = 1);

} // namespace marlowen
