#pragma once

#include "base/fieldtable.h"
#include "files/mesh/modelplacement.h"
#include "relief/grid/physicalsize.h"

#include <optional>

namespace marlowen {

/// Factors of a model's axes that a person, a script or the command line can ask for.
inline constexpr FieldRange modelScaleRange{1e-12, 1e12};

/// A triangle mesh on its way to a relief: turned in steps, scaled along its axes, measured in a
/// unit. The triangles themselves never change. Turning and scaling are about the origin of the
/// file; a scale factor stays with its axis of the model when the model is turned.
///
/// Axes are 0 x, 1 y, 2 z. "As seen" means after turning: x right, y up, z toward the viewer.
class FacetShape
{
public:
    /// `unit` is the unit of the model's numbers, an index into lengthUnits. The mesh must not be
    /// empty.
    FacetShape(TriangleMesh mesh, size_t unit);

    const TriangleMesh &mesh() const { return m_mesh; }
    /// About the triangles of the file.
    const ModelBox &fileBox() const { return m_fileBox; }

    void turn(ModelTurn turn);
    void resetOrientation();
    const ModelOrientation &orientation() const { return m_orientation; }

    /// Factors along the axes as seen; 1 is as imported.
    std::array<double, 3> scale() const;
    /// All finite and above 0.
    void setScale(const std::array<double, 3> &factors);

    size_t unit() const { return m_unit; }
    double inchesPerUnit() const { return lengthUnits[m_unit].inches; }
    /// When the automatic shrink is the only scaling it is taken back, and not repeated.
    void setUnit(size_t unit);

    /// Scales a model of areaLimitSquareInches or more down to just below it, the same along all
    /// axes, and says so in the session log. Returns whether it did.
    bool shrinkToLimit();

    /// Turned, not scaled; in model units.
    ModelBox importedBox() const;
    /// Turned and scaled; in model units.
    ModelBox box() const;
    /// The transformation of a point of the mesh into a point of box().
    ModelPlacement placement() const;

    /// Of the box, along x and y as seen.
    double areaSquareInches() const;
    bool tooBig() const { return exceedsAreaLimit(areaSquareInches()); }
    /// Whether the box has an extent along both x and y, which a relief needs.
    bool hasArea() const;

    /// Cells of the relief to be, as whole numbers; only a shape that is not too big surely has
    /// fewer than an int holds.
    struct GridSize
    {
        double columns;
        double rows;
    };
    GridSize gridSize() const;
    double cellsPerUnit() const { return cellsPerInch * inchesPerUnit(); }
    /// Memory of the relief with its open import.
    double reliefMegabytes() const;

    /// Only for showing: which side of a facet is its front.
    bool invertNormals = false;

private:
    TriangleMesh m_mesh;
    ModelBox m_fileBox;
    ModelOrientation m_orientation;
    std::array<double, 3> m_factors{1.0, 1.0, 1.0}; ///< along the axes of the file
    size_t m_unit;
    bool m_onlyShrunk = false; ///< the factors are those of the automatic shrink
};

/// Along x, y and z.
std::array<double, 3> extents(const ModelBox &box);

/// The factors along the axes as seen that give the model these sizes, in model units; those of an
/// axis without extent stay. Nothing when a factor would leave modelScaleRange.
std::optional<std::array<double, 3>> factorsFor(const FacetShape &shape,
                                                const std::array<double, 3> &sizes);

} // namespace marlowen
