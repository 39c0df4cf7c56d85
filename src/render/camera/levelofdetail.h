#pragma once

#include "render/camera/camera.h"

#include <QRect>

namespace marlowen {

/// The whole viewport. Parts of it are in the same units: -1..1 each way, y up.
constexpr QRectF wholeViewport(-1.0, -1.0, 2.0, 2.0);

/// The cells of a relief that may be on screen: the smallest rectangle around the part of the box
/// inside that part of the viewport, for any rotation; a little too large rather than too small.
/// Empty when the box is outside.
QRect visibleCells(const SceneBox &box, const ViewMatrices &view,
                   const QRectF &part = wholeViewport);

/// The part of the viewport in which the surface over these cells is, whatever its heights within
/// the box.
QRectF coveredPart(const QRect &cells, const SceneBox &box, const ViewMatrices &view);

/// The pixels (y up) that a part of a viewport, which has so many pixels, touches.
QRect pixelsOf(const QRectF &part, QSize size);

/// The visible rectangle with 20 % more on each side, clipped to a grid of this size.
QRect widenedRegion(const QRect &visible, QSize grid);

/// Cells a vertex so that there is never more than about one vertex a logical pixel.
int lodStepFor(const QRect &region, QSize widget);

/// What a mesh was laid out for: the cells it covers and the cells a vertex.
struct MeshLayout
{
    QRect region;
    int step = 1;
};

/// The layout for these visible cells.
MeshLayout layoutFor(const QRect &visible, QSize grid, QSize widget);

/// True when a mesh no longer serves: it covers nothing, visible cells lie outside its region
/// (which happens before they have grown to more than 1.4 times what they were), or it is coarser
/// than is due for them, or more than twice as fine.
bool needsRebuild(const MeshLayout &mesh, const QRect &visible, QSize grid, QSize widget);

} // namespace marlowen
