#include "relief/grid/heightscan.h"
#include "relief/grid/relief.h"
#include "relief/grid/reliefchanges.h"
#include "relief/operations/operations.h"
#include "relief/selection/selections.h"
#include "relief/strokes/sculptengine.h"
#include "relief/tools/tool.h"

#include <QTest>

#include <limits>

using namespace marlowen;

class ReliefChangesTest : public QObject
{
    Q_OBJECT

private slots:
    void heightScan_data()
    {
        QTest::addColumn<int>("count");
        for (const int count : {1, 31, 32, 33, 1000})
            QTest::addRow("%d", count) << count;
    }

    void heightScan()
    {
        QFETCH(int, count);
        std::vector<float> values(static_cast<size_t>(count), 4.0F);
        for (const int place : {0, count / 2, count - 1}) {
            const auto at = static_cast<size_t>(place);
            values[at] = 1.5F;
            QCOMPARE(scanHeights(values).minimum, 1.5);
            values[at] = 99.0F;
            QCOMPARE(scanHeights(values).maximum, 99.0);
            values[at] = std::numeric_limits<float>::quiet_NaN();
            QCOMPARE(scanHeights(values).maximum, count == 1 ? 0.0 : 4.0);
            values[at] = -4.0F;
            QCOMPARE(scanHeights(values).minimum, -4.0);
            values[at] = 4.0F;
        }
        std::fill(values.begin(), values.end(), -2.0F);
        QCOMPARE(scanHeights(values).maximum, 0.0);
        QCOMPARE(scanHeights({}).minimum, 0.0);
    }

    void everyViewLearnsOfEveryChange()
    {
        Relief relief(100, 100);
        ReliefChanges changes;
        const int first = changes.addView();
        const int second = changes.addView();
        changes.setRelief(&relief);
        QVERIFY(changes.take(first).full);
        QVERIFY(!changes.pending(first) && changes.pending(second));
        QVERIFY(!relief.heightsChanged && !relief.appearanceChanged);

        relief.frameRegion = QRect(1, 2, 3, 4);
        relief.heightsChanged = true;
        const PendingCells cells = changes.take(first);
        QVERIFY(!cells.full);
        QCOMPARE(cells.cells.boundingRect(), QRect(1, 2, 3, 4));
        QVERIFY(relief.frameRegion.isEmpty());
        QVERIFY(changes.take(second).full); // it had not drawn at all yet

        relief.frameRegion = QRect(1, 2, 3, 4);
        changes.collect();
        relief.frameRegion = QRect(50, 50, 10, 10);
        changes.notify();
        for (const int view : {first, second}) {
            const QRegion both = changes.take(view).cells;
            QVERIFY(both.contains(QPoint(2, 3)) && both.contains(QPoint(55, 55)));
            QVERIFY(!both.contains(QPoint(20, 20)));
            QVERIFY(!changes.pending(view));
        }
        relief.heightsChanged = true;
        QVERIFY(changes.take(first).full);
        clearMask(relief, nullptr);
        QVERIFY(changes.take(first).full);
        changes.take(first);
        selectRectangle(relief, {1, 1}, {5, 5}, SelectionModifier::Normal);
        QVERIFY(changes.take(first).full);
    }

    void strokesReportOnlyTheirRegion()
    {
        Relief relief(200, 200);
        relief.selectionActive = true; // with nothing selected: brushes change nothing
        SculptEngine engine;
        engine.attach(&relief, nullptr);
        ReliefChanges changes;
        const int view = changes.addView();
        changes.setRelief(&relief);
        changes.take(view);

        ToolParams tool;
        tool.type = Tool::Deposit;
        tool.keepTransparency = false;
        const auto stroke = [&] {
            changes.collect();
            engine.beginStroke(tool, {0, 0});
            engine.addStrokePoint({30, 0});
            engine.endStroke({40, 0});
            changes.collectStroke();
            return changes.take(view);
        };
        const PendingCells nothing = stroke();
        QVERIFY(!nothing.full && nothing.cells.isEmpty());

        relief.selectionActive = false;
        for (const int type : {int(Tool::Deposit), int(Tool::Mask)}) {
            tool.type = type;
            const PendingCells some = stroke();
            QVERIFY(!some.full);
            QVERIFY(some.cells.contains(QPoint(120, 100)));
            QVERIFY(!some.cells.contains(QPoint(100, 190)));
        }
        tool.type = Tool::Magic;
        QVERIFY(stroke().full);
    }

    void heightRangeIsScannedOnce()
    {
        Relief relief(50, 50);
        ReliefChanges changes;
        changes.setRelief(&relief);
        changes.collect();
        relief.heights().data()[7] = 5.0F;
        QCOMPARE(changes.heightRange().maximum, 5.0);
        relief.heights().data()[7] = 6.0F; // without a flag
        QCOMPARE(changes.heightRange().maximum, 5.0);
        relief.frameRegion = QRect(7, 0, 1, 1);
        changes.collect();
        QCOMPARE(changes.heightRange().maximum, 6.0);
        changes.setRelief(nullptr);
        QCOMPARE(changes.heightRange().maximum, 0.0);
        changes.notify();
    }
};

QTEST_GUILESS_MAIN(ReliefChangesTest)
#include "tst_reliefchanges.moc"
