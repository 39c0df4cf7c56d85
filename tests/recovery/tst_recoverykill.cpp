// A child process edits, step after step, and is killed at some moment; its journal is restored and
// compared with its list of steps.

#include "recovery/work.h"

#include <QProcess>
#include <QtTest>

#include <cstdio>

using namespace marlowen;
using namespace std::chrono_literals;

namespace {

/// One line a state: "state <hash>" before the journal hears of the step, "done" when the step is
/// over, "kept <hash>" when a file holds it.
void say(const char *word, const Workbench &bench)
{
    std::printf("%s %s\n", word, stateOf(*bench.relief(), false).toHex().constData());
    std::fflush(stdout);
}

int work(const QString &root, quint32 seed)
{
    Workbench bench;
    QObject::connect(&bench, &Workbench::stepDone, &bench, [&bench](const Step &step) {
        const bool kept = step.kind == Step::Opened || step.kind == Step::Saved;
        say(kept ? "kept" : "state", bench);
    });
    JournalTiming timing;
    timing.pause = 0ms;
    RecoveryJournal journal(bench, {root, timing, 50ms, 10s});
    QRandomGenerator random(seed);
    bench.tool.size = 0.2;
    bench.take(importedRelief(120, 90));
    for (int step = 0; step < 6; ++step) {
        ImportSettings settings = bench.session().settings();
        settings.trim = step;
        bench.session().change(settings);
        say("done", bench);
    }
    bench.acceptImport();
    while (true) {
        say("done", bench);
        if (random.bounded(40) == 0 && !bench.save(root + QStringLiteral("/a.scp")))
            return 1;
        randomStep(bench, random);
        QCoreApplication::processEvents();
    }
}

struct Told
{
    QList<QByteArray> states;
    qsizetype atLeast = 0; ///< index of the last state whose step was over, but one
    QByteArray kept;
};

Told told(const QByteArray &output)
{
    Told told;
    for (const QByteArray &line : output.split('\n')) {
        const QByteArray hash = line.mid(line.indexOf(' ') + 1);
        if (hash.size() != 40)
            continue; // the line that the end of the process cut
        if (line.startsWith("done")) {
            told.atLeast = told.states.size() - 2;
            continue;
        }
        told.states << hash;
        if (line.startsWith("kept"))
            told.kept = hash;
    }
    return told;
}

} // namespace

class TestRecoveryKill : public QObject
{
    Q_OBJECT

private slots:
    void killedAtAnyMoment();
};

void TestRecoveryKill::killedAtAnyMoment()
{
    const int kills = qMax(8, qEnvironmentVariableIntValue("MARLOWEN_KILLS"));
    QRandomGenerator random(1);
    int restored = 0;
    for (int kill = 0; kill < kills; ++kill) {
        QTemporaryDir folder;
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(),
                    {QStringLiteral("--work"), folder.path(), QString::number(kill)});
        QVERIFY(child.waitForReadyRead());
        child.waitForFinished(random.bounded(1, 400));
        QCOMPARE(child.state(), QProcess::Running);
        child.kill();
        QVERIFY(child.waitForFinished());
        const Told steps = told(child.readAllStandardOutput());
        Progress silent;
        const QList<FoundWork> found = findWork(folder.path());
        QByteArray state = steps.kept;
        if (!found.isEmpty()) {
            Result<RecoveredWork> work = restoreWork(found.first().folder, silent);
            QVERIFY(work);
            state = stateOf(*work.value().relief, false).toHex();
            ++restored;
        }
        const qsizetype index = steps.states.lastIndexOf(state);
        QVERIFY2(index >= 0, "no state of a whole step");
        QVERIFY2(index >= steps.atLeast, "older than the last step but one");
    }
    QVERIFY(restored > kills / 2);
}

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc == 4) {
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
        return work(QString::fromLocal8Bit(argv[2]), QByteArray(argv[3]).toUInt());
    }
    TestRecoveryKill test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_recoverykill.moc"
