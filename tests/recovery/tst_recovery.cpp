#include "damage.h"
#include "recovery/work.h"

#include <QtTest>

#include <csignal>

#include <sys/resource.h>
#include <unistd.h>

using namespace marlowen;
using namespace std::chrono_literals;

namespace {

class Silent : public Progress
{
};

/// A window without widgets: a workbench and its journal below a root.
struct Window
{
    explicit Window(const QString &root, JournalTiming timing = {})
        : journal(bench, {root, timing, 50ms, 10s})
    {
        bench.tool.size = 0.05;
    }
    bool written() { return journal.waitUntilSafe(10s); }

    Workbench bench;
    RecoveryJournal journal;
};

/// The files left after a window ended without closing.
RecoveredWork restored(const QString &root)
{
    Silent silent;
    const QList<FoundWork> found = findWork(root);
    Result<RecoveredWork> work =
        found.isEmpty() ? Failure{} : restoreWork(found.first().folder, silent);
    return work ? work.take() : RecoveredWork();
}

/// The work restored when these bytes are the journal of an ended window.
RecoveredWork restoredFrom(const QString &root, const QByteArray &bytes)
{
    QFile file(root + QStringLiteral("/window-a/journal"));
    QDir().mkpath(QFileInfo(file).path());
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        return {};
    file.close();
    return restored(root);
}

} // namespace

class TestRecovery : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    QString _root() const { return m_folder.filePath(QLatin1String(QTest::currentTestFunction())); }

    QString _copy() const { return _root() + QStringLiteral("-copy"); }

    QByteArray _journal() const
    {
        QDirIterator files(_root(), {QStringLiteral("journal")}, QDir::Files,
                           QDirIterator::Subdirectories);
        QFile file(files.next());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private slots:
    void workAndHistoryComeBack();
    void importComesBack();
    void damageAffectsOnlyLaterSteps();
    void foreignAndEmptyFoldersAreLeftOrTidied();
    void savedOrDiscardedWorkIsNotOffered();
    void windowsKeepApart();
    void fullDiskTurnsRecordingOff();
    void compactionKeepsTheLastSteps();
    void bytesStayNearWhatChanged();
};

void TestRecovery::workAndHistoryComeBack()
{
    for (quint32 seed = 1; seed <= 6; ++seed) {
        QRandomGenerator random(seed);
        QByteArray state;
        QList<QByteArray> undone;
        {
            Window window(_root());
            window.bench.take(flatRelief(50, 40), QStringLiteral("/a/medal.scp"));
            for (int step = 0; step < 25; ++step)
                randomStep(window.bench, random);
            QVERIFY(window.bench.apply(selectionOperation([](Relief &relief) {
                selectRectangle(relief, {3, 4}, {20, 21}, SelectionModifier::Normal);
            })));
            QVERIFY(window.written());
            state = stateOf(*window.bench.relief());
            while (window.bench.history().canUndo()) {
                window.bench.history().undo();
                undone << stateOf(*window.bench.relief(), false);
            }
        }
        QCOMPARE(findWork(_root()).first().file, QStringLiteral("/a/medal.scp"));
        RecoveredWork work = restored(_root());
        QVERIFY(work.relief && !work.damaged);
        QCOMPARE(stateOf(*work.relief), state);

        // The journal is continued; the second window leaves no journal of its own.
        Window next(_root());
        next.bench.take(flatRelief(5, 5));
        next.journal.takeOver(std::move(work));
        QVERIFY(next.bench.isModified());
        for (const QByteArray &before : undone) {
            next.bench.undo();
            QCOMPARE(stateOf(*next.bench.relief(), false), before);
        }
        stroke(next.bench, {-5, 0}, {5, 0});
        QVERIFY(next.written());
        next.journal.end(true);
        QCOMPARE(findWork(_root()).size(), 1);
        QCOMPARE(stateOf(*restored(_root()).relief, false), stateOf(*next.bench.relief(), false));
        QVERIFY(discardWork(findWork(_root()).first().folder));
        QVERIFY(QDir(_root()).isEmpty());
    }
}

