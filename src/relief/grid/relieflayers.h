#pragma once

#include "relief/grid/floatgrid.h"
#include "relief/grid/gridlayer.h"

#include <QPoint>
#include <QPointF>
#include <QRect>

namespace marlowen {

/// The cells of a relief: its size, its six layers of one float a cell, and the way from a stroke
/// point to a cell. Cells are row-major (index = row * width + column), row 0 first, 128 cells an
/// inch. A height of 0.0 is an empty, transparent cell; no height is negative.
///
/// Stroke points are pairs of doubles in cells measured from the centre of the grid; positive y
/// runs toward higher row numbers.
class ReliefLayers
{
public:
    /// The four layers and the size that a resize replaces together. All layers hold width x height
    /// values.
    struct Grid
    {
        int width = 0;
        int height = 0;
        GridLayer heights;
        GridLayer selection;
        GridLayer mask;
        GridLayer reference;
    };

    int width() const { return m_width; }
    int height() const { return m_height; }
    qsizetype cells() const { return static_cast<qsizetype>(m_width) * m_height; }
    QRect rect() const { return {0, 0, m_width, m_height}; }
    /// Length of the grid's diagonal in cells.
    double diagonal() const;

    float heightAt(int column, int row) const { return m_heights.constData()[index(column, row)]; }
    float heightAt(qsizetype cell) const { return m_heights.constData()[cell]; }
    qsizetype index(int column, int row) const
    {
        return static_cast<qsizetype>(row) * m_width + column;
    }
    bool contains(int column, int row) const
    {
        return column >= 0 && column < m_width && row >= 0 && row < m_height;
    }
    /// Column and row of a stroke point, truncated toward zero. Points without a cell number (NaN,
    /// infinite, beyond the range of int) give (-1, -1).
    QPoint cellOf(QPointF point) const;

    GridLayer &heights() { return m_heights; }
    const GridLayer &heights() const { return m_heights; }
    GridLayer &selectionLayer() { return m_selection; }
    const GridLayer &selectionLayer() const { return m_selection; }
    GridLayer &maskLayer() { return m_mask; }
    const GridLayer &maskLayer() const { return m_mask; }
    GridLayer &workLayer() { return m_work; }
    GridLayer &snapshotLayer() { return m_snapshot; }
    const GridLayer &snapshotLayer() const { return m_snapshot; }
    GridLayer &referenceLayer() { return m_reference; }
    const GridLayer &referenceLayer() const { return m_reference; }

protected:
    /// Six layers of zeros; width and height at least 1. Throws std::bad_alloc.
    ReliefLayers(int width, int height);
    ~ReliefLayers() = default;

    /// Installs a grid and returns the previous one. The work layer and the snapshot become fresh
    /// zeros.
    Grid exchangeGrid(Grid grid);

private:
    int m_width;
    int m_height;
    GridLayer m_heights;
    GridLayer m_selection;
    GridLayer m_mask;
    GridLayer m_work;
    GridLayer m_snapshot;
    GridLayer m_reference;
};

/// The heights as a view; it holds until the relief's grid is replaced.
inline GridView heightView(const ReliefLayers &relief)
{
    return {relief.heights().constData(), relief.width(), relief.height()};
}

} // namespace marlowen
