#include "cli/commandline.h"

#include "base/version.h"
#include "cli/clifiles.h"
#include "cli/convertjob.h"
#include "cli/scriptrunner.h"
#include "cli/scriptstate.h"
#include "cli/terminalprogress.h"
#include "cli/toolrecord.h"
#include "files/safefile.h"

#include <QFile>
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
    "marlowen-cli --help | --version\n"
    "\n"
    "INPUT is an image, a mesh, a workspace, a pattern file or a .pfm height map; OUTPUT is told "
    "by\n"
    "its ending: .scp, .stl, .obj, .ptr, .pfm (float height map) or .png (16-bit grey height "
    "map).\n"
    "\n"
    "Options of convert:\n";

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

int help(const QStringList &)
{
    printOut(QLatin1String(usageText) + convertOptionsHelp() + QLatin1Char('\n') +
             toolRecordHelp());
    return Done;
}

int version(const QStringList &)
{
    printOut(QStringLiteral("%1 (marlowen-cli) %2\n")
                 .arg(QLatin1String(productName), QLatin1String(versionText)));
    return Done;
}

int convert(const QStringList &arguments)
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

void printDescription(const QJsonObject &description, bool json)
{
    if (json) {
        printOut(QString::fromUtf8(QJsonDocument(description).toJson(QJsonDocument::Compact)) +
                 QLatin1Char('\n'));
        return;
    }
    for (auto entry = description.begin(); entry != description.end(); ++entry)
        printOut(QStringLiteral("%1: %2\n").arg(entry.key(), entry.value().toVariant().toString()));
}

int info(const QStringList &arguments)
{
    QStringList files = arguments;
    const bool json = files.removeAll(QStringLiteral("--json")) > 0;
    if (files.size() != 1 || files[0].startsWith(QLatin1String("--")))
        return wrongUsage(QStringLiteral("info needs one FILE"));
    const Result<std::unique_ptr<Relief>> opened = openFile(files[0], {});
    if (!opened)
        return workFailed(opened.failure());
    printDescription(describe(*opened.value()), json);
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

int _run(const QStringList &arguments)
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

/// One row a command.
struct Command
{
    const char *name;
    int (*run)(const QStringList &arguments);
};

constexpr Command commands[] = {{"convert", convert}, {"info", info}, {"run", _run},
                                {"--help", help},     {"-h", help},   {"--version", version}};

} // namespace

int runCommandLine(const QStringList &arguments)
{
    if (arguments.isEmpty())
        return wrongUsage(QStringLiteral("a command is missing"));
    for (const Command &command : commands) {
        if (arguments[0] != QLatin1String(command.name))
            continue;
        try {
            return delivered(command.run(arguments.mid(1)));
        } catch (const std::bad_alloc &) {
            return fail(QStringLiteral("marlowen-cli: not enough memory"), WorkFailed);
        }
    }
    return wrongUsage(QStringLiteral("unknown command %1").arg(arguments[0]));
}

} // namespace marlowen
