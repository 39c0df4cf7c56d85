#pragma once

#include "base/progress.h"
#include "base/result.h"
#include "import/importsettings.h"
#include "import/mesh/facetshape.h"
#include "relief/grid/layergrid.h"
#include "relief/grid/relief.h"

#include <functional>
#include <memory>

namespace marlowen {

/// The source values of a shape: gridSize() values, 128 an inch along x and y as seen, row 0 at the
/// lowest y. A value is the highest height of all facets over its grid point, in cells above the
/// shape's lowest point; edges and corners count, with a tolerance of 1e-6 cells. 0 where there is
/// no facet.
///
/// Works on all cores; takes little memory but the grid. Fails for a shape that is too big ("Size")
/// or has no extent in x or y ("Open Failed"), when memory is short, and with an empty sentence
/// when the user cancelled.
Result<LayerGrid> rasterise(const FacetShape &shape, Progress &progress);

/// How a shape becomes a relief.
struct ShapeImport
{
    ImportSettings settings;
    /// The import ends at once, without a bas-relief, so that its source values take no memory
    /// beside the finished relief.
    bool accepted = false;
    /// Called, where set, when the shape is needed no more: the import can be cancelled no longer
    /// and fails only for want of memory. It may end the shape, so that the mesh takes no memory
    /// beside the heights.
    std::function<void()> shapeDone = {};
    /// The relief is not sculpted or saved as a workspace: it needs no reference layer.
    bool heightsOnly = false;
};

/// A relief whose import is open on the rasterised shape. With a depth of 0 its heights are cells.
/// No margin is added. Fails as rasterise() does.
Result<std::unique_ptr<Relief>> importShape(const FacetShape &shape, const ShapeImport &import,
                                            Progress &progress);

} // namespace marlowen
