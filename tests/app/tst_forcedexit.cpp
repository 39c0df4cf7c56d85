#include "base/childprocess.h"

#include "ui/forcedexit.h"

#include <QElapsedTimer>
#include <QTest>
#include <QTimer>

using namespace marlowen;

namespace {

void handOver()
{
    armForcedExit(exitAtOnce);
    QCoreApplication::quit();
}

int quitPlainly()
{
    QTimer::singleShot(0, QCoreApplication::instance(), handOver);
    return QCoreApplication::exec();
}

int quitIntoNestedLoop()
{
    QTimer::singleShot(0, QCoreApplication::instance(), [] {
        handOver();
        for (;;)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    });
    QCoreApplication::exec();
    return 3;
}

const Scenario scenarios[] = {{"plain", quitPlainly}, {"nested", quitIntoNestedLoop}};

} // namespace

/// The end of an export that the sister program waits for, in a real process.
class TestForcedExit : public QObject
{
    Q_OBJECT

private slots:
    void plainLoopEndsByItself()
    {
        const QTemporaryDir home;
        const ChildResult child = runScenario(home, "plain");
        QCOMPARE(child.exitCode, 0);
        QVERIFY(dataFile(home, logName(child.pid)).isEmpty());
    }

    void nestedLoopIsEndedWithItsLine()
    {
        const QTemporaryDir home;
        QElapsedTimer timer;
        timer.start();
        const ChildResult child = runScenario(home, "nested");
        QCOMPARE(child.exitCode, 0);
        QVERIFY(timer.elapsed() >= 1400);
        const auto lines = dataFile(home, logName(child.pid)).split('\n');
        QCOMPARE(lines.value(1),
                 QByteArray("Info: Export complete but still running (a modal dialog or nested "
                            "event loop); exiting so Drafteon can import."));
    }
};

int main(int argc, char **argv)
{
    return runScenarioOrTest<TestForcedExit>(argc, argv, scenarios);
}

#include "tst_forcedexit.moc"
