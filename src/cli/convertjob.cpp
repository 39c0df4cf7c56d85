#include "cli/convertjob.h"

#include "cli/clifiles.h"
#include "cli/commandoptions.h"
#include "cli/scriptstate.h"
#include "files/formats.h"
#include "import/openfile.h"
#include "relief/grid/typedranges.h"
#include "relief/operations/operations.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace marlowen {

namespace {

constexpr qsizetype longestAttribute = 65530; ///< bytes

Failure usage(const QString &sentence)
{
    return {QStringLiteral("Usage"), sentence};
}

bool parseSize(const QString &text, ConvertJob &job)
{
    const QStringList parts = text.split(QLatin1Char('x'));
    int width = 0;
    int height = 0;
    if (parts.size() != 2 || !parseWhole(parts[0], sideRange, width) ||
        !parseWhole(parts[1], sideRange, height))
        return false;
    job.size = QSize(width, height);
    return static_cast<qint64>(width) * height <= std::numeric_limits<int>::max();
}

bool parseZScale(const QString &text, ConvertJob &job)
{
    double value = 0.0;
    if (!parseReal(text, zScaleRange, value))
        return false;
    job.zScale = value;
    return true;
}

/// All options, which write into the job.
std::vector<CommandOption> optionsFor(ConvertJob &job)
{
    std::vector<CommandOption> options =
        optionsOf(importFields(), job.settings, [&job] { job.settingsGiven = true; });
    std::ranges::move(modelOptionsFor(job.model), std::back_inserter(options));
    options.push_back({QStringLiteral("--size"), QStringLiteral("WxH"),
                       QStringLiteral("Resamples to this many cells."),
                       [&job](const QString &text) { return parseSize(text, job); }});
    options.push_back({QStringLiteral("--z-scale"),
                       QStringLiteral("%1..%2").arg(QString::number(zScaleRange.minimum, 'f', 6),
                                                    QString::number(zScaleRange.maximum, 'f', 0)),
                       QStringLiteral("Factor on all heights."),
                       [&job](const QString &text) { return parseZScale(text, job); }});
    options.push_back({QStringLiteral("--author"), QStringLiteral("NAME"),
                       QStringLiteral("Who made the pattern (.ptr)."), [&job](const QString &text) {
                           job.author = text;
                           return text.toUtf8().size() <= longestAttribute;
                       }});
    for (const Field<ExportOptions> &field : exportFields()) {
        if (field.info.has(knownExportOptions()))
            std::ranges::move(
                optionsOf(FieldTable<ExportOptions>(&field, 1), job.exportOptions, {}),
                std::back_inserter(options));
    }
    return options;
}

Outcome checkFiles(const QStringList &files, const ConvertJob &job)
{
    if (files.size() != 2)
        return usage(QStringLiteral("convert needs an INPUT and an OUTPUT"));
    const Format *output = formatOf(files[1]);
    if (!output || !output->save)
        return usage(QStringLiteral("%1: the name of the output must end in one of %2")
                         .arg(files[1], exportEndings().join(QStringLiteral(", "))));
    if (job.settingsGiven && formatOf(files[0]) && !takesImportSettings(files[0]))
        return usage(QStringLiteral("%1: %2").arg(files[0], notImported()));
    if (job.model.given && formatOf(files[0]) && !opensAsModel(files[0]))
        return usage(QStringLiteral("%1: %2").arg(files[0], notAModel()));
    return {};
}

/// The relief of the input. Its import is open where it has one, that of a mesh only for a
/// bas-relief.
Result<std::unique_ptr<Relief>> openInput(const ConvertJob &job, Progress &progress)
{
    if (!opensAsModel(job.input))
        return openFile(job.input, job.settings);
    Result<OpenedModel> opened = openModelFile(job.input, job.model.options, progress);
    if (!opened)
        return opened.failure();
    std::optional<OpenedModel> model = opened.take();
    orient(model->shape, job.model);
    const ShapeImport import{.settings = job.settings,
                             .accepted = !job.settings.basRelief,
                             .shapeDone = [&model] { model.reset(); },
                             .heightsOnly = !isWorkspace(job.output)};
    return rasteriseFile(job.input, model->shape, import, progress);
}

Outcome shape(ScriptState &state, const ConvertJob &job)
{
    if (state.bench.session().active()) {
        ImportSession &session = state.bench.session();
        if (job.settings.basRelief)
            session.update(&state.progress());
        state.bench.acceptImport();
    }
    const QSize size = job.size.value_or(state.relief()->rect().size());
    if (size != state.relief()->rect().size() &&
        !resize(*state.relief(), size.width(), size.height(), {nullptr, &state.progress()}) &&
        !state.progress().cancelled())
        return aboutFile(job.input, scriptFailure(QStringLiteral("it cannot be resized")));
    if (job.zScale)
        setZScale(*state.relief(), *job.zScale, nullptr);
    return {};
}

QString formatLine(const char *ending, const char *text)
{
    return QStringLiteral("  %1%2\n").arg(QLatin1String(ending), -8).arg(QLatin1String(text));
}

} // namespace

Result<ConvertJob> parseConvert(const QStringList &arguments)
{
    ConvertJob job;
    QString wrong;
    const QStringList files = takeOptions(arguments, optionsFor(job), wrong);
    if (!wrong.isEmpty())
        return usage(wrong);
    if (const Outcome usable = checkFiles(files, job); !usable)
        return usable.failure();
    job.input = files[0];
    job.output = files[1];
    return job;
}

Outcome runConvert(const ConvertJob &job, Progress &progress)
{
    Result<std::unique_ptr<Relief>> opened = openInput(job, progress);
    if (!opened)
        return opened.failure();
    ScriptState state(progress);
    state.bench.take(opened.take());
    if (const Outcome shaped = shape(state, job); !shaped)
        return shaped;
    if (progress.cancelled())
        return aboutFile(job.output, scriptFailure(QStringLiteral("interrupted")));
    return writeFile({*state.relief(), job.output, job.exportOptions, &progress, job.author});
}

QString convertOptionsHelp()
{
    ConvertJob job;
    return optionsHelp(optionsFor(job));
}

QString formatsHelp()
{
    QString inputs;
    QString outputs;
    for (const Format &format : formats()) {
        if (format.opensAs != OpensAs::Nothing)
            inputs += formatLine(format.ending, format.label);
        if (format.save)
            outputs += formatLine(format.ending, format.written);
    }
    return QStringLiteral("INPUT, by its ending:\n%1OUTPUT, by its ending:\n%2")
        .arg(inputs, outputs);
}

} // namespace marlowen
