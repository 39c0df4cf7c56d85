#pragma once

#include "files/mesh/trianglemesh.h"
#include "import/mesh/rasterise.h"

#include <cmath>
#include <cstdlib>

namespace fuzz {

/// Checks the guarantees of every mesh reader, and makes a small raster of it. Ends the process
/// when a promise is broken.
inline void checkMesh(marlowen::TriangleMesh mesh)
{
    using namespace marlowen;
    for (const MeshTriangle &triangle : mesh.triangles) {
        for (const quint32 place : triangle) {
            if (place >= mesh.positions.size())
                std::abort();
            for (const double value : mesh.positions[place]) {
                if (!std::isfinite(value))
                    std::abort();
            }
        }
    }
    if (mesh.triangles.empty())
        return;
    FacetShape shape(std::move(mesh), 0);
    std::array<double, 3> factors{1.0, 1.0, 1.0};
    const ModelBox box = shape.box();
    for (size_t i = 0; i < 3; ++i) {
        const double factor = 0.5 / box.extent(i);
        if (std::isfinite(factor) && factor > 0.0)
            factors[i] = factor;
    }
    shape.setScale(factors);
    Progress silent;
    const Result<LayerGrid> grid = rasterise(shape, silent);
    if (!grid)
        return;
    for (const float value : grid.value().view().span()) {
        if (!(value >= 0.0F))
            std::abort();
    }
}

} // namespace fuzz