void TestRecovery::importComesBack()
{
    Window window(_root());
    Workbench &bench = window.bench;
    bench.session().basReliefGenerator = [](const BasReliefInput &input, Progress &) {
        return std::vector<float>(size_t(input.heights.cells()), 7.0F);
    };
    bench.take(importedRelief(30, 20), QStringLiteral("a.png"));
    const auto set = [&bench](auto ImportSettings::*member, auto value) {
        ImportSettings settings = bench.session().settings();
        settings.*member = value;
        bench.session().change(settings);
    };
    const auto check = [&] {
        QVERIFY(window.written());
        const RecoveredWork work = restoredFrom(_copy(), _journal());
        QVERIFY(work.relief && !work.damaged);
        QCOMPARE(stateOf(*work.relief), stateOf(*bench.relief()));
    };
    set(&ImportSettings::smoothing, 1.5);
    set(&ImportSettings::trim, 2);
    set(&ImportSettings::preview, false);
    set(&ImportSettings::raiseLower, 10);
    check();
    set(&ImportSettings::preview, true);
    set(&ImportSettings::basRelief, true);
    bench.session().update(nullptr);
    check();
    set(&ImportSettings::gridSize, 8); // the heights still show the last bas-relief
    check();
    bench.session().followsChanges = true;
    set(&ImportSettings::contrastFactor, 64); // makes another at once
    check();
    bench.acceptImport();
    stroke(bench, {-5, 0}, {5, 0});
    check();
    bench.undo();
    check();
}

void TestRecovery::damageAffectsOnlyLaterSteps()
{
    QList<QByteArray> states;
    QList<qsizetype> ends;
    QByteArray whole;
    {
        Window window(_root());
        window.bench.take(flatRelief(8, 6));
        const auto note = [&] {
            QVERIFY(window.written());
            states << stateOf(*window.bench.relief(), false);
            ends << _journal().size();
        };
        note();
        QRandomGenerator random(3);
        for (int step = 0; step < 8; ++step) {
            randomStep(window.bench, random);
            note();
        }
        whole = _journal();
        window.journal.end(false);
    }
    const auto stepsBefore = [&ends](qsizetype size) {
        return std::upper_bound(ends.begin(), ends.end(), size) - ends.begin();
    };
    damage::eachCut(whole, [&](const QByteArray &cut, qsizetype size) {
        const auto steps = stepsBefore(size);
        const RecoveredWork work = restoredFrom(_root(), cut);
        // The base alone is the opened relief: no work to restore.
        if (steps < 1 || size == ends[0])
            QVERIFY(!work.relief);
        else if (steps > 1)
            QCOMPARE(stateOf(*work.relief, false), states[steps - 1]);
    });
    damage::eachFlip(whole, [&](const QByteArray &flipped, qsizetype bit) {
        const RecoveredWork work = restoredFrom(_root(), flipped);
        if (work.relief)
            QCOMPARE(stateOf(*work.relief, false), states[stepsBefore(bit / 8) - 1]);
    });
}

void TestRecovery::foreignAndEmptyFoldersAreLeftOrTidied()
{
    QByteArray whole;
    {
        Window window(_root());
        window.bench.take(flatRelief(8, 6));
        stroke(window.bench, {-2, 0}, {2, 0});
        QVERIFY(window.written());
        whole = _journal();
        window.journal.end(false);
    }
    QByteArray newer = whole;
    newer[sizeof(JournalHead::name)] = 2;
    for (const QByteArray &foreign : {newer, QByteArray("something else")}) {
        QVERIFY(!restoredFrom(_root(), foreign).relief);
        QVERIFY(QFile::exists(_root() + QStringLiteral("/window-a/journal")));
        QCOMPARE(searchWork(_root()).ofOtherVersion, foreign == newer ? 1 : 0);
    }
    const QString path = _root() + QStringLiteral("/window-a/journal");
    QVERIFY(restoredFrom(_root(), whole).relief);
    if (geteuid() == 0 && chown(qPrintable(path), 1, 1) == 0)
        QVERIFY(findWork(_root()).isEmpty());
    QFile::remove(path);
    QFile::link(QStringLiteral("/etc/passwd"), path);
    QVERIFY(findWork(_root()).isEmpty());
    QFile::remove(path);
    QVERIFY(findWork(_root()).isEmpty());
    QVERIFY(QDir(_root()).isEmpty());
}

void TestRecovery::savedOrDiscardedWorkIsNotOffered()
{
    Window window(_root());
    window.bench.take(flatRelief(8, 6));
    stroke(window.bench, {-2, 0}, {2, 0});
    QVERIFY(window.bench.save(m_folder.filePath(QStringLiteral("a.scp"))));
    QVERIFY(window.written());
    QVERIFY(!restoredFrom(_copy(), _journal()).relief);
    // Back to before the save: the journal does not hold that step.
    window.bench.undo();
    QVERIFY(window.written());
    const RecoveredWork undone = restoredFrom(_copy(), _journal());
    QCOMPARE(stateOf(*undone.relief), stateOf(*window.bench.relief()));
    window.journal.end(false);
    QVERIFY(QDir(_root()).isEmpty());
}

