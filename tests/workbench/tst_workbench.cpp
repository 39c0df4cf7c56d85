#include "files/workspacefile.h"
#include "import/imageimport.h"
#include "relief/grid/relief.h"
#include "relief/operations/operations.h"
#include "relief/operations/operationtable.h"
#include "workbench/workbench.h"

#include <QPainter>
#include <QtTest>

using namespace marlowen;

namespace {

constexpr int side = 40;

std::unique_ptr<Relief> flat(float level)
{
    auto relief = std::make_unique<Relief>(side, side);
    std::fill_n(relief->heights().data(), relief->cells(), level);
    return relief;
}

QByteArray heightsOf(const Workbench &bench)
{
    const Relief &relief = *bench.relief();
    return QByteArray(reinterpret_cast<const char *>(relief.heights().constData()),
                      relief.cells() * qsizetype(sizeof(float)));
}

/// Empties what lies outside the given columns.
Operation keepColumns(int firstColumn, int lastColumn)
{
    return {QStringLiteral("Keep Columns"), [=](Relief &relief, const EditRun &run) {
                const double x = relief.width() / 2;
                cropApply(relief, {{firstColumn - x, -x}, {lastColumn - x, x - 1}}, run);
                return Outcome();
            }};
}

void click(Workbench &bench, QPointF point)
{
    bench.engine().beginStroke(bench.tool, point);
    bench.engine().endStroke(point);
    bench.strokeEnded();
}

/// The steps of stepDone(), in short: "Edit Resize 0,0 10x10".
class Steps
{
public:
    explicit Steps(Workbench &bench)
    {
        QObject::connect(&bench, &Workbench::stepDone, &bench, [this](const Step &step) {
            static constexpr const char *kinds[] = {"Opened", "Stroke", "Edit",   "Undo",
                                                    "Redo",   "Import", "Accept", "Saved"};
            QString line = QLatin1String(kinds[step.kind]);
            if (!step.events.empty())
                line += QLatin1Char(' ') + step.events.back()->name;
            cells = step.cells;
            lines.append(line);
        });
    }
    QStringList take() { return std::exchange(lines, {}); }

    QStringList lines;
    QRect cells; ///< of the last step
};

} // namespace

class TestWorkbench : public QObject
{
    Q_OBJECT

private slots:
    void everyStepIsAnnounced();
    void modifiedFollowsTheHistory();
    void importIsModifiedUntilSaved();
    void controlsWithoutAnImportModifyNothing();
    void previewIsOneStepOrNone();
    void stepsDropAPreview();
    void cancelledOrFailedEditChangesNothing();
};

void TestWorkbench::everyStepIsAnnounced()
{
    QTemporaryDir folder;
    Workbench bench;
    Steps steps(bench);
    bench.take(flat(5.0F));
    bench.tool.size = 0.05;
    click(bench, {0.0, 0.0});
    QVERIFY(steps.cells.contains(side / 2, side / 2));
    QVERIFY(steps.cells.width() < side);
    QVERIFY(bench.apply(operation("resize", {{20, 30}})));
    QCOMPARE(steps.cells, QRect(0, 0, 20, 30));
    bench.undo();
    QCOMPARE(steps.cells, QRect(0, 0, side, side));
    bench.redo();
    QVERIFY(bench.apply(operation("zScale", {{2.0}})));
    QVERIFY(steps.cells.isEmpty());
    QVERIFY(bench.apply(operation("zScale", {{2.0}})));
    QVERIFY(bench.save(folder.filePath(QStringLiteral("a.scp"))));
    QCOMPARE(steps.take().join(QLatin1String(", ")),
             QStringLiteral("Opened, Stroke Deposit, Edit Resize, Undo Resize, Redo Resize, "
                            "Edit Z Scale, Saved"));
    // A stroke in progress is a separate step before the edit that ends it.
    bench.engine().beginStroke(bench.tool, {0.0, 0.0});
    QVERIFY(bench.apply(operation("maskInvert")));
    bench.undo();
    QCOMPARE(steps.take().join(QLatin1String(", ")),
             QStringLiteral("Stroke Deposit, Edit Invert Mask, Undo Invert Mask"));
}

void TestWorkbench::modifiedFollowsTheHistory()
{
    QTemporaryDir folder;
    Workbench bench;
    bench.take(flat(5.0F));
    QVERIFY(!bench.isModified());
    click(bench, {0.0, 0.0});
    QVERIFY(bench.isModified());
    bench.undo();
    QVERIFY(!bench.isModified());
    bench.redo();
    QVERIFY(bench.save(folder.filePath(QStringLiteral("a.scp"))));
    QCOMPARE(bench.file(), folder.filePath(QStringLiteral("a.scp")));
    QVERIFY(!bench.isModified());
    bench.undo();
    QVERIFY(bench.isModified());
    // The saved state left the history for good.
    click(bench, {3.0, 0.0});
    bench.undo();
    QVERIFY(bench.isModified());
    // A stroke that changes nothing modifies nothing.
    QVERIFY(bench.save(folder.filePath(QStringLiteral("a.scp"))));
    bench.engine().beginStroke(bench.tool, {5000.0, 0.0});
    bench.endStroke();
    QVERIFY(!bench.isModified());
}

