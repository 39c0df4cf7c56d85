#include "cli/convertjob.h"

#include "cli/clifiles.h"
#include "cli/scriptkeys.h"
#include "cli/scriptstate.h"
#include "files/filetypes.h"
#include "relief/operations/operations.h"

#include <limits>

namespace marlowen {

namespace {

Failure _usage(const QString &sentence)
{
    return {QStringLiteral("Usage"), sentence};
}

bool parseWhole(const QString &text, int minimum, int maximum, int &value)
{
    bool ok = false;
    const int number = text.toInt(&ok);
    if (!ok || number < minimum || number > maximum)
        return false;
    value = number;
    return true;
}

bool parseReal(const QString &text, double minimum, double maximum, double &value)
{
    bool ok = false;
    const double number = text.toDouble(&ok);
    if (!ok || !(number >= minimum && number <= maximum))
        return false;
    value = number;
    return true;
}

bool parseTilt(const QString &text, ConvertJob &job)
{
    const QStringList parts = text.split(QLatin1Char(','));
    return parts.size() == 2 && parseWhole(parts[0], -100, 100, job.settings.tiltHorizontal) &&
           parseWhole(parts[1], -100, 100, job.settings.tiltVertical);
}

bool parseBasRelief(const QString &text, ConvertJob &job)
{
    const QStringList parts = text.split(QLatin1Char(','));
    job.settings.basRelief = true;
    return parts.size() == 3 && parseWhole(parts[0], 1, 1024, job.settings.gridSize) &&
           parseWhole(parts[1], 1, 65536, job.settings.contrastFactor) &&
           parseWhole(parts[2], 1, 1000000000, job.settings.smoothness);
}

bool parseSize(const QString &text, ConvertJob &job)
{
    const QStringList parts = text.split(QLatin1Char('x'));
    int width = 0;
    int height = 0;
    if (parts.size() != 2 || !parseWhole(parts[0], 2, 1000000, width) ||
        !parseWhole(parts[1], 2, 1000000, height))
        return false;
    job.size = QSize(width, height);
    return static_cast<qint64>(width) * height <= std::numeric_limits<int>::max();
}

bool parseZScale(const QString &text, ConvertJob &job)
{
    double value = 0.0;
    if (!parseReal(text, smallestZScale, largestZScale, value))
        return false;
    job.zScale = value;
    return true;
}

bool parseQuality(const QString &text, ConvertJob &job)
{
    job.quality = text.toLower();
    return QStringList{QStringLiteral("high"), QStringLiteral("medium"), QStringLiteral("low")}
        .contains(job.quality);
}

/// One row an option of "convert".
struct Option
{
    const char *name;
    const char *value; ///< how the help calls its value; null when it takes none
    const char *help;
    bool (*apply)(const QString &value, ConvertJob &job); ///< false: the value is wrong
};

constexpr Option options[] = {
    {"--flip-y", nullptr, "turn the relief upside down",
     [](const QString &, ConvertJob &job) { return job.settings.flipY = true; }},
    {"--invert-z", nullptr, "make dark high and light low",
     [](const QString &, ConvertJob &job) { return job.settings.invertZ = true; }},
    {"--no-transparency", nullptr, "let smoothing fill empty cells",
     [](const QString &, ConvertJob &job) { return !(job.settings.transparency = false); }},
    {"--smoothing", "0..5", "smoothing passes",
     [](const QString &text, ConvertJob &job) {
         return parseReal(text, 0.0, 5.0, job.settings.smoothing);
     }},
    {"--raise-lower", "-100..100", "percent of the range to lower by",
     [](const QString &text, ConvertJob &job) {
         return parseWhole(text, -100, 100, job.settings.raiseLower);
     }},
    {"--trim", "0..20", "cells to eat from the outline",
     [](const QString &text, ConvertJob &job) {
         return parseWhole(text, 0, 20, job.settings.trim);
     }},
    {"--tilt", "H,V", "slope in tenths of a degree, -100..100 each", parseTilt},
    {"--depth", "D", "height of the whole range, in cells",
     [](const QString &text, ConvertJob &job) {
         return parseReal(text, 0.0, 1e30, job.settings.depth);
     }},
    {"--bas-relief", "G,C,S", "grid size, contrast factor and smoothness", parseBasRelief},
    {"--size", "WxH", "resample to this many cells", parseSize},
    {"--z-scale", "Z", "factor on all heights, above 0", parseZScale},
    {"--quality", "high|medium|low", "reduce the exported mesh", parseQuality},
};

/// Applies the option at `position` and moves it to the last argument that the option used. Returns
/// what is wrong, or nothing.
QString applyOption(const QStringList &arguments, qsizetype &position, ConvertJob &job)
{
    const QString name = arguments[position].section(QLatin1Char('='), 0, 0);
    const bool attached = arguments[position].contains(QLatin1Char('='));
    for (const Option &option : options) {
        if (name != QLatin1String(option.name))
            continue;
        if (!option.value && attached)
            return QStringLiteral("%1 takes no value").arg(name);
        if (option.value && !attached && position + 1 == arguments.size())
            return QStringLiteral("%1 needs a value: %2").arg(name, QLatin1String(option.value));
        QString value;
        if (option.value)
            value =
                attached ? arguments[position].section(QLatin1Char('='), 1) : arguments[++position];
        if (option.apply(value, job))
            return {};
        return QStringLiteral("%1: \"%2\" is not %3 (%4)")
            .arg(name, value, QLatin1String(option.value), QLatin1String(option.help));
    }
    return QStringLiteral("unknown option %1").arg(name);
}

Outcome checkFiles(const QStringList &files)
{
    if (files.size() != 2)
        return _usage(QStringLiteral("convert needs an INPUT and an OUTPUT"));
    const FileType *type = fileTypeOf(files[1]);
    if (!type || !type->exports)
        return _usage(
            QStringLiteral("%1: the name of the output must end in .scp, .stl, .obj, .ptr, "
                           ".pfm or .png")
                .arg(files[1]));
    return {};
}

Outcome shape(ScriptState &state, const ConvertJob &job)
{
    if (state.import().active()) {
        if (job.settings.basRelief && !state.import().basReliefGenerator)
            return aboutFile(job.input, scriptFailure(QStringLiteral(
                                            "a bas-relief cannot be made by this version")));
        if (job.settings.basRelief)
            state.import().update(&state.progress());
        state.import().accept();
    }
    const QSize size = job.size.value_or(state.relief()->rect().size());
    if (size != state.relief()->rect().size() &&
        !resize(*state.relief(), size.width(), size.height(), nullptr))
        return aboutFile(job.input, scriptFailure(QStringLiteral("it cannot be resized")));
    if (job.zScale)
        setZScale(*state.relief(), *job.zScale, nullptr);
    return {};
}

} // namespace

Result<ConvertJob> parseConvert(const QStringList &arguments)
{
    ConvertJob job;
    QStringList files;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        if (!arguments[i].startsWith(QLatin1String("--"))) {
            files << arguments[i];
            continue;
        }
        if (const QString wrong = applyOption(arguments, i, job); !wrong.isEmpty())
            return _usage(wrong);
    }
    if (const Outcome usable = checkFiles(files); !usable)
        return usable.failure();
    job.input = files[0];
    job.output = files[1];
    return job;
}

Outcome runConvert(const ConvertJob &job, Progress &progress)
{
    if (const Outcome known = checkExport(job.output); !known)
        return known;
    Result<std::unique_ptr<Relief>> opened = openFile(job.input, job.settings);
    if (!opened)
        return opened.failure();
    ScriptState state(progress);
    state.install(opened.take());
    if (const Outcome shaped = shape(state, job); !shaped)
        return shaped;
    if (progress.cancelled())
        return aboutFile(job.output, scriptFailure(QStringLiteral("interrupted")));
    return exportFile(*state.relief(), job.output, job.quality, progress);
}

QString convertOptionsHelp()
{
    QString help;
    for (const Option &option : options) {
        const QString usage = QLatin1String(option.name) + QLatin1Char(' ') +
                              QLatin1String(option.value ? option.value : "");
        help += QStringLiteral("  %1%2\n").arg(usage, -26).arg(QLatin1String(option.help));
    }
    return help;
}

} // namespace marlowen
