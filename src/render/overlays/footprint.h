#pragma once

#include <QPointF>

#include <vector>

namespace marlowen {

class AlphaBrush;
class Relief;
struct ToolParams;

/// The shape of a brush on the relief, in cells around its centre.
struct FootprintShape
{
    bool square = false;
    double radius = 1.0; ///< half width; half height is radius / aspect
    double aspect = 1.0;
    double angleDegrees = 0.0;
};

/// The shape of a tool on this relief. The radius is that of the parameters, which a stroke never
/// takes below 1 cell.
FootprintShape footprintShape(const ToolParams &tool, const Relief &relief);

/// The outline, counter-clockwise, about one point a screen pixel at this zoom: a rectangle of half
/// sizes radius and radius / aspect or an ellipse of these radii, turned by the angle.
std::vector<QPointF> footprintOutline(const FootprintShape &shape, double zoom);

/// Tools that touch cells under a brush; the others have no footprint.
bool hasFootprint(int toolType);
/// The tool takes its shape from the alpha image rather than from its form.
bool usesAlphaFootprint(const ToolParams &tool, const AlphaBrush &brush);

/// Share of the radius at which the hardness ring is drawn; 0 for none.
double innerRingFraction(const ToolParams &tool);

/// Height of the surface in model space under a stroke point; 0 off the relief.
double surfaceHeight(const Relief &relief, QPointF point);

} // namespace marlowen
