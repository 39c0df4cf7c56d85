#include "cli/clifiles.h"

#include "cli/quietdecoders.h"
#include "import/openfile.h"

#include <algorithm>
#include <cstdio>

namespace marlowen {

namespace {

/// Discards output of image libraries on standard error while a picture is read or written.
std::unique_ptr<QuietDecoders> quietFor(const QString &path)
{
    const Format *format = formatOf(path);
    const bool picture = format && format->opensAs == OpensAs::Picture;
    return picture ? std::make_unique<QuietDecoders>() : nullptr;
}

/// Control characters escaped, so that a file name cannot control the terminal, and no longer than
/// a few lines of it.
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
    auto quiet = quietFor(path);
    Result<std::unique_ptr<Relief>> opened = openRelief(path, settings);
    quiet.reset();
    if (!opened)
        return aboutFile(path, opened.failure());
    if (const QString note = importNote(*opened.value()); !note.isEmpty())
        std::fprintf(stderr, "%s\n", note.toLocal8Bit().constData());
    return opened.take();
}

Outcome writeFile(const ExportJob &job)
{
    auto quiet = quietFor(job.path);
    const Result<QString> written = exportFile(job);
    quiet.reset();
    if (!written)
        return aboutFile(job.path, written.failure());
    if (!written.value().isEmpty())
        std::fprintf(stderr, "%s\n", written.value().toLocal8Bit().constData());
    return {};
}

QString notImported()
{
    return QStringLiteral("import settings apply to pictures and meshes only");
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
