#pragma once

#include "relief/grid/floatgrid.h"
#include "relief/grid/gridlayer.h"

#include <QPoint>
#include <QPointF>
#include <QRect>
#include <QRegion>

#include <memory>

class QDataStream;

namespace marlowen {

class Relief;
class Tool;

/// The record a relief was built from. The import room derives from it;
/// a relief only owns it and has it compute the first heights.
class ReliefSource
{
public:
    virtual ~ReliefSource() = default;
    virtual int width() const = 0;
    virtual int height() const = 0;
    /// Highest minus lowest source value.
    virtual double valueRange() const = 0;
    /// Writes width x height heights, row-major.
    virtual void computeHeights(float *heights) = 0;
};

/// The one document: a grid of heights with its layers, flags and regions. Cells are row-major
/// (index = row * width + column), row 0 first, 128 cells an inch. A height of 0.0 is an empty,
/// transparent cell; no height is negative.
///
/// Stroke points are pairs of doubles in cells measured from the centre of the grid; positive y
/// runs toward higher row numbers.
class Relief
{
public:
    /// An empty relief; width and height at least 1. Throws std::bad_alloc.
    Relief(int width, int height);
    /// A relief of the source's size and heights; the reference layer is a copy of them.
    explicit Relief(std::unique_ptr<ReliefSource> source);
    ~Relief();
    Relief(const Relief &) = delete;
    Relief &operator=(const Relief &) = delete;

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
    /// Column and row of a stroke point, truncated toward zero. Points whose cell cannot be told
    /// (NaN, infinite, beyond the range of int) give (-1, -1).
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
    /// Installs a grid and returns the one that was there. The work layer and the snapshot become
    /// fresh zeros; the heights-changed and appearance-changed flags are set and the frame region
    /// becomes the whole relief.
    Grid replaceGrid(Grid grid);

    double rangeMinimum = 0.0;
    double rangeMaximum = 0.0;
    double zScale = 1.0;
    bool heightsChanged = true;
    bool appearanceChanged = true;
    bool selectionActive = false; ///< tools skip cells that are not selected
    bool symmetryX = false;       ///< strokes are mirrored to (-x, y)
    bool symmetryY = false;       ///< strokes are mirrored to (x, -y)
    bool invert = false;          ///< inversion of the current tool
    float sampleHeight = 0.0F;    ///< picked by Sample, painted by Brush and Fill
    QRegion frameRegion;          ///< cells changed since the views last redrew
    QRegion strokeRegion;         ///< union of the rectangles the current stroke changed

    ReliefSource *source() const { return m_source.get(); }
    /// Ends the import: the record is released.
    void setSource(std::unique_ptr<ReliefSource> source);

    /// The Tool of the stroke in progress; null between strokes.
    Tool *tool() const { return m_tool.get(); }
    void setTool(std::unique_ptr<Tool> tool);
    std::unique_ptr<Tool> takeTool();

private:
    int m_width;
    int m_height;
    GridLayer m_heights;
    GridLayer m_selection;
    GridLayer m_mask;
    GridLayer m_work;
    GridLayer m_snapshot;
    GridLayer m_reference;
    std::unique_ptr<ReliefSource> m_source;
    std::unique_ptr<Tool> m_tool;
};

/// The heights as a view; it holds until the relief's grid is replaced.
inline GridView heightView(const Relief &relief)
{
    return {relief.heights().constData(), relief.width(), relief.height()};
}

} // namespace marlowen
