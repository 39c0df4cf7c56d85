#include "cli/clifiles.h"

#include "cli/quietdecoders.h"
#include "files/filetypes.h"
#include "files/heightmaps.h"
#include "files/stlwriter.h"
#include "files/workspacefile.h"
#include "import/imageimport.h"
#include "relief/grid/reliefstream.h"

#include <algorithm>

namespace marlowen {

namespace {

Failure notBuilt(const QString &what)
{
    return {QStringLiteral("Not Built"),
            QStringLiteral("%1 cannot be handled by this version").arg(what)};
}

Failure unknownEnding()
{
    return {QStringLiteral("Invalid File"), QStringLiteral("the file name has no known ending")};
}

Result<std::unique_ptr<Relief>> openHeightMap(const QString &path)
{
    Result<FloatGrid> loaded = loadPfm(path);
    if (!loaded)
        return loaded.failure();
    FloatGrid grid = loaded.take();
    repairHeights(grid.values.data(), grid.cells());
    auto relief = std::make_unique<Relief>(grid.width, grid.height);
    std::copy(grid.values.begin(), grid.values.end(), relief->heights().data());
    relief->referenceLayer().copyFrom(relief->heights());
    const auto [lowest, highest] = std::minmax_element(grid.values.begin(), grid.values.end());
    relief->rangeMaximum = static_cast<double>(*highest) - static_cast<double>(*lowest);
    return relief;
}

Result<std::unique_ptr<Relief>> open(const QString &path, const ImportSettings &settings)
{
    const FileType *type = fileTypeOf(path);
    if (!type)
        return unknownEnding();
    switch (type->kind) {
    case FileKind::Workspace:
        return loadWorkspace(path);
    case FileKind::Image: {
        const QuietDecoders quiet;
        return importImage(path, settings);
    }
    case FileKind::HeightMap:
        return openHeightMap(path);
    default:
        return notBuilt(
            QStringLiteral("an input of this kind (%1)").arg(QLatin1String(type->description)));
    }
}

using Exporter = Outcome (*)(const Relief &relief, const QString &path, Progress &progress);

GridView heightsOf(const Relief &relief)
{
    return {relief.heights().constData(), relief.width(), relief.height()};
}

/// One row an ending that can be written.
struct ExportRow
{
    const char *ending;
    Exporter write;
};

constexpr ExportRow exportRows[] = {
    {".scp", [](const Relief &relief, const QString &path,
                Progress &) { return saveWorkspace(relief, path); }},
    {".stl", [](const Relief &relief, const QString &path,
                Progress &progress) { return exportGridStl(relief, path, &progress); }},
    {".pfm", [](const Relief &relief, const QString &path,
                Progress &) { return savePfm(heightsOf(relief), path); }},
    {".png",
     [](const Relief &relief, const QString &path, Progress &) {
         const QuietDecoders quiet;
         return saveHeightPng(heightsOf(relief), path);
     }},
};

const ExportRow *exportRowOf(const QString &path)
{
    for (const ExportRow &row : exportRows) {
        if (path.endsWith(QLatin1String(row.ending), Qt::CaseInsensitive))
            return &row;
    }
    return nullptr;
}

/// Control characters escaped, so that a file name cannot drive the terminal, and no longer than a
/// few lines of it.
QString printable(const QString &text)
{
    constexpr qsizetype longest = 300;
    QString line;
    for (const QChar c : text.simplified()) {
        if (c.category() == QChar::Other_Control || c.category() == QChar::Other_Format)
            line += QStringLiteral("\\x%1").arg(c.unicode(), 2, 16, QLatin1Char('0'));
        else
            line += c;
    }
    return line.size() <= longest ? line : line.left(longest - 3) + QStringLiteral("...");
}

} // namespace

QString oneLine(const Failure &failure)
{
    QString line = failure.sentence;
    if (!failure.detail.isEmpty())
        line += QStringLiteral(" (%1)").arg(failure.detail);
    return printable(line);
}

Failure aboutFile(const QString &path, const Failure &failure)
{
    Failure named = failure;
    named.sentence = QStringLiteral("%1: %2").arg(path, failure.sentence);
    return named;
}

Result<std::unique_ptr<Relief>> openFile(const QString &path, const ImportSettings &settings)
{
    Result<std::unique_ptr<Relief>> opened = open(path, settings);
    if (!opened)
        return aboutFile(path, opened.failure());
    return opened.take();
}

Outcome checkExport(const QString &path)
{
    if (exportRowOf(path))
        return {};
    const FileType *type = fileTypeOf(path);
    if (!type || !type->exports)
        return aboutFile(path, unknownEnding());
    return aboutFile(
        path,
        notBuilt(
            QStringLiteral("an output of this kind (%1)").arg(QLatin1String(type->description))));
}

Outcome exportFile(const Relief &relief, const QString &path, const QString &quality,
                   Progress &progress)
{
    if (const Outcome known = checkExport(path); !known)
        return known;
    if (!quality.isEmpty())
        return aboutFile(path,
                         notBuilt(QStringLiteral("a reduced mesh (quality %1)").arg(quality)));
    if (const Outcome done = exportRowOf(path)->write(relief, path, progress); !done)
        return aboutFile(path, done.failure());
    return {};
}

QJsonObject describe(const Relief &relief)
{
    const float *heights = relief.heights().constData();
    const auto [lowest, highest] = std::minmax_element(heights, heights + relief.cells());
    return {{QStringLiteral("width"), relief.width()},
            {QStringLiteral("height"), relief.height()},
            {QStringLiteral("zScale"), relief.zScale},
            {QStringLiteral("rangeMin"), relief.rangeMinimum},
            {QStringLiteral("rangeMax"), relief.rangeMaximum},
            {QStringLiteral("min"), static_cast<double>(*lowest)},
            {QStringLiteral("max"), static_cast<double>(*highest)},
            {QStringLiteral("selection"), relief.selectionActive}};
}

} // namespace marlowen
