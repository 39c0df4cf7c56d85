#include "import/mesh/rasterise.h"

#include "files/safefile.h"
#include "import/importsource.h"
#include "import/mesh/facetrows.h"

#include <QCoreApplication>

#include <new>

namespace marlowen {

namespace {

/// A model below the area limit has more cells than this only when it is thinner than half a cell.
constexpr double mostCells = 4.0 * areaLimitSquareInches * cellsPerInch * cellsPerInch;

Outcome checkSize(const FacetShape &shape)
{
    const auto refused = [](const char *sentence) {
        return Failure{QStringLiteral("Open Failed"),
                       QCoreApplication::translate("Rasterise", sentence)};
    };
    if (!shape.hasArea())
        return refused(QT_TRANSLATE_NOOP("Rasterise", "Error! The model has no extent in x or y"));
    if (shape.tooBig())
        return sizeLimitFailure(shape.areaSquareInches());
    const FacetShape::GridSize size = shape.gridSize();
    if (!(size.columns * size.rows <= mostCells))
        return refused(
            QT_TRANSLATE_NOOP("Rasterise", "Error! The model is too long and thin for a relief"));
    return {};
}

} // namespace

Result<FloatGrid> rasterise(const FacetShape &shape, Progress &progress)
{
    if (const Outcome fit = checkSize(shape); !fit)
        return fit.failure();
    try {
        const FacetShape::GridSize size = shape.gridSize();
        FloatGrid grid(static_cast<int>(size.columns), static_cast<int>(size.rows));
        const FacetGrid drawn{grid.values.data(), grid.width, grid.height};
        const CellPlacement placement{shape.placement(), shape.box().low, shape.cellsPerUnit()};
        const TriangleMesh &mesh = shape.mesh();
        for (size_t next = 0; next < mesh.triangles.size();) {
            if (progress.cancelled())
                return Failure{QStringLiteral("Open Failed"), {}, QStringLiteral("cancelled")};
            next = drawFacets(mesh, next, placement, drawn);
            progress.advance(static_cast<double>(next) /
                             static_cast<double>(mesh.triangles.size()));
        }
        return grid;
    } catch (const std::bad_alloc &) {
        return openFailed(QStringLiteral("not enough memory"));
    }
}

Result<std::unique_ptr<Relief>> importShape(const FacetShape &shape, const ImportSettings &settings,
                                            Progress &progress)
{
    Result<FloatGrid> grid = rasterise(shape, progress);
    if (!grid)
        return grid.failure();
    try {
        return std::make_unique<Relief>(std::make_unique<ImportSource>(grid.take(), settings));
    } catch (const std::bad_alloc &) {
        return openFailed(QStringLiteral("not enough memory"));
    }
}

} // namespace marlowen
