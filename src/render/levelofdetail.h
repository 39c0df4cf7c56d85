#pragma once

#include "render/camera.h"

#include <QRect>

/// The cells of a relief that may be on screen: the smallest rectangle around what of the box lies
/// inside the viewport, whatever the rotation; a little too large rather than too small. Empty when
/// nothing is.
QRect visibleCells(const ReliefBox &box, const ViewMatrices &view);

/// The visible rectangle with 20 % more on each side, clipped to a grid of this size.
QRect widenedRegion(const QRect &visible, QSize grid);

/// Cells a vertex so that there is never more than about one vertex a logical pixel.
int lodStepFor(const QRect &region, QSize widget);

/// What a mesh was laid out for.
struct MeshLayout
{
    QRect visible; ///< cells on screen then
    QRect region;  ///< cells covered
    int step = 1;
};

/// True when that mesh no longer serves: it covers nothing, the visible cells leave its region or
/// have grown to more than 1.4 times what they were, or another step is due for them.
bool needsRebuild(const MeshLayout &mesh, const QRect &visible, QSize grid, QSize widget);
