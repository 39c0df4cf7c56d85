#include "import/mesh/rasterise.h"

#include "files/safefile.h"
#include "import/importsource.h"
#include "import/mesh/facetbands.h"

#include <QCoreApplication>

#include <new>
#include <utility>

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

Result<LayerGrid> rasterise(const FacetShape &shape, Progress &progress)
{
    if (const Outcome fit = checkSize(shape); !fit)
        return fit.failure();
    try {
        const FacetShape::GridSize size = shape.gridSize();
        LayerGrid grid(static_cast<int>(size.columns), static_cast<int>(size.rows));
        const CellPlacement placement{shape.placement(), shape.box().low, shape.cellsPerUnit()};
        const FacetGrid drawn{grid.view().values, grid.width, grid.height, 0, grid.height};
        if (!drawMesh(shape.mesh(), placement, drawn, progress))
            return Failure{QStringLiteral("Open Failed"), {}, QStringLiteral("cancelled")};
        return grid;
    } catch (const std::bad_alloc &) {
        return openFailed(QStringLiteral("not enough memory"));
    }
}

Result<std::unique_ptr<Relief>> importShape(const FacetShape &shape, const ShapeImport &import,
                                            Progress &progress)
{
    Result<LayerGrid> grid = rasterise(shape, progress);
    if (!grid)
        return grid.failure();
    try {
        auto relief = std::make_unique<Relief>(grid.value().width, grid.value().height);
        LayerGrid values = grid.take();
        if (import.shapeDone)
            import.shapeDone();
        if (import.accepted) {
            relief->rangeMaximum =
                finalHeights(std::move(values), import.settings, relief->heights());
        } else {
            auto source = std::make_unique<ImportSource>(std::move(values), import.settings);
            source->computeHeights(relief->heights().data());
            relief->rangeMaximum = source->valueRange();
            relief->setSource(std::move(source));
        }
        if (!import.heightsOnly)
            relief->referenceLayer().copyFrom(relief->heights());
        return relief;
    } catch (const std::bad_alloc &) {
        return openFailed(QStringLiteral("not enough memory"));
    }
}

} // namespace marlowen