void TestWorkbench::importIsModifiedUntilSaved()
{
    QTemporaryDir folder;
    QImage picture(20, 10, QImage::Format_RGB32);
    picture.fill(Qt::gray);
    QVERIFY(picture.save(folder.filePath(QStringLiteral("a.png"))));
    auto opened = importImage(folder.filePath(QStringLiteral("a.png")), {});
    QVERIFY(opened);
    Workbench bench;
    Steps steps(bench);
    bench.take(opened.take());
    QVERIFY(bench.session().active());
    QVERIFY(!bench.isModified());
    ImportSettings settings = bench.session().settings();
    settings.flipY = true;
    bench.session().setSettings(settings);
    QVERIFY(bench.isModified());
    bench.acceptImport();
    QVERIFY(!bench.session().active());
    QCOMPARE(steps.take(), (QStringList{QStringLiteral("Opened"), QStringLiteral("Import"),
                                        QStringLiteral("Accept")}));
    click(bench, {0.0, 0.0});
    bench.undo();
    QVERIFY(bench.isModified());
    QVERIFY(bench.save(folder.filePath(QStringLiteral("a.scp"))));
    QVERIFY(!bench.isModified());
}

void TestWorkbench::controlsWithoutAnImportModifyNothing()
{
    Workbench bench;
    bench.take(flat(5.0F));
    ImportSettings settings = bench.session().settings();
    settings.flipY = true;
    bench.session().setSettings(settings);
    QVERIFY(!bench.isModified());
}

void TestWorkbench::previewIsOneStepOrNone()
{
    Workbench bench;
    bench.take(flat(5.0F));
    click(bench, {0.0, 0.0});
    const QByteArray before = heightsOf(bench);
    const uint64_t state = bench.history().state();
    for (const int last : {10, 30, 20})
        QVERIFY(bench.preview().run(keepColumns(5, last)));
    const QByteArray shown = heightsOf(bench);
    QVERIFY(shown != before);
    QCOMPARE(bench.history().state(), state);
    bench.preview().drop();
    QCOMPARE(heightsOf(bench), before);

    const Operation twoEvents{QStringLiteral("Both"), [](Relief &relief, const EditRun &run) {
                                  setZScale(relief, 3.0, run);
                                  return keepColumns(5, 20).run(relief, run);
                              }};
    QVERIFY(bench.preview().run(twoEvents));
    bench.preview().keep();
    QVERIFY(!bench.preview().active());
    QCOMPARE(heightsOf(bench), shown);
    QCOMPARE(bench.history().stepToUndo().size(), size_t(2));
    bench.undo();
    QCOMPARE(heightsOf(bench), before);
    QCOMPARE(bench.relief()->zScale, 1.0);
    bench.redo();
    QCOMPARE(heightsOf(bench), shown);
}

void TestWorkbench::stepsDropAPreview()
{
    Workbench bench;
    bench.take(flat(5.0F));
    const QByteArray before = heightsOf(bench);
    QVERIFY(bench.preview().run(keepColumns(5, 20)));
    bench.undo();
    QCOMPARE(heightsOf(bench), before);
    QVERIFY(bench.preview().run(keepColumns(5, 20)));
    QVERIFY(bench.apply(operation("zScale", {{2.0}})));
    QCOMPARE(heightsOf(bench), before);
    QCOMPARE(bench.history().count(), 1);
}

void TestWorkbench::cancelledOrFailedEditChangesNothing()
{
    class Impatient : public Progress
    {
        void advance(double fraction) override { m_cancelled = fraction > 0.0; }
        bool cancelled() const override { return m_cancelled; }
        bool m_cancelled = false;
    };
    Workbench bench;
    bench.take(flat(5.0F));
    Impatient impatient;
    QVERIFY(bench.apply(operation("resize", {{30, 100}}), &impatient));
    QCOMPARE(bench.relief()->width(), side);
    const Outcome failed =
        bench.apply({{}, [](Relief &, const EditRun &) -> Outcome { throw std::bad_alloc(); }});
    QVERIFY(!failed);
    QVERIFY(!failed.failure().sentence.isEmpty());
    QVERIFY(!bench.isModified());
}

QTEST_GUILESS_MAIN(TestWorkbench)
#include "tst_workbench.moc"
