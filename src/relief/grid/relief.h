#pragma once

#include "relief/grid/relieflayers.h"
#include "relief/grid/reliefstate.h"

#include <memory>

namespace marlowen {

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

/// The one document: a grid of cells with its layers (ReliefLayers), its flags and regions
/// (ReliefState), the record it was built from and the tool of the stroke in progress.
class Relief : public ReliefLayers, public ReliefState
{
public:
    /// An empty relief; width and height at least 1. Throws std::bad_alloc.
    Relief(int width, int height);
    /// A relief of the source's size and heights; the reference layer is a copy of them.
    explicit Relief(std::unique_ptr<ReliefSource> source);
    ~Relief();
    Relief(const Relief &) = delete;
    Relief &operator=(const Relief &) = delete;

    /// Installs a grid and returns the previous one. The work layer and the snapshot become
    /// fresh zeros; the heights-changed and appearance-changed flags are set and the frame region
    /// becomes the whole relief.
    Grid replaceGrid(Grid grid);

    ReliefSource *source() const { return m_source.get(); }
    /// Ends the import: the record is released.
    void setSource(std::unique_ptr<ReliefSource> source);

    /// The Tool of the stroke in progress; null between strokes.
    Tool *tool() const { return m_tool.get(); }
    void setTool(std::unique_ptr<Tool> tool);
    std::unique_ptr<Tool> takeTool();

private:
    std::unique_ptr<ReliefSource> m_source;
    std::unique_ptr<Tool> m_tool;
};

} // namespace marlowen
