#include "ui/panels/toolnames.h"

#include <QCoreApplication>

#include <algorithm>
#include <iterator>

namespace marlowen {

namespace {

constexpr ToolName names[] = {
    {Tool::Smooth, "Evens out roughness."},
    {Tool::Flatten, "Brings everything toward the mean height under the brush."},
    {Tool::Deposit, "Adds material."},
    {Tool::Remove, "Takes material away."},
    {Tool::Clay, "Lays on flat strips of clay."},
    {Tool::Scrape, "Shaves off what stands out."},
    {Tool::Smudge, "Picks material up at the press and drags it along."},
    {Tool::Pinch, "Gathers material toward the centre."},
    {Tool::Move, "Pushes the shape the way the pointer goes."},
    {Tool::Mask, "Protects what it paints from the other brushes; Lower takes the mask away."},
    {Tool::UndoBrush, "Brings back the relief as it was opened or imported."},
    {Tool::Erase, "Cuts holes: the height becomes 0."},
    {Tool::Crop, "Drag the part to keep, then Apply."},
    {Tool::Elliptical, "Selects an ellipse."},
    {Tool::Rectangle, "Selects a rectangle."},
    {Tool::Polygon, "Selects what lies between the corners you click."},
    {Tool::Magic, "Selects what is about as high as the place you click."},
    {Tool::Sample, "Picks up the height you click, for Brush and Fill."},
    {Tool::HeightBrush, "Paints the sampled height."},
    {Tool::Fill, "Fills the selection with the sampled height."},
};

} // namespace

std::span<const ToolName> toolNames()
{
    return names;
}

QString longToolName(const ToolRow &row)
{
    return QCoreApplication::translate("ToolNames", "%1 Tool").arg(QLatin1String(row.label));
}

QString toolEffect(Tool::Type type)
{
    const auto *name = std::ranges::find(names, type, &ToolName::type);
    if (name == std::end(names))
        return {};
    return QCoreApplication::translate("ToolNames", name->effect);
}

} // namespace marlowen
