#pragma once

#include "base/progress.h"
#include "files/mesh/facetcollector.h"

class QIODevice;

namespace marlowen {

/// Reads the facets of a text STL from the device's start: keywords in any case, any white space,
/// several solids. A facet that lacks a corner or a number is a problem and left out; a file that
/// ends inside a solid is a problem.
void readTextStl(QIODevice &device, Progress &progress, FacetCollector &facets,
                 MeshProblems &problems);

} // namespace marlowen
