#include "files/export/meshexport.h"

#include "base/progress.h"
#include "files/export/exportmesh.h"
#include "files/export/objwriter.h"
#include "files/export/pulse.h"
#include "files/export/stlexport.h"
#include "files/safefile.h"
#include "files/stlwriter.h"
#include "relief/grid/relief.h"

#include <QDataStream>

#include <algorithm>
#include <array>
#include <cmath>

namespace marlowen {

namespace {

/// How long the reduction works between two looks at the progress.
constexpr std::chrono::milliseconds slice{30};
/// Share of the reduction in a reduced export.
constexpr double reductionShare = 0.8;

/// Of the qualities High, Medium and Low, in inches.
constexpr std::array<double, 3> qualityTolerances{0.0, 0.0005, 0.002};

/// Solids of more facets than this are not built to count their base.
constexpr uint64_t mostCountedBase = 200'000;

constexpr uint64_t stlHeaderBytes = 84;
constexpr uint64_t stlFacetBytes = 50;
constexpr uint64_t bytesOfObjPoint = 58; ///< a `v` and a `vn` line, on average

uint64_t facetLimit(const ExportOptions &options)
{
    return static_cast<uint64_t>(std::max(0, options.facets));
}

ExportMesh meshOf(CellSurface surface, const ExportOptions &options, Progress &progress)
{
    if (options.solid > 0.0)
        return {std::move(surface), options.solid, progress};
    return ExportMesh(std::move(surface));
}

ExportMesh fullMesh(const Relief &relief, const ExportOptions &options, Progress &progress)
{
    return meshOf(CellSurface(heightView(relief), relief.zScale), options, progress);
}

/// Facets of the whole grid, with base and walls when they are asked for.
uint64_t fullCount(const Relief &relief, const ExportOptions &options)
{
    const CellSurface surface(heightView(relief), relief.zScale);
    if (options.solid <= 0.0)
        return surface.count();
    Progress silent;
    Pulse pulse(silent);
    return 2 * (surface.count() + surface.borderLength(pulse));
}

ExportMesh reducedMesh(const Relief &relief, const ExportOptions &options,
                       const FacetReducer &reduction, Progress &progress)
{
    return meshOf(CellSurface(heightView(relief), relief.zScale, reduction.mesh()), options,
                  progress);
}

/// The mesh being written, and the count of its STL.
struct Contents
{
    const ExportMesh &mesh;
    StlCount count = StlCount::Standard;
};

Outcome write(const Contents &contents, const MeshTarget &target, Progress &progress)
{
    return writeSafely(target.path, [&](QIODevice &device) {
        if (target.format == MeshFormat::Obj)
            return writeObj(device, contents.mesh, progress);
        QDataStream stream(&device);
        return writeStl(stream, contents.mesh, contents.count, progress);
    });
}

Result<MeshReport> writeFull(const Relief &relief, const ExportOptions &options,
                             const MeshTarget &target)
{
    Progress silent;
    Progress &progress = target.progress ? *target.progress : silent;
    const ExportMesh mesh = fullMesh(relief, options, progress);
    if (progress.cancelled())
        return saveFailed();
    const bool plain = target.format == MeshFormat::Stl && !mesh.isSolid();
    const Outcome done =
        plain ? exportGridStl(relief, target.path, &progress) : write({mesh}, target, progress);
    if (!done)
        return done.failure();
    return MeshReport{.facets = mesh.count()};
}

/// Works until the reduction has ended; false when it was cancelled.
bool reduce(FacetReducer &reduction, Progress &progress)
{
    while (!reduction.step(slice)) {
        progress.advance(reduction.progress());
        progress.describe(QStringLiteral("%1 facets, error %2 in")
                              .arg(reduction.facets())
                              .arg(reduction.largestErrorInches(), 0, 'g', 3));
        if (progress.cancelled())
            return false;
    }
    return !progress.cancelled();
}

/// The reduction has gone as far as memory allows, and the whole grid is allowed too.
bool isFullBetter(const Relief &relief, const ExportOptions &options, const FacetReducer &reduction)
{
    return reduction.end() == ReductionEnd::MemoryLimit &&
           (options.facets == 0 || fullCount(relief, options) <= facetLimit(options));
}

} // namespace

double toleranceInches(const ExportOptions &options)
{
    return options.tolerance > 0.0 ? options.tolerance
                                   : qualityTolerances.at(static_cast<size_t>(options.quality));
}

QString describe(const MeshReport &report)
{
    QString line = QStringLiteral("%1 facets, largest error %2 in")
                       .arg(report.facets)
                       .arg(report.largestErrorInches, 0, 'g', 6);
    if (!report.withinTolerance)
        line += QStringLiteral(", more than the tolerance: the number of facets is limited");
    return line;
}

MeshForecast forecast(const Relief &relief, const ExportOptions &options)
{
    return MeshForecast{.facets = fullCount(relief, options)};
}

MeshForecast forecast(const Relief &relief, const ExportOptions &options,
                      const FacetReducer &reduction)
{
    if (isFullBetter(relief, options, reduction))
        return forecast(relief, options);
    const bool ended = reduction.end() != ReductionEnd::Running;
    MeshForecast expected{true, reduction.facets(), false, reduction.largestErrorInches(),
                          !ended || reduction.end() == ReductionEnd::ToleranceMet};
    if (options.solid > 0.0) {
        expected.atMost = !ended || expected.facets > mostCountedBase;
        Progress silent;
        if (!expected.atMost)
            expected.facets = reducedMesh(relief, options, reduction, silent).count();
    }
    return expected;
}

uint64_t fileBytes(MeshFormat format, uint64_t facets)
{
    if (format == MeshFormat::Stl)
        return stlHeaderBytes + facets * stlFacetBytes;
    // Three index pairs a facet; half as many points, each with a normal.
    const uint64_t points = facets / 2 + 1;
    const auto digits = static_cast<uint64_t>(std::log10(static_cast<double>(points))) + 1;
    return facets * (6 * digits + 11) + points * bytesOfObjPoint;
}

std::optional<ReductionGoal> reductionGoal(const Relief &relief, const ExportOptions &options)
{
    const bool limits = options.facets > 0 && fullCount(relief, options) > facetLimit(options);
    if (toleranceInches(options) <= 0.0 && !limits)
        return {};
    return ReductionGoal{toleranceInches(options), facetLimit(options), options.solid > 0.0,
                         relief.zScale};
}

Result<MeshReport> exportMesh(const Relief &relief, const ExportOptions &options,
                              const MeshTarget &target)
{
    if (const Outcome fits = heightsFitMeshes(relief); !fits)
        return fits.failure();
    const std::optional<ReductionGoal> goal = reductionGoal(relief, options);
    if (!goal)
        return writeFull(relief, options, target);
    Progress silent;
    Progress &progress = target.progress ? *target.progress : silent;
    FacetReducer reduction(heightView(relief), *goal);
    ProgressStep reducing(progress, 0.0, reductionShare);
    if (!reduce(reduction, reducing))
        return saveFailed();
    ProgressStep writing(progress, reductionShare, 1.0);
    return exportMesh(relief, options, {target.path, target.format, &writing}, reduction);
}

Result<MeshReport> exportMesh(const Relief &relief, const ExportOptions &options,
                              const MeshTarget &target, const FacetReducer &reduction)
{
    if (const Outcome fits = heightsFitMeshes(relief); !fits)
        return fits.failure();
    if (isFullBetter(relief, options, reduction)) {
        Result<MeshReport> full = writeFull(relief, options, target);
        if (!full)
            return full;
        MeshReport report = full.take();
        report.reduced = true; // it was asked for, and the report gives its result
        return report;
    }
    Progress silent;
    Progress &progress = target.progress ? *target.progress : silent;
    const ExportMesh mesh = reducedMesh(relief, options, reduction, progress);
    if (progress.cancelled())
        return saveFailed();
    const StlCount count = options.standardStl ? StlCount::Standard : StlCount::Wide;
    const Outcome done = write({mesh, count}, target, progress);
    if (!done)
        return done.failure();
    return MeshReport{true, mesh.count(), reduction.largestErrorInches(),
                      reduction.end() == ReductionEnd::ToleranceMet};
}

} // namespace marlowen
