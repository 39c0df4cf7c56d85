#include "base/childprocess.h"

#include "base/datafolder.h"
#include "base/sessionlog.h"

#include <QDateTime>
#include <QTest>

using namespace marlowen;

namespace {

int writeEntries()
{
    logInfo() << "Created main window\n";
    logWarning() << "Unknown file type"
                 << "/tmp/a.xyz"
                 << "\n";
    logCritical() << "text\n";
    logClose();
    logClose();
    logInfo() << "after the end\n";
    logFlush();
    return 0;
}

/// The log's path is a folder, so that even root cannot open it.
int logUnwritable()
{
    QDir().mkpath(dataFolder() + '/' + logName(QCoreApplication::applicationPid()));
    static int complaints = 0;
    qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext &, const QString &) { ++complaints; });
    int calls = 0;
    setLogFailureHandler([&calls](const QString &title, const QString &sentence) {
        ++calls;
        logInfo() << "written while the box is open\n";
        QFile out;
        if (out.open(stdout, QIODevice::WriteOnly))
            out.write((title + '|' + sentence).toUtf8());
    });
    logInfo() << "lost\n";
    logWarning() << "lost too\n";
    logFlush();
    logClose();
    return calls == 1 && complaints == 0 ? 0 : 1;
}

const Scenario scenarios[] = {
    {"entries", writeEntries},
    {"unwritable", logUnwritable},
};

bool isDatedLine(const QByteArray &line, const QByteArray &prefix)
{
    const QString date = QString::fromUtf8(line.mid(prefix.size()));
    return line.startsWith(prefix) && QDateTime::fromString(date, Qt::TextDate).isValid();
}

} // namespace

class TestSessionLog : public QObject
{
    Q_OBJECT

private slots:
    void entriesStandBetweenStartAndClosingLine()
    {
        const QTemporaryDir home;
        const ChildResult child = runScenario(home, "entries");
        QCOMPARE(child.exitCode, 0);
        const auto lines = dataFile(home, logName(child.pid)).split('\n');
        QCOMPARE(lines.size(), 6);
        QVERIFY(isDatedLine(lines[0], "Starting Marlowen 3 log: "));
        QCOMPARE(lines[1], QByteArray("Info: Created main window"));
        QCOMPARE(lines[2], QByteArray("Warning: Unknown file type/tmp/a.xyz"));
        QCOMPARE(lines[3], QByteArray("Critical: text"));
        QVERIFY(isDatedLine(lines[4], "Closing Marlowen 3 log: "));
        QVERIFY(lines[5].isEmpty());
    }

    void unwritableLogIsReportedOnce()
    {
        const QTemporaryDir home;
        const ChildResult child = runScenario(home, "unwritable");
        QCOMPARE(child.exitCode, 0);
        QCOMPARE(child.output, QByteArray("Error opening Log|Could not open log file for writing"));
    }
};

int main(int argc, char **argv)
{
    return runScenarioOrTest<TestSessionLog>(argc, argv, scenarios);
}

#include "tst_sessionlog.moc"
