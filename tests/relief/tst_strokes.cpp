#include "relief/operations/operations.h"
#include "relief/strokes/strokepath.h"
#include "relief/tools/alphabrush.h"
#include "relief/tools/tooltable.h"
#include "sculptbench.h"

#include <QTest>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

using namespace marlowen;

namespace {

constexpr double broken = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

/// Deposits at full strength and without a falloff: each dab raises by 0.5.
struct Bench : SculptBench
{
    Bench()
    {
        params.type = Tool::Deposit;
        params.strength = 1.0;
        params.falloff = Tool::ConstantFalloff;
    }
    /// Height above the ground in dabs.
    double dabs(int column, int row) const { return (relief.heightAt(column, row) - 2.0F) / 0.5; }
};

/// True when all values are numbers in 0 .. limit.
bool isSound(const GridLayer &layer, float limit)
{
    const Layer values = copyOf(layer);
    return std::all_of(values.begin(), values.end(),
                       [limit](float value) { return value >= 0.0F && value <= limit; });
}

} // namespace

class TestStrokes : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { AlphaBrush::instance().setImage({}); }

    void batchesShareTheirPoint()
    {
        Bench b;
        b.engine.beginStroke(b.params, {0.0, 0.0});
        b.engine.addStrokePoint({4.0, 0.0});
        b.engine.flush();
        // The footprint covers the centre and one column to either side: the first point is dabbed
        // twice, as the stroke's beginning and as that of the batch.
        QCOMPARE(b.dabs(149, 200), 2.0);
        QCOMPARE(b.dabs(150, 200), 3.0);
        QCOMPARE(b.dabs(152, 200), 3.0);
        b.engine.addStrokePoint({7.0, 0.0});
        b.engine.flush();
        QCOMPARE(b.dabs(154, 200), 4.0); // where the batches meet
        QCOMPARE(b.dabs(157, 200), 2.0);
        QCOMPARE(b.dabs(158, 200), 1.0);
        b.relief.heightsChanged = false;
        b.engine.flush();
        QVERIFY(b.relief.heightsChanged);
        b.engine.endStroke({7.5, 0.0});
        QCOMPARE(b.undo.count(), 1);
        QVERIFY(!b.engine.stroking());
    }

    void preparingChangesNothing()
    {
        Bench b;
        b.engine.prepare(b.params);
        QVERIFY(b.relief.snapshotLayer().written() && !b.engine.stroking());
        b.engine.beginStroke(b.params, {0.0, 0.0});
        b.engine.endStroke({0.0, 0.0}, false);
        QCOMPARE(b.dabs(150, 200), 1.0);
    }

    void pressureWeakensTheDabs()
    {
        Bench b;
        b.engine.beginStroke(b.params, {0.0, 0.0, 0.5});
        b.engine.endStroke({0.0, 0.0}, false);
        QCOMPARE(b.dabs(150, 200), 0.5);
        // It rises from 0 to 1 along ten cells.
        b.engine.beginStroke(b.params, {0.0, 50.0, 0.0});
        b.engine.endStroke({10.0, 50.0, 1.0});
        QVERIFY(std::abs(b.dabs(150, 250) - 0.1) < 1e-5);
        QVERIFY(std::abs(b.dabs(155, 250) - (0.4 + 0.5 + 0.6)) < 1e-5);
        b.params.type = Tool::Erase; // has no weights
        b.engine.beginStroke(b.params, {0.0, 50.0, 0.0});
        b.engine.endStroke({0.0, 50.0}, false);
        QCOMPARE(b.relief.heightAt(150, 250), 0.0F);
        b.params.type = Tool::Deposit;
        b.params.size = 0.8; // radius 40
        b.engine.beginStroke(b.params, {0.0, -100.0, 1.0, 0.5});
        b.engine.endStroke({0.0, -100.0}, false);
        QCOMPARE(b.dabs(150 + 18, 100), 1.0);
        QCOMPARE(b.dabs(150 + 22, 100), 0.0);
        QCOMPARE(b.dabs(150, 100 - 18), 1.0);
        const std::vector<StrokePoint> path =
            smoothPath(std::vector<StrokePoint>{{0, 0, 0.2}, {1, 0, 0.9}, {2, 0, 0.4}});
        QCOMPARE(path[1].pressure, 0.9);
    }

    void smoothedPathsWaitForTheirGroup()
    {
        Bench b;
        b.params.smoothToolPaths = true;
        b.params.smoothLength = 6;
        b.engine.beginStroke(b.params, {0.0, 0.0});
        b.engine.addStrokePoint({4.0, 0.0}); // five points
        b.engine.flush();
        QCOMPARE(b.dabs(152, 200), 0.0);
        QCOMPARE(b.relief.tool()->path.pending.size(), size_t(5));
        b.engine.addStrokePoint(
            {9.0, 0.0}); // six more: eleven, of which six go and five and one wait
        b.engine.flush();
        QCOMPARE(b.relief.tool()->path.pending.size(), size_t(1));
        QVERIFY(std::abs(b.relief.tool()->path.pending.front().x() - 9.0) < 1e-9);
        b.engine.endStroke({9.0, 0.0});
        QVERIFY(b.dabs(159, 200) > 0.0);
        QCOMPARE(b.dabs(161, 200), 0.0);
    }

    void symmetry()
    {
        Bench b;
        b.relief.symmetryX = b.relief.symmetryY = true;
        b.engine.beginStroke(b.params, {50.0, 60.0});
        for (const QPoint cell :
             {QPoint(200, 260), QPoint(100, 260), QPoint(200, 140), QPoint(100, 140)})
            QCOMPARE(b.dabs(cell.x(), cell.y()), 1.0);
        b.engine.endStroke({50.0, 60.0});
        b.engine.beginStroke(b.params, {0.0, 0.0});
        QCOMPARE(b.dabs(150, 200), 4.0);
        QVERIFY(b.relief.frameRegion.boundingRect().contains(QRect(99, 139, 100, 120)));
    }

    void moveMirrorsItsDisplacement()
    {
        Bench b;
        for (int row = 0; row < 400; ++row)
            for (int column = 0; column < 300; ++column)
                b.relief.heights().data()[b.relief.index(column, row)] =
                    static_cast<float>(column + 1);
        b.params.type = Tool::Move;
        b.relief.symmetryX = true;
        b.engine.beginStroke(b.params, {50.0, 0.0});
        b.engine.applyAt({53.0, 0.0});
        QCOMPARE(b.relief.heightAt(203, 200), 201.0F);
        QCOMPARE(b.relief.heightAt(97, 200), 101.0F);
    }

    void decay_data()
    {
        QTest::addColumn<double>("decayLength");
        QTest::addColumn<QList<double>>("dabs");
        // Decay distance 100 * decayLength; the second dab comes after 10 cells, the third
        // after 20.
        QTest::newRow("none left after the first") << 0.0 << QList<double>{1.0, 0.0, 0.0};
        QTest::newRow("run out") << 0.1 << QList<double>{1.0, 1.0, 0.0};
        QTest::newRow("cubed") << 0.2 << QList<double>{1.0, 1.0, 0.125};
        QTest::newRow("long") << 1.0 << QList<double>{1.0, 1.0, 0.729};
    }
    void decay()
    {
        QFETCH(double, decayLength);
        QFETCH(QList<double>, dabs);
        for (const bool mirrored : {false, true}) {
            Bench b;
            b.params.useDecay = true;
            b.params.decayLength = decayLength;
            b.relief.symmetryX = mirrored;
            b.engine.beginStroke(b.params, {50.0, 0.0});
            b.engine.applyAt({60.0, 0.0});
            b.engine.applyAt({70.0, 0.0});
            for (int i = 0; i < 3; ++i) {
                QVERIFY(std::abs(b.dabs(200 + 10 * i, 200) - dabs[i]) < 1e-6);
                if (mirrored)
                    QVERIFY(std::abs(b.dabs(100 - 10 * i, 200) - dabs[i]) < 1e-6);
            }
        }
    }

    void samples()
    {
        Bench b;
        b.params.type = Tool::Sample;
        b.relief.heights().data()[b.relief.index(299, 399)] = 7.5F;
        b.engine.beginStroke(b.params, {149.9, 199.9});
        QCOMPARE(b.relief.sampleHeight, 7.5F);
        QVERIFY(!b.engine.stroking());
        b.engine.beginStroke(b.params, {150.0, 0.0});
        QCOMPARE(b.relief.sampleHeight, 0.0F);
        b.engine.endStroke({0.0, 0.0});
        QCOMPARE(b.undo.count(), 0);
    }

    void fills()
    {
        Bench b;
        b.params.type = Tool::Fill;
        b.relief.sampleHeight = 3.0F;
        b.engine.beginStroke(b.params, {0.0, 0.0});
        b.engine.endStroke({0.0, 0.0});
        QCOMPARE(b.undo.count(), 0);
        selectRectangle(b.relief, {10, 20}, {12, 25}, SelectionModifier::Normal);
        b.relief.selectionActive = false; // it fills by the layer alone
        b.relief.heightsChanged = false;
        b.engine.beginStroke(b.params, {5000.0, 0.0});
        QVERIFY(b.engine.stroking() && b.relief.heightsChanged);
        b.engine.addStrokePoint({40.0, 0.0});
        b.engine.flush();
        b.engine.endStroke({50.0, 0.0});
        QCOMPARE(b.undo.count(), 1);
        QCOMPARE(b.undo.totalSize(), 144U + 8U * 18U);
        QCOMPARE(b.relief.heightAt(10, 20), 3.0F);
        QCOMPARE(b.relief.heightAt(12, 25), 3.0F);
        QCOMPARE(b.relief.heightAt(13, 25), 2.0F);
        b.undo.undo();
        QCOMPARE(copyOf(b.relief.heights()), std::vector<float>(120000, 2.0F));
    }

    void selectionTools()
    {
        Bench b;
        for (const ToolRow &row : toolTable()) {
            if (row.kind != ToolKind::Shape)
                continue;
            b.params.type = row.type;
            b.engine.beginStroke(b.params, {0.0, 0.0});
            QVERIFY(!b.engine.stroking());
        }
        b.params.type = Tool::Magic;
        b.engine.setSelectionModifier(SelectionModifier::Normal);
        b.engine.beginStroke(b.params, {0.0, 0.0});
        QVERIFY(!b.engine.stroking() && b.relief.selectionActive);
        QCOMPARE(b.relief.selectionLayer().constData()[0], 1.0F);
        b.engine.setSelectionModifier(SelectionModifier::Subtractive);
        b.engine.beginStroke(b.params, {0.0, 0.0});
        QCOMPARE(b.relief.selectionLayer().constData()[0], 0.0F);
    }

    void strokesEndThemselves()
    {
        Bench b;
        b.engine.endStroke({1.0, 1.0}); // without a beginning
        b.engine.addStrokePoint({1.0, 1.0});
        b.engine.flush();
        b.engine.applyAt({1.0, 1.0});
        QCOMPARE(b.undo.count(), 0);
        b.engine.beginStroke(b.params, {0.0, 0.0});
        b.engine.beginStroke(b.params, {20.0, 0.0}); // twice
        QCOMPARE(b.undo.count(), 1);
        QVERIFY(!resize(b.relief, 30, 40, &b.undo));
        b.engine.addStrokePoint({40.0, 0.0});
        b.engine.attach(nullptr, nullptr); // in the middle
        QCOMPARE(b.undo.count(), 2);
        QVERIFY(!b.relief.tool());
        QCOMPARE(b.dabs(191, 200), 1.0); // pending points are applied
        b.engine.beginStroke(b.params, {0.0, 0.0});
        b.engine.endStroke({9.0, 0.0});
        QVERIFY(!b.engine.stroking());
        b.engine.attach(&b.relief, &b.undo);
        b.engine.beginStroke(b.params, {1000.0, 0.0}); // beside the relief
        b.engine.endStroke({2000.0, 0.0});
        QCOMPARE(b.undo.count(), 2);
    }

    void toolChangedDuringAStroke()
    {
        Bench b;
        b.engine.beginStroke(b.params, {0.0, 0.0});
        b.params.type = Tool::Erase;
        b.params.size = 1.0;
        stampImage();
        b.engine.applyAt({30.0, 0.0});
        QCOMPARE(b.dabs(180, 200), 1.0);
        QCOMPARE(b.dabs(181, 201), 0.0);
    }

    void gridReplacedDuringAStroke()
    {
        Bench b;
        QVERIFY(resize(b.relief, 200, 100, &b.undo));
        for (int i = 0; i < 2; ++i) {
            b.engine.beginStroke(b.params, {0.0, 0.0});
            i == 0 ? b.undo.undo() : b.undo.redo();
            b.engine.applyAt({5.0, 5.0});
            b.engine.endStroke({90.0, 45.0});
            QCOMPARE(b.undo.count(), 1);
            QVERIFY(!b.engine.stroking());
        }
    }

    void brokenPoints_data()
    {
        QTest::addColumn<QPointF>("point");
        QTest::newRow("no number") << QPointF(broken, 0.0);
        QTest::newRow("infinite") << QPointF(0.0, -infinite);
        QTest::newRow("far") << QPointF(9e8, -9e8);
    }
    void brokenPoints()
    {
        QFETCH(QPointF, point);
        for (const ToolRow &row : toolTable()) {
            Bench b;
            b.params.type = row.type;
            b.params.size = 0.2;
            b.params.smoothToolPaths = row.type % 2;
            b.engine.beginStroke(b.params, point);
            b.engine.addStrokePoint({3.0, 3.0});
            b.engine.flush();
            b.engine.beginStroke(b.params, {1.0, 1.0});
            b.engine.applyAt(point);
            b.engine.addStrokePoint(point);
            b.engine.flush();
            b.engine.endStroke(point);
            QVERIFY(!b.engine.stroking());
            QVERIFY(isSound(b.relief.heights(), std::numeric_limits<float>::max()));
        }
    }

    void unusualReliefsAndParameters_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::newRow("one cell") << QSize(1, 1);
        QTest::newRow("a line") << QSize(2, 300);
        QTest::newRow("small") << QSize(17, 9);
    }
    void unusualReliefsAndParameters()
    {
        QFETCH(QSize, size);
        std::mt19937 random(11);
        const double values[] = {broken, infinite, -infinite, -1.0, 0.0, 1e-300, 0.3, 1.0, 1e300};
        // The largest footprints take long to compute; another test covers their limit.
        const double sizes[] = {broken, infinite, -infinite, -1.0, 0.0, 1e-300, 0.3};
        const auto any = [&] { return values[random() % std::size(values)]; };
        const auto anySize = [&] { return sizes[random() % std::size(sizes)]; };
        for (const ToolRow &row : toolTable()) {
            for (int round = 0; round < 6; ++round) {
                Relief relief(size.width(), size.height());
                std::fill_n(relief.heights().data(), relief.cells(), 1.0F);
                relief.symmetryX = relief.symmetryY = random() % 2;
                relief.invert = random() % 2;
                relief.sampleHeight = static_cast<float>(any());
                SculptUndo undo;
                SculptEngine engine;
                engine.attach(&relief, &undo);
                ToolParams params{row.type,
                                  int(random() % 9) - 3,
                                  int(random() % 9) - 3,
                                  anySize(),
                                  any(),
                                  any(),
                                  any(),
                                  any(),
                                  random() % 2 == 0,
                                  any(),
                                  random() % 2 == 0,
                                  random() % 2 == 0,
                                  int(random() % 5) - 2,
                                  random() % 2 == 0,
                                  any(),
                                  random() % 2 == 0,
                                  int(random() % 9) - 3};
                engine.beginStroke(params, {0.0, 0.0});
                engine.addStrokePoint({2.5, 3.5});
                engine.flush();
                engine.endStroke({-4.0, 8.0});
                QVERIFY(isSound(relief.heights(), std::numeric_limits<float>::max()));
                QVERIFY(isSound(relief.maskLayer(), 1.0F));
            }
        }
    }

    /// Long strokes keep their regions simple: the views walk the frame region's rectangles.
    void regionsStaySimple()
    {
        Bench b;
        b.engine.beginStroke(b.params, {-140.0, -190.0});
        b.engine.addStrokePoint({140.0, 150.0});
        b.engine.endStroke({-140.0, 190.0});
        QVERIFY(b.relief.frameRegion.rectCount() <= 32);
        QVERIFY(b.relief.strokeRegion.boundingRect().contains(QRect(10, 10, 280, 380)));
    }
};

QTEST_APPLESS_MAIN(TestStrokes)
#include "tst_strokes.moc"
