#include "cli/commandline.h"

#include "base/version.h"
#include "cli/clifiles.h"
#include "cli/convertjob.h"
#include "cli/modelfiles.h"
#include "cli/placeaction.h"
#include "cli/scriptrunner.h"
#include "cli/scriptstate.h"
#include "cli/terminalprogress.h"
#include "cli/thumbnailcommand.h"
#include "cli/toolrecord.h"
#include "files/formats.h"
#include "files/safefile.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <new>

#include <unistd.h>

namespace marlowen {

namespace {

enum ExitStatus { Done = 0, WorkFailed = 1, WrongUsage = 2 };

constexpr char usageText[] =
    "marlowen-cli convert INPUT OUTPUT [options]\n"
    "marlowen-cli info FILE [--json]\n"
    "marlowen-cli run SCRIPT          SCRIPT is a file, or - for standard input\n"
    "marlowen-cli thumbnail FILE PICTURE [--size N]\n"
    "marlowen-cli COMMAND --help | --help | --version\n";

void printOut(const QString &text)
{
    std::fputs(text.toLocal8Bit().constData(), stdout);
}

/// One line on standard error.
int fail(const QString &line, ExitStatus status)
{
    std::fprintf(stderr, "%s\n", line.toLocal8Bit().constData());
    return status;
}

int wrongUsage(const QString &sentence)
{
    return fail(QStringLiteral("marlowen-cli: %1 (see marlowen-cli --help)").arg(sentence),
                WrongUsage);
}

int workFailed(const Failure &failure)
{
    return fail(QStringLiteral("marlowen-cli: %1").arg(oneLine(failure)), WorkFailed);
}

QString convertHelp()
{
    return formatsHelp() + QStringLiteral("Options:\n") + convertOptionsHelp();
}

QString infoHelp()
{
    return QStringLiteral("Prints what a file that convert reads holds, as text or as one JSON "
                          "object: of a\nmesh its "
                          "corners, facets, problems, box and area, of others size, Z scale, "
                          "range\nand heights, of a "
                          "pattern also its title, author, unit, time and thumbnail size.\n");
}

QString runHelp()
{
    return QStringLiteral("Runs a script of one JSON object a line.\n") + toolRecordHelp() +
           placeHelp();
}

QString thumbnailHelp()
{
    return QStringLiteral("Writes a small picture of a workspace, a pattern or an image as PNG, at "
                          "most N pixels\nwide and high (16 to 1024, 256 without --size).\n");
}

int helpCommand(const QStringList &)
{
    printOut(QLatin1String(usageText) + QStringLiteral("\nconvert:\n") + convertHelp() +
             QStringLiteral("\nrun:\n") + runHelp());
    return Done;
}

int versionCommand(const QStringList &)
{
    printOut(QStringLiteral("%1 (marlowen-cli) %2\n")
                 .arg(QLatin1String(productName), QLatin1String(versionText)));
    return Done;
}

int convertCommand(const QStringList &arguments)
{
    const Result<ConvertJob> job = parseConvert(arguments);
    if (!job)
        return wrongUsage(oneLine(job.failure()));
    TerminalProgress progress;
    const Outcome done = runConvert(job.value(), progress);
    progress.clear();
    return done ? Done : workFailed(done.failure());
}

/// A result that did not reach standard output was not delivered.
int delivered(int status)
{
    if (status != Done || (std::fflush(stdout) == 0 && !std::ferror(stdout)))
        return status;
    return fail(QStringLiteral("marlowen-cli: standard output cannot be written"), WorkFailed);
}

QString textOf(const QJsonValue &value)
{
    QStringList parts;
    for (const QJsonValue part : value.toArray({value}))
        parts << part.toVariant().toString();
    return parts.join(QStringLiteral(", "));
}

void printDescription(const QJsonObject &description, bool json)
{
    if (json) {
        printOut(QString::fromUtf8(QJsonDocument(description).toJson(QJsonDocument::Compact)) +
                 QLatin1Char('\n'));
        return;
    }
    for (auto entry = description.begin(); entry != description.end(); ++entry) {
        if (entry.value().isObject())
            printDescription(entry.value().toObject(), json);
        else
            printOut(QStringLiteral("%1: %2\n").arg(entry.key(), textOf(entry.value())));
    }
}

Result<QJsonObject> describeFile(const QString &path, Progress &progress)
{
    if (opensAsModel(path)) {
        const Result<OpenedModel> model = openModelFile(path, {}, progress);
        if (!model)
            return model.failure();
        return describe(model.value());
    }
    const Result<std::unique_ptr<Relief>> opened = openFile(path, {});
    if (!opened)
        return opened.failure();
    QJsonObject description = describe(*opened.value());
    const Format *format = formatOf(path);
    if (format && format->attributes) {
        const QJsonObject attributes = format->attributes(path);
        for (auto entry = attributes.begin(); entry != attributes.end(); ++entry)
            description.insert(entry.key(), entry.value());
    }
    return description;
}

int infoCommand(const QStringList &arguments)
{
    QStringList files = arguments;
    const bool json = files.removeAll(QStringLiteral("--json")) > 0;
    if (files.size() != 1 || files[0].startsWith(QLatin1String("--")))
        return wrongUsage(QStringLiteral("info needs one FILE"));
    TerminalProgress progress;
    const Result<QJsonObject> description = describeFile(files[0], progress);
    progress.clear();
    if (!description)
        return workFailed(description.failure());
    printDescription(description.value(), json);
    return Done;
}

/// Standard input through a descriptor: lines may contain NUL bytes, which the C library's line
/// reading ends at, and every line is carried out as soon as it arrives.
class StandardInput : public QIODevice
{
public:
    bool isSequential() const override { return true; }

protected:
    qint64 readData(char *data, qint64 size) override
    {
        ssize_t count = 0;
        do
            count = ::read(STDIN_FILENO, data, static_cast<size_t>(size));
        while (count < 0 && errno == EINTR);
        return count > 0 ? count : -1;
    }
    qint64 writeData(const char *, qint64) override { return -1; }
};

Result<std::unique_ptr<QIODevice>> openScript(const QString &name)
{
    if (name == QLatin1String("-")) {
        auto input = std::make_unique<StandardInput>();
        input->open(QIODevice::ReadOnly);
        return Result<std::unique_ptr<QIODevice>>(std::move(input));
    }
    auto file = std::make_unique<QFile>(name);
    if (const Outcome opened = openRegularFile(*file, {}); !opened)
        return Failure{{}, opened.failure().detail};
    return Result<std::unique_ptr<QIODevice>>(std::move(file));
}

int scriptCommand(const QStringList &arguments)
{
    if (arguments.size() != 1)
        return wrongUsage(QStringLiteral("run needs one SCRIPT"));
    const Result<std::unique_ptr<QIODevice>> script = openScript(arguments[0]);
    if (!script)
        return workFailed(aboutFile(arguments[0], script.failure()));
    TerminalProgress progress;
    ScriptState state(progress);
    const Outcome done = runScript(state, *script.value(), arguments[0]);
    progress.clear();
    return done ? Done : fail(oneLine(done.failure()), WorkFailed);
}

int thumbnailCommand(const QStringList &arguments)
{
    const Result<ThumbnailJob> job = parseThumbnail(arguments);
    if (!job)
        return wrongUsage(oneLine(job.failure()));
    const Outcome done = runThumbnail(job.value());
    return done ? Done : workFailed(done.failure());
}

/// One row a command.
struct Command
{
    const char *name;
    int (*run)(const QStringList &arguments);
    const char *usage = nullptr; ///< first line of its help; null: it has none
    QString (*help)() = nullptr;
};

constexpr Command commands[] = {
    {"convert", convertCommand, "marlowen-cli convert INPUT OUTPUT [options]\n\n", convertHelp},
    {"info", infoCommand, "marlowen-cli info FILE [--json]\n\n", infoHelp},
    {"run", scriptCommand, "marlowen-cli run SCRIPT (a file, or - for standard input)\n\n",
     runHelp},
    {"thumbnail", thumbnailCommand, "marlowen-cli thumbnail FILE PICTURE [--size N]\n\n",
     thumbnailHelp},
    {"--help", helpCommand},
    {"-h", helpCommand},
    {"--version", versionCommand}};

int runCommand(const Command &command, const QStringList &arguments)
{
    const bool help =
        arguments.contains(QLatin1String("--help")) || arguments.contains(QLatin1String("-h"));
    if (!help || !command.help)
        return command.run(arguments);
    printOut(QLatin1String(command.usage) + command.help());
    return Done;
}

} // namespace

int runCommandLine(const QStringList &arguments)
{
    if (arguments.isEmpty())
        return wrongUsage(QStringLiteral("a command is missing"));
    for (const Command &command : commands) {
        if (arguments[0] != QLatin1String(command.name))
            continue;
        try {
            return delivered(runCommand(command, arguments.mid(1)));
        } catch (const std::bad_alloc &) {
            return fail(QStringLiteral("marlowen-cli: not enough memory"), WorkFailed);
        }
    }
    return wrongUsage(QStringLiteral("unknown command %1").arg(arguments[0]));
}

} // namespace marlowen
