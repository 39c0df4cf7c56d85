#include "import/mesh/facetshape.h"

#include "base/sessionlog.h"

#include <algorithm>
#include <cmath>

namespace marlowen {

namespace {

/// Below the limit by one, so that a model that was shrunk surely passes.
constexpr double shrunkSquareInches = 999.0;
/// Source values, heights and reference heights.
constexpr double bytesPerCell = 3.0 * sizeof(float);

} // namespace

FacetShape::FacetShape(TriangleMesh mesh, size_t unit)
    : m_mesh(std::move(mesh))
    , m_fileBox(boxOf(m_mesh))
    , m_unit(unit)
{
    Q_ASSERT(unit < lengthUnits.size());
}

void FacetShape::turn(ModelTurn turn)
{
    m_orientation.turn(turn);
}

void FacetShape::resetOrientation()
{
    m_orientation = {};
}

std::array<double, 3> FacetShape::scale() const
{
    std::array<double, 3> factors{};
    for (size_t seen = 0; seen < 3; ++seen)
        factors[seen] = m_factors[m_orientation.axis(seen)];
    return factors;
}

void FacetShape::setScale(const std::array<double, 3> &factors)
{
    for (size_t seen = 0; seen < 3; ++seen) {
        Q_ASSERT(std::isfinite(factors[seen]) && factors[seen] > 0.0);
        m_factors[m_orientation.axis(seen)] = factors[seen];
    }
    m_onlyShrunk = false;
}

void FacetShape::setUnit(size_t unit)
{
    Q_ASSERT(unit < lengthUnits.size());
    if (unit == m_unit)
        return;
    m_unit = unit;
    if (m_onlyShrunk)
        m_factors.fill(1.0);
    m_onlyShrunk = false;
}

bool FacetShape::shrinkToLimit()
{
    const double area = areaSquareInches();
    const double factor = std::sqrt(shrunkSquareInches / area);
    // An area beyond all numbers cannot be shrunk; it stays too big.
    if (!exceedsAreaLimit(area) || !(factor > 0.0))
        return false;
    m_onlyShrunk = m_factors == std::array<double, 3>{1.0, 1.0, 1.0};
    for (double &along : m_factors)
        along *= factor;
    logInfo() << "Model was over the " << static_cast<int>(areaLimitSquareInches)
              << " sq in limit (" << area << "); scaled by " << factor << "\n";
    return true;
}

ModelPlacement FacetShape::placement() const
{
    ModelPlacement placement;
    for (size_t seen = 0; seen < 3; ++seen) {
        placement.axis[seen] = m_orientation.axis(seen);
        placement.factor[seen] = m_orientation.sign(seen) * m_factors[m_orientation.axis(seen)];
    }
    return placement;
}

ModelBox FacetShape::importedBox() const
{
    ModelPlacement unscaled = placement();
    for (size_t seen = 0; seen < 3; ++seen)
        unscaled.factor[seen] = m_orientation.sign(seen);
    return unscaled.at(m_fileBox);
}

ModelBox FacetShape::box() const
{
    return placement().at(m_fileBox);
}

double FacetShape::areaSquareInches() const
{
    const ModelBox placed = box();
    return (placed.extent(0) * inchesPerUnit()) * (placed.extent(1) * inchesPerUnit());
}

bool FacetShape::hasArea() const
{
    const ModelBox placed = box();
    return placed.extent(0) > 0.0 && placed.extent(1) > 0.0;
}

FacetShape::GridSize FacetShape::gridSize() const
{
    const ModelBox placed = box();
    const auto cells = [&](size_t axis) {
        return std::max(2.0, std::round(placed.extent(axis) * cellsPerUnit()) + 1.0);
    };
    return {cells(0), cells(1)};
}

double FacetShape::reliefMegabytes() const
{
    const GridSize size = gridSize();
    return size.columns * size.rows * bytesPerCell / 1e6;
}

std::array<double, 3> extents(const ModelBox &box)
{
    return {box.extent(0), box.extent(1), box.extent(2)};
}

std::optional<std::array<double, 3>> factorsFor(const FacetShape &shape,
                                                const std::array<double, 3> &sizes)
{
    const std::array<double, 3> now = extents(shape.box());
    std::array<double, 3> factors = shape.scale();
    for (size_t axis = 0; axis < factors.size(); ++axis) {
        if (now[axis] > 0.0 && sizes[axis] != now[axis])
            factors[axis] = sizes[axis] / extents(shape.importedBox())[axis];
        if (!modelScaleRange.contains(factors[axis]))
            return {};
    }
    return factors;
}

} // namespace marlowen
