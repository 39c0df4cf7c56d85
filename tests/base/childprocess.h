#pragma once

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <cstring>
#include <functional>

/// Tests of what one process does once (logs, forced exit): the test program starts itself again
/// with the name of a scenario, with its own home folder, and reads the files left there.
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

/// The main function of such a test program: runs the scenario that the command line asks for, else
/// the test.
template <typename Test, size_t N>
int runScenarioOrTest(int argc, char **argv, const Scenario (&scenarios)[N])
{
    QCoreApplication app(argc, argv);
    if (argc == 3 && std::strcmp(argv[1], "--scenario") == 0) {
        for (const Scenario &scenario : scenarios) {
            if (std::strcmp(scenario.name, argv[2]) == 0)
                return scenario.run();
        }
        return 99;
    }
    Test test;
    return QTest::qExec(&test, argc, argv);
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
