#include "files/formats.h"

#include "files/boundedimage.h"
#include "files/export/meshexport.h"
#include "files/heightmaps.h"
#include "files/mesh/meshthumbnail.h"
#include "files/patternfile.h"
#include "files/workspacefile.h"
#include "files/workspacethumbnail.h"
#include "relief/grid/physicalsize.h"

#include <QtGlobal>

#include <algorithm>
#include <iterator>

namespace marlowen {

namespace {

/// The outcome of a writer that has nothing to say.
Result<QString> quietly(const Outcome &done)
{
    if (!done)
        return done.failure();
    return QString();
}

Result<QString> writeWorkspace(const ExportJob &job)
{
    return quietly(saveWorkspace(job.relief, job.path));
}

/// A reduced mesh has a line that says how far it was reduced.
Result<QString> writeMesh(const ExportJob &job, MeshFormat format)
{
    const Result<MeshReport> report =
        exportMesh(job.relief, job.options, {job.path, format, job.progress});
    if (!report)
        return report.failure();
    return report.value().reduced ? describe(report.value()) : QString();
}

Result<QString> writeStl(const ExportJob &job)
{
    return writeMesh(job, MeshFormat::Stl);
}

Result<QString> writeObj(const ExportJob &job)
{
    return writeMesh(job, MeshFormat::Obj);
}

Result<QString> writePattern(const ExportJob &job)
{
    Progress quiet;
    PatternToSave pattern{newPatternAttributes(job.path, QLatin1String(lengthUnits[0].label)),
                          job.relief.zScale, heightView(job.relief)};
    pattern.attributes.author = job.author;
    return quietly(savePattern(pattern, job.path, job.progress ? *job.progress : quiet));
}

QImage patternThumbnail(const QString &path, int side)
{
    const Result<PatternInfo> info = readPatternInfo(path);
    if (!info)
        return {};
    const QImage &image = info.value().thumbnail;
    if (image.width() <= side && image.height() <= side)
        return image;
    return image.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

QJsonObject patternAttributes(const QString &path)
{
    const Result<PatternInfo> info = readPatternInfo(path);
    if (!info)
        return {};
    const PatternAttributes &attributes = info.value().attributes;
    const QSize thumbnail = info.value().thumbnail.size();
    return {{QStringLiteral("title"), attributes.title},
            {QStringLiteral("author"), attributes.author},
            {QStringLiteral("units"), attributes.units},
            {QStringLiteral("created"), attributes.created},
            {QStringLiteral("thumbnail"),
             QStringLiteral("%1 x %2").arg(thumbnail.width()).arg(thumbnail.height())}};
}

Result<QString> writePfm(const ExportJob &job)
{
    return quietly(savePfm(heightView(job.relief), job.path));
}

Result<QString> writePng(const ExportJob &job)
{
    return quietly(saveHeightPng(heightView(job.relief), job.path));
}

constexpr unsigned meshOptions = TakesQuality | TakesTolerance | TakesFacets | TakesSolid;

constexpr const char *tiff = QT_TRANSLATE_NOOP("Formats", "TIFF picture");
constexpr const char *jpeg = QT_TRANSLATE_NOOP("Formats", "JPEG picture");

// In the order in which a person sees them.
constexpr Format rows[] = {
    {.ending = ".scp",
     .label = QT_TRANSLATE_NOOP("Formats", "workspace"),
     .opensAs = OpensAs::Relief,
     .inWindow = true,
     .load = loadWorkspace,
     .save = writeWorkspace,
     .written = QT_TRANSLATE_NOOP("Formats", "workspace"),
     .thumbnail = workspaceThumbnail},
    {.ending = patternEnding,
     .label = QT_TRANSLATE_NOOP("Formats", "pattern"),
     .opensAs = OpensAs::Relief,
     .inWindow = true,
     .load = openPattern,
     .save = writePattern,
     .written = QT_TRANSLATE_NOOP("Formats", "pattern with its name, time and thumbnail"),
     .takesAuthor = true,
     .thumbnail = patternThumbnail,
     .attributes = patternAttributes},
    {.ending = ".obj",
     .label = QT_TRANSLATE_NOOP("Formats", "OBJ mesh"),
     .opensAs = OpensAs::Model,
     .inWindow = true,
     .save = writeObj,
     .written = QT_TRANSLATE_NOOP("Formats", "OBJ mesh"),
     .exportOptions = meshOptions,
     .thumbnail = meshThumbnail},
    {.ending = ".stl",
     .label = QT_TRANSLATE_NOOP("Formats", "STL mesh"),
     .opensAs = OpensAs::Model,
     .inWindow = true,
     .save = writeStl,
     .written = QT_TRANSLATE_NOOP("Formats", "STL mesh"),
     .exportOptions = meshOptions | TakesStandardStl,
     .thumbnail = meshThumbnail},
    {.ending = ".jpg",
     .label = jpeg,
     .opensAs = OpensAs::Picture,
     .inWindow = true,
     .thumbnail = readImageWithin},
    {.ending = ".jpeg",
     .label = jpeg,
     .opensAs = OpensAs::Picture,
     .inWindow = true,
     .thumbnail = readImageWithin},
    {.ending = ".png",
     .label = QT_TRANSLATE_NOOP("Formats", "PNG picture"),
     .opensAs = OpensAs::Picture,
     .inWindow = true,
     .save = writePng,
     .written = QT_TRANSLATE_NOOP(
         "Formats", "16-bit grey picture, the lowest height black, the highest white"),
     .thumbnail = readImageWithin},
    {.ending = ".bmp",
     .label = QT_TRANSLATE_NOOP("Formats", "BMP picture"),
     .opensAs = OpensAs::Picture,
     .inWindow = true,
     .thumbnail = readImageWithin},
    {.ending = ".tif",
     .label = tiff,
     .opensAs = OpensAs::Picture,
     .inWindow = true,
     .thumbnail = readImageWithin},
    {.ending = ".tiff",
     .label = tiff,
     .opensAs = OpensAs::Picture,
     .inWindow = true,
     .thumbnail = readImageWithin},
    {.ending = ".pfm",
     .label = QT_TRANSLATE_NOOP("Formats", "float height map"),
     .opensAs = OpensAs::Relief,
     .inWindow = true,
     .load = loadHeightMap,
     .save = writePfm,
     .written = QT_TRANSLATE_NOOP("Formats", "float height map with the exact heights")},
};

/// The first option that is set but not taken; null when there is none.
const Field<ExportOptions> *unwantedOption(const ExportOptions &options, unsigned taken)
{
    for (const Field<ExportOptions> &field : exportFields()) {
        if (!field.info.has(taken) && field.value(options) != field.initial())
            return &field;
    }
    return nullptr;
}

const Format &writtenBy(Result<QString> (*save)(const ExportJob &job))
{
    return *std::find_if(std::begin(rows), std::end(rows),
                         [save](const Format &format) { return format.save == save; });
}

Failure cannotWrite(const QString &sentence)
{
    return {QStringLiteral("Invalid File"), sentence};
}

} // namespace

std::span<const Format> formats()
{
    return rows;
}

const Format *formatOf(const QString &path)
{
    for (const Format &format : rows) {
        if (path.endsWith(QLatin1String(format.ending), Qt::CaseInsensitive))
            return &format;
    }
    return nullptr;
}

const Format &workspaceFormat()
{
    return writtenBy(writeWorkspace);
}

const Format &patternFormat()
{
    return writtenBy(writePattern);
}

const Format &meshFormat(MeshFormat format)
{
    return writtenBy(format == MeshFormat::Stl ? writeStl : writeObj);
}

bool isWorkspace(const QString &path)
{
    return formatOf(path) == &workspaceFormat();
}

QStringList openPatterns()
{
    QStringList patterns;
    for (const Format &format : rows) {
        if (format.inWindow)
            patterns.append(QLatin1Char('*') + QLatin1String(format.ending));
    }
    return patterns;
}

QStringList exportEndings()
{
    QStringList endings;
    for (const Format &format : rows) {
        if (format.save)
            endings.append(QLatin1String(format.ending));
    }
    return endings;
}

unsigned knownExportOptions()
{
    unsigned known = 0;
    for (const Format &format : rows)
        known |= format.exportOptions;
    return known;
}

Result<QString> exportFile(const ExportJob &job)
{
    const Format *format = formatOf(job.path);
    if (!format || !format->save)
        return cannotWrite(QStringLiteral("the name must end in one of %1")
                               .arg(exportEndings().join(QStringLiteral(", "))));
    if (const auto *field = unwantedOption(job.options, format->exportOptions))
        return cannotWrite(QStringLiteral("files ending in %1 take no %2")
                               .arg(QLatin1String(format->ending), QLatin1String(field->info.key)));
    if (!job.author.isEmpty() && !format->takesAuthor)
        return cannotWrite(
            QStringLiteral("files ending in %1 take no author").arg(QLatin1String(format->ending)));
    return format->save(job);
}

} // namespace marlowen
