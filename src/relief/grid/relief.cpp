#include "relief/grid/relief.h"

#include "relief/tools/tool.h"

#include <utility>

namespace marlowen {

Relief::Relief(int width, int height)
    : ReliefLayers(width, height)
{
}

Relief::Relief(std::unique_ptr<ReliefSource> source)
    : Relief(source->width(), source->height())
{
    m_source = std::move(source);
    m_source->computeHeights(heights().data());
    referenceLayer().copyFrom(heights());
    rangeMaximum = m_source->valueRange();
}

Relief::~Relief() = default;

Relief::Grid Relief::replaceGrid(Grid grid)
{
    Grid old = exchangeGrid(std::move(grid));
    frameRegion = rect();
    heightsChanged = true;
    appearanceChanged = true;
    return old;
}

void Relief::setSource(std::unique_ptr<ReliefSource> source)
{
    m_source = std::move(source);
}

void Relief::setTool(std::unique_ptr<Tool> tool)
{
    m_tool = std::move(tool);
}

std::unique_ptr<Tool> Relief::takeTool()
{
    return std::move(m_tool);
}

} // namespace marlowen
