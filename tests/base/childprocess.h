#pragma once

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <cstring>
#include <functional>
#include <iterator>

/// Tests of what one process does once (logs, forced exit): the test program starts itself again
/// with the name of a scenario, in a home folder of its own, and reads what is left there.
struct Scenario
{
    const char *name;
    std::function<int()> run;
};

struct ChildResult
{
    int exitCode = -1;
    qint64 pid = 0;
    QByteArray output;
};

inline ChildResult runScenario(const QTemporaryDir &home, const char *name)
{
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), home.path());
    child.setProcessEnvironment(environment);
    child.start(QCoreApplication::applicationFilePath(),
                {QStringLiteral("--scenario"), QString::fromLatin1(name)});
    child.waitForStarted();
    const qint64 pid = child.processId();
    if (!child.waitForFinished(20000) || child.exitStatus() != QProcess::NormalExit)
        return {-1, pid, child.readAllStandardError()};
    return {child.exitCode(), pid, child.readAllStandardOutput()};
}

/// Runs the scenario that the command line asks for; -1 when it asks for none.
template <size_t N>
int askedScenario(int argc, char **argv, const Scenario (&scenarios)[N])
{
    if (argc != 3 || std::strcmp(argv[1], "--scenario") != 0)
        return -1;
    for (const Scenario &scenario : scenarios) {
        if (std::strcmp(scenario.name, argv[2]) == 0)
            return scenario.run();
    }
    return 99;
}

inline QByteArray dataFile(const QTemporaryDir &home, const QString &name)
{
    QFile file(home.filePath(QStringLiteral("Marlowen3/") + name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline QString logName(qint64 pid)
{
    return QStringLiteral("marlowen3_%1.log").arg(pid, 0, 16);
}
