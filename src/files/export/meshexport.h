#pragma once

#include "base/result.h"
#include "files/reduce/facetreducer.h"

#include <QString>

#include <array>
#include <optional>

namespace marlowen {

class Progress;
class Relief;

/// Tolerances of the qualities High, Medium and Low in inches; 0 writes every grid triangle.
inline constexpr std::array<double, 3> qualityTolerances{0.0, 0.0005, 0.002};

/// How a relief is written as a mesh.
struct MeshOptions
{
    double toleranceInches = 0.0;     ///< 0: every grid triangle, unless the limit forbids it
    uint64_t facetLimit = 0;          ///< the most facets, base and walls included; 0: no limit
    double baseThicknessInches = 0.0; ///< above 0 the mesh is a solid
    bool standardStl = false;         ///< 32-bit count also in a reduced STL
};

enum class MeshFormat { Stl, Obj };

/// What was written.
struct MeshReport
{
    bool reduced = false; ///< fewer facets than the grid has triangles
    uint64_t facets = 0;
    double largestErrorInches = 0.0;
    bool withinTolerance = true; ///< false when the limit ended the reduction
};

/// One line: facets and the largest error, and whether a limit was in the way.
QString describe(const MeshReport &report);

/// The reduction that the options ask for; none when every grid triangle is to be written.
std::optional<ReductionGoal> reductionGoal(const Relief &relief, const MeshOptions &options);

/// Where a mesh goes.
struct MeshTarget
{
    QString path;
    MeshFormat format = MeshFormat::Stl;
    Progress *progress = nullptr; ///< may be null
};

/// Reduces the relief as far as the options ask and writes it, its Z scale applied. Fails with
/// "Save Failed", also when it is cancelled; the file that was there stays.
Result<MeshReport> exportMesh(const Relief &relief, const MeshOptions &options,
                              const MeshTarget &target);
/// Writes what a reduction of these options has ended with. One that ran out of memory although no
/// limit was set is replaced by every grid triangle.
Result<MeshReport> exportMesh(const Relief &relief, const MeshOptions &options,
                              const MeshTarget &target, const FacetReducer &reduction);

} // namespace marlowen
