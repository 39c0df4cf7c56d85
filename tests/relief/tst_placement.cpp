#include "relief/grid/relief.h"
#include "relief/history/sculptundo.h"
#include "relief/operations/placement.h"
#include "relief/tools/tool.h"

#include <QSize>
#include <QTest>

using namespace marlowen;

namespace {

/// Three columns by two rows, one cell empty.
const FloatGrid small(3, 2, {1.0F, 2.0F, 3.0F, 4.0F, 0.0F, 6.0F});

void fill(Relief &relief, float height)
{
    std::fill_n(relief.heights().data(), relief.cells(), height);
}

QList<float> heightsIn(const Relief &relief, const QRect &box)
{
    QList<float> values;
    for (int row = box.top(); row <= box.bottom(); ++row) {
        for (int column = box.left(); column <= box.right(); ++column)
            values << relief.heightAt(column, row);
    }
    return values;
}

void place(Relief &relief, const FloatGrid &heights, const Placement &placement,
           const EditRun &run = {nullptr})
{
    placePattern(relief, PlacedPattern(heights.view(), 1.0), placement, run);
}

} // namespace

class TestPlacement : public QObject
{
    Q_OBJECT

private slots:
    void joins_data()
    {
        QTest::addColumn<int>("join");
        QTest::addColumn<double>("angle");
        QTest::addColumn<double>("strength");
        QTest::addColumn<QList<float>>("expected"); // of 3 x 2 cells, or 2 x 3 when turned
        using Values = QList<float>;
        QTest::newRow("add") << int(PlaceJoin::Add) << 0.0 << 1.0 << Values{4, 5, 6, 7, 3, 9};
        QTest::newRow("subtract") << int(PlaceJoin::Subtract) << 0.0 << 1.0
                                  << Values{2, 1, 0, 0, 3, 0};
        QTest::newRow("highest") << int(PlaceJoin::Highest) << 0.0 << 1.0
                                 << Values{3, 3, 3, 4, 3, 6};
        QTest::newRow("lowest") << int(PlaceJoin::Lowest) << 0.0 << 1.0 << Values{1, 2, 3, 3, 3, 3};
        QTest::newRow("replace") << int(PlaceJoin::Replace) << 0.0 << 1.0
                                 << Values{1, 2, 3, 4, 3, 6};
        QTest::newRow("half of it")
            << int(PlaceJoin::Replace) << 0.0 << 0.5 << Values{2, 2.5, 3, 3.5, 3, 4.5};
        QTest::newRow("turned") << int(PlaceJoin::Replace) << 90.0 << 1.0
                                << Values{4, 1, 3, 2, 6, 3};
    }

    void joins()
    {
        QFETCH(int, join);
        QFETCH(double, angle);
        QFETCH(double, strength);
        QFETCH(QList<float>, expected);
        Relief relief(9, 9);
        fill(relief, 3.0F);
        const bool turned = angle != 0.0;
        const QPointF centre = turned ? QPointF(5, 4.5) : QPointF(4.5, 5);
        place(relief, small,
              {.centre = centre, .angle = angle, .join = join, .strength = strength});
        const QRect box(turned ? QPoint(4, 3) : QPoint(3, 4), turned ? QSize(2, 3) : QSize(3, 2));
        const QList<float> found = heightsIn(relief, box);
        for (int i = 0; i < 6; ++i)
            QVERIFY2(std::abs(found[i] - expected[i]) < 1e-5F, qPrintable(QString::number(i)));
        for (int i = 0; i < relief.cells(); ++i)
            QVERIFY(box.contains(i % 9, i / 9) || relief.heightAt(i) == 3.0F);
    }

    void scaleKeepsTheForm()
    {
        FloatGrid block(40, 40);
        std::ranges::fill(block.values, 8.0F);
        Relief relief(100, 100);
        place(relief, block, {.centre = {50, 50}, .angle = 30.0, .scale = 0.25});
        double volume = 0.0;
        for (int i = 0; i < relief.cells(); ++i) {
            QVERIFY(relief.heightAt(i) <= 2.0F);
            volume += double(relief.heightAt(i));
        }
        QVERIFY(std::abs(volume - 200.0) < 20.0);
        place(relief, block, {.centre = {50, 50}, .scale = 2.0, .softEdge = 1.0});
        QVERIFY(relief.heightAt(50, 50) > 17.0F && relief.heightAt(12, 50) < 0.5F);
    }

    void selectionMaskAndUndo_data()
    {
        QTest::addColumn<bool>("preview");
        QTest::newRow("at once") << false;
        QTest::newRow("shown first") << true;
    }
    void selectionMaskAndUndo()
    {
        QFETCH(const bool, preview);
        Relief relief(9, 9);
        fill(relief, 3.0F);
        relief.selectionActive = true;
        std::fill_n(relief.selectionLayer().data() + relief.index(0, 4), 9, 1.0F);
        relief.maskLayer().data()[relief.index(3, 4)] = 1.0F;
        relief.maskLayer().data()[relief.index(4, 4)] = 0.5F;
        SculptUndo undo;
        EditRun run(&undo);
        run.isPreview = preview;
        place(relief, small, {.centre = {4.5, 5}}, run);
        QCOMPARE(heightsIn(relief, {3, 4, 3, 2}), (QList<float>{3, 4, 6, 3, 3, 3}));
        SculptUndo kept;
        kept.takeOver(undo);
        const QList<float> placed = heightsIn(relief, relief.rect());
        QCOMPARE(kept.count(), 1);
        kept.undo();
        QCOMPARE(heightsIn(relief, relief.rect()), QList<float>(81, 3.0F));
        kept.redo();
        QCOMPARE(heightsIn(relief, relief.rect()), placed);
    }

    /// Never beyond the grid, at any place.
    void anyPlace_data()
    {
        QTest::addColumn<QPointF>("centre");
        QTest::addColumn<double>("scale");
        QTest::newRow("off") << QPointF(-500, 3) << 1.0;
        QTest::newRow("far off") << QPointF(1e15, -1e15) << 1000.0;
        QTest::newRow("corner") << QPointF(0, 0) << 3.0;
        QTest::newRow("huge") << QPointF(20, 30) << 1000.0;
        QTest::newRow("tiny") << QPointF(20.3, 30.7) << 0.001;
    }

    void anyPlace()
    {
        QFETCH(QPointF, centre);
        QFETCH(double, scale);
        FloatGrid high(33, 20);
        std::ranges::fill(high.values, 1e30F);
        for (const QSize size : {QSize(33, 20), QSize(1, 1)}) {
            const GridView pattern(high.values.data(), size.width(), size.height());
            Relief relief(60, 50);
            fill(relief, 1.0F);
            for (int angle = -180; angle <= 180; angle += 15) {
                placePattern(relief, PlacedPattern(pattern, 1e6),
                             {.centre = centre, .angle = double(angle), .scale = scale}, nullptr);
            }
            for (int i = 0; i < relief.cells(); ++i)
                QVERIFY(std::isfinite(relief.heightAt(i)) && relief.heightAt(i) >= 1.0F);
        }
    }
};

QTEST_APPLESS_MAIN(TestPlacement)
#include "tst_placement.moc"
