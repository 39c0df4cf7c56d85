#include "base/childprocess.h"

#include "base/messagehandler.h"

#include <QTest>

using namespace marlowen;

namespace {

/// One message of every kind, and one of a kind that does not exist, given to the handler itself:
/// the toolkit would end the process after a fatal one.
int writeEveryKind()
{
    installMessageHandler();
    const QtMessageHandler handler = qInstallMessageHandler(nullptr);
    const QMessageLogContext known("file.cpp", 7, "doIt()", "category");
    const QMessageLogContext unknown;
    handler(QtDebugMsg, known, QStringLiteral("a"));
    handler(QtWarningMsg, known, QStringLiteral("b"));
    handler(QtCriticalMsg, unknown, QStringLiteral("c"));
    handler(QtFatalMsg, known, QStringLiteral("d"));
    handler(QtInfoMsg, unknown, QStringLiteral("e"));
    handler(static_cast<QtMsgType>(7), known, QStringLiteral("f"));
    return 0;
}

int writeThroughToolkit()
{
    installMessageHandler();
    qDebug("later");
    return 0;
}

int sayNothing()
{
    installMessageHandler();
    return 0;
}

const Scenario scenarios[] = {
    {"kinds", writeEveryKind},
    {"toolkit", writeThroughToolkit},
    {"silent", sayNothing},
};

} // namespace

class TestMessageHandler : public QObject
{
    Q_OBJECT

private slots:
    void everyKindHasItsForm()
    {
        const QTemporaryDir home;
        QCOMPARE(runScenario(home, "kinds").exitCode, 0);
        QCOMPARE(dataFile(home, "qdebug.txt"),
                 QByteArray("DEBUG:a\n"
                            "WARN:b File: file.cpp function: doIt()\n"
                            "CRIT:c File:  function: \n"
                            "FATAL:d File: file.cpp function: doIt()\n"
                            "INFO:e File:  function: \n"));
    }

    void firstMessageOfAProcessTruncatesTheFile()
    {
        const QTemporaryDir home;
        QCOMPARE(runScenario(home, "kinds").exitCode, 0);
        QCOMPARE(runScenario(home, "toolkit").exitCode, 0);
        QCOMPARE(dataFile(home, "qdebug.txt"), QByteArray("DEBUG:later\n"));
        QCOMPARE(runScenario(home, "silent").exitCode, 0);
        QCOMPARE(dataFile(home, "qdebug.txt"), QByteArray("DEBUG:later\n"));
    }
};

int main(int argc, char **argv)
{
    return runScenarioOrTest<TestMessageHandler>(argc, argv, scenarios);
}

#include "tst_messagehandler.moc"
