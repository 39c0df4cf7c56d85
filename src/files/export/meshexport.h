#pragma once

#include "base/result.h"
#include "files/exportoptions.h"
#include "files/reduce/facetreducer.h"

#include <QString>

#include <optional>

namespace marlowen {

class Progress;
class Relief;

/// The tolerance that the options ask for in inches: their own, or that of their quality; 0 writes
/// every grid triangle.
double toleranceInches(const ExportOptions &options);

enum class MeshFormat { Stl, Obj };

/// The result of an export.
struct MeshReport
{
    bool reduced = false; ///< fewer facets than the grid has triangles
    uint64_t facets = 0;
    double largestErrorInches = 0.0;
    bool withinTolerance = true; ///< false when the limit ended the reduction
};

/// One line: facets and the largest error, and whether a limit was in the way.
QString describe(const MeshReport &report);

/// The estimated result of an export.
struct MeshForecast
{
    bool reduced = false;
    uint64_t facets = 0;
    bool atMost = false; ///< a large solid may have fewer facets
    double largestErrorInches = 0.0;
    bool withinTolerance = true; ///< false when a limit ended the reduction
};

/// Of every grid triangle.
MeshForecast forecast(const Relief &relief, const ExportOptions &options);
/// Of a reduction as it stands.
MeshForecast forecast(const Relief &relief, const ExportOptions &options,
                      const FacetReducer &reduction);

/// The size of a file of so many facets: exact for an STL, within about a tenth for an OBJ.
uint64_t fileBytes(MeshFormat format, uint64_t facets);

/// The reduction that the options ask for; none when every grid triangle is to be written. A limit
/// counts the base and walls of a solid too; it reduces high quality as well, when the grid has
/// more triangles.
std::optional<ReductionGoal> reductionGoal(const Relief &relief, const ExportOptions &options);

/// The target file of a mesh.
struct MeshTarget
{
    QString path;
    MeshFormat format = MeshFormat::Stl;
    Progress *progress = nullptr; ///< may be null
};

/// Reduces the relief as far as the options ask and writes it, its Z scale applied. Fails with
/// "Save Failed", also when it is cancelled; an existing file then stays unchanged.
Result<MeshReport> exportMesh(const Relief &relief, const ExportOptions &options,
                              const MeshTarget &target);
/// Writes what a reduction of these options has ended with. One that ran out of memory although no
/// limit was set is replaced by every grid triangle.
Result<MeshReport> exportMesh(const Relief &relief, const ExportOptions &options,
                              const MeshTarget &target, const FacetReducer &reduction);

} // namespace marlowen