void TestRecovery::windowsKeepApart()
{
    Window one(_root());
    {
        Window other(_root());
        for (Window *window : {&one, &other}) {
            window->bench.take(flatRelief(8, 6));
            stroke(window->bench, {-2, 0}, {2, 0});
            QVERIFY(window->written());
        }
        QVERIFY(findWork(_root()).isEmpty());
    }
    const QList<FoundWork> found = findWork(_root());
    QCOMPARE(found.size(), 1);
    QCOMPARE(found.first().steps, 1);
    // A clock that went back since makes no difference.
    QFile journal(found.first().folder + QStringLiteral("/journal"));
    QVERIFY(journal.open(QIODevice::ReadWrite));
    QVERIFY(journal.setFileTime(QDateTime::currentDateTime().addYears(2),
                                QFileDevice::FileModificationTime));
    QCOMPARE(findWork(_root()).size(), 1);
    const RecoveredWork held = restored(_root());
    Silent silent;
    QVERIFY(!restoreWork(found.first().folder, silent));
    QVERIFY(!discardWork(found.first().folder));
}

void TestRecovery::fullDiskTurnsRecordingOff()
{
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit unlimited{RLIM_INFINITY, RLIM_INFINITY};
    const rlimit small{20000, RLIM_INFINITY};
    Window window(_root());
    QSignalSpy spy(&window.journal, &RecoveryJournal::stateChanged);
    window.bench.take(flatRelief(60, 60));
    QVERIFY(window.written());
    setrlimit(RLIMIT_FSIZE, &small);
    for (int step = 0; step < 20; ++step)
        stroke(window.bench, {-20, step - 10.0}, {20, step - 10.0});
    const bool heard = QTest::qWaitFor([&] { return spy.size() == 1; });
    setrlimit(RLIMIT_FSIZE, &unlimited);
    QVERIFY(heard);
    QVERIFY(!spy[0][0].toBool() && !spy[0][1].toString().isEmpty());
    QTRY_COMPARE(spy.size(), 2);
    QVERIFY(spy[1][0].toBool());
    stroke(window.bench, {-20, 0}, {20, 0});
    QVERIFY(window.written());
    window.journal.end(true);
    QCOMPARE(stateOf(*restored(_root()).relief), stateOf(*window.bench.relief()));

    Window nowhere(QStringLiteral("/dev/null/recovery"));
    nowhere.bench.take(flatRelief(8, 6));
    QVERIFY(!nowhere.journal.isOn());
}

void TestRecovery::compactionKeepsTheLastSteps()
{
    JournalTiming timing;
    timing.pause = 0ms;
    Window window(_root(), timing);
    window.bench.take(flatRelief(200, 200));
    const auto check = [&] {
        QVERIFY(window.written());
        const RecoveredWork work = restoredFrom(_copy(), _journal());
        QVERIFY(work.relief && !work.damaged);
        QCOMPARE(stateOf(*work.relief), stateOf(*window.bench.relief()));
        QCOMPARE(work.history.canUndo(), window.bench.history().canUndo());
    };
    for (int step = 0; step < 150; ++step) {
        stroke(window.bench, {-80, step / 3.0 - 30.0}, {80, 30.0 - step / 3.0});
        if (step % 7 == 0)
            window.bench.undo();
    }
    // The base, and at most a megabyte of steps.
    QTRY_VERIFY(_journal().size() < 1'300'000);
    check();
    // Further back than the journal remembers.
    while (window.bench.history().canUndo())
        window.bench.undo();
    check();
}

void TestRecovery::bytesStayNearWhatChanged()
{
    Window window(_root());
    window.bench.take(flatRelief(200, 200));
    QVERIFY(window.written());
    const qsizetype before = _journal().size();
    qsizetype cells = 0;
    connect(&window.bench, &Workbench::stepDone, this,
            [&cells](const Step &step) { cells += step.cells.width() * step.cells.height(); });
    for (int step = 0; step < 20; ++step)
        stroke(window.bench, {-50, step * 4.0}, {-20, step * 4.0});
    QVERIFY(window.written());
    QVERIFY(cells > 0);
    QVERIFY(_journal().size() - before <= cells * 4 + 20 * 64);
}

QTEST_GUILESS_MAIN(TestRecovery)
#include "tst_recovery.moc"
