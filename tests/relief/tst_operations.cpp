#include "pictures.h"
#include "relief/history/sculptundo.h"
#include "relief/operations/operations.h"
#include "relief/operations/resample.h"
#include "relief/tools/tool.h"

#include <QTest>

#include <cmath>
#include <limits>
#include <random>

using namespace marlowen;

namespace {

using Floats = QList<float>;

Floats valuesOf(const GridLayer &layer)
{
    return {layer.constData(), layer.constData() + layer.size()};
}

GridLayer layerOf(const Floats &values)
{
    GridLayer layer(values.size());
    std::ranges::copy(values, layer.data());
    return layer;
}

Floats resampled(const Floats &source, int length)
{
    Floats result(length);
    resample1D({source.data(), static_cast<int>(source.size()), 1}, {result.data(), length, 1});
    return result;
}

/// Line by line, with a whole layer between the passes.
Floats resampledPlainly(const Floats &layer, GridSize from, GridSize to)
{
    Floats wide(static_cast<qsizetype>(to.width) * from.height);
    Floats result(static_cast<qsizetype>(to.width) * to.height);
    for (int row = 0; row < from.height; ++row) {
        resample1D({layer.data() + qsizetype{row} * from.width, from.width, 1},
                   {wide.data() + qsizetype{row} * to.width, to.width, 1});
    }
    for (int column = 0; column < to.width; ++column) {
        resample1D({wide.data() + column, from.height, to.width},
                   {result.data() + column, to.height, to.width});
    }
    return result;
}

/// Every third cell or so empty, in patches; a few whole rows and columns too.
Floats patchyHeights(GridSize size, uint seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> height(0.1F, 50.0F);
    Floats values;
    for (int row = 0; row < size.height; ++row) {
        for (int column = 0; column < size.width; ++column) {
            const bool empty = (row / 3 + column / 4) % 3 == 0 || row % 19 == 0;
            values << (empty ? 0.0F : height(random));
        }
    }
    return values;
}

/// Everything an undo has to bring back.
struct State
{
    explicit State(const Relief &relief)
        : rect(relief.rect())
        , layers{valuesOf(relief.heights()), valuesOf(relief.selectionLayer()),
                 valuesOf(relief.maskLayer()), valuesOf(relief.referenceLayer())}
        , range(relief.rangeMinimum, relief.rangeMaximum)
        , zScale(relief.zScale)
        , selectionActive(relief.selectionActive)
    {
    }
    bool operator==(const State &) const = default;

    QRect rect;
    QList<Floats> layers;
    QPointF range;
    double zScale;
    bool selectionActive;
};

std::unique_ptr<Relief> filledRelief()
{
    auto relief = pictures::relief({"123456", "123056", "100006", "654321"});
    pictures::intoLayer({"000111", "000111", "000000", "000000"}, relief->selectionLayer());
    pictures::intoLayer({"000000", "011000", "000000", "000000"}, relief->maskLayer());
    pictures::intoLayer({"222222", "222222", "222222", "222222"}, relief->referenceLayer());
    relief->rangeMinimum = 1.0;
    relief->rangeMaximum = 6.0;
    relief->selectionActive = true;
    relief->heightsChanged = false;
    relief->appearanceChanged = false;
    return relief;
}

} // namespace

class TestOperations : public QObject
{
    Q_OBJECT

private slots:
    void line_data();
    void line();
    void layer_data();
    void layer();
    void halvingAveragesAndKeepsEdges();
    void heightsEqualThePlainWay_data();
    void heightsEqualThePlainWay();
    void resizeCarriesEveryLayer();
    void resizeIsRefused();
    void zScale();
    void crop_data();
    void crop();
    void cropIsOneStep();
    void maskOperations_data();
    void maskOperations();
    void nothingDuringAStroke();
};

void TestOperations::line_data()
{
    QTest::addColumn<Floats>("source");
    QTest::addColumn<Floats>("result");
    QTest::newRow("equal") << Floats{1, 5, 2} << Floats{1, 5, 2};
    // Positions -0.25 (clamped), 0.25, 0.75, 1.25 (clamped).
    QTest::newRow("doubled") << Floats{0, 8} << Floats{0, 2, 6, 8};
    // Positions -1/6 (clamped), 0.5, 7/6 (clamped).
    QTest::newRow("two to three") << Floats{2, 4} << Floats{2, 3, 4};
    QTest::newRow("one to three") << Floats{7} << Floats{7, 7, 7};
    QTest::newRow("halved") << Floats{1, 3, 10, 20} << Floats{2, 15};
    // (1 * 3 + 0.5 * 6) / 1.5 and (0.5 * 6 + 1 * 9) / 1.5.
    QTest::newRow("three to two") << Floats{3, 6, 9} << Floats{4, 8};
    QTest::newRow("five to one") << Floats{1, 2, 3, 4, 10} << Floats{4};
}

void TestOperations::line()
{
    QFETCH(Floats, source);
    QFETCH(Floats, result);
    QCOMPARE(resampled(source, static_cast<int>(result.size())), result);
}

void TestOperations::layer_data()
{
    QTest::addColumn<QSize>("from");
    QTest::addColumn<QSize>("to");
    QTest::newRow("smaller") << QSize(13, 21) << QSize(5, 4);
    QTest::newRow("much smaller") << QSize(90, 100) << QSize(2, 3);
    QTest::newRow("larger") << QSize(9, 17) << QSize(33, 41);
    QTest::newRow("much larger") << QSize(2, 2) << QSize(50, 70);
    QTest::newRow("wider and lower") << QSize(10, 40) << QSize(23, 9);
    QTest::newRow("narrower and higher") << QSize(40, 10) << QSize(9, 23);
    QTest::newRow("rows alone") << QSize(12, 30) << QSize(12, 31);
    QTest::newRow("columns alone") << QSize(30, 12) << QSize(29, 12);
    QTest::newRow("smaller, shared by threads") << QSize(701, 503) << QSize(299, 170);
    QTest::newRow("larger, shared by threads") << QSize(190, 127) << QSize(603, 501);
}

void TestOperations::layer()
{
    QFETCH(QSize, from);
    QFETCH(QSize, to);
    const GridSize old{from.width(), from.height()};
    const GridSize wanted{to.width(), to.height()};
    const Floats values = patchyHeights(old, 3);
    QCOMPARE(valuesOf(resample2D(layerOf(values), old, wanted)),
             resampledPlainly(values, old, wanted));
    QVERIFY(!resample2D(GridLayer(old.width * old.height), old, wanted).written());
}

void TestOperations::heightsEqualThePlainWay_data()
{
    layer_data();
}

void TestOperations::heightsEqualThePlainWay()
{
    QFETCH(QSize, from);
    QFETCH(QSize, to);
    const GridSize old{from.width(), from.height()};
    const GridSize wanted{to.width(), to.height()};
    Floats values = patchyHeights(old, 4);
    enum { Patches, PatchesInAFrame, PlateInAFrame };
    for (const int ground : {Patches, PatchesInAFrame, PlateInAFrame}) {
        for (int i = 0; ground != Patches && i < values.size(); ++i) {
            const int column = i % old.width;
            if (ground == PlateInAFrame && values[i] == 0.0F)
                values[i] = static_cast<float>(i % 11 + 1);
            if (column < old.width / 3 || column > old.width * 3 / 4 || i < values.size() / 4)
                values[i] = 0.0F;
        }
        Floats occupied;
        for (const float value : values)
            occupied << (value != 0.0F ? 1.0F : 0.0F);
        Floats expected = resampledPlainly(values, old, wanted);
        const Floats covered = resampledPlainly(occupied, old, wanted);
        for (qsizetype i = 0; i < expected.size(); ++i)
            expected[i] = covered[i] >= 0.5F ? expected[i] / covered[i] : 0.0F;
        QCOMPARE(valuesOf(resampleHeights(layerOf(values), old, wanted)), expected);
    }
}

void TestOperations::halvingAveragesAndKeepsEdges()
{
    const auto relief = pictures::relief({"1240", "3560", "9005", "0005"});
    QVERIFY(resize(*relief, 2, 2, nullptr));
    // Full, half covered (kept at the height of the material), a quarter covered, half covered.
    QCOMPARE(valuesOf(relief->heights()), Floats({2.75F, 5.0F, 0.0F, 5.0F}));
}

void TestOperations::resizeCarriesEveryLayer()
{
    const auto relief = filledRelief();
    const State before(*relief);
    SculptUndo undo;
    QVERIFY(resize(*relief, 3, 2, &undo));
    QCOMPARE(relief->rect(), QRect(0, 0, 3, 2));
    QCOMPARE(valuesOf(relief->selectionLayer()), Floats({0, 0.5F, 1, 0, 0, 0}));
    QCOMPARE(valuesOf(relief->maskLayer()), Floats({0.25F, 0.25F, 0, 0, 0, 0}));
    QCOMPARE(valuesOf(relief->referenceLayer()), Floats(6, 2.0F));
    QCOMPARE(relief->workLayer().size(), 6);
    QCOMPARE(relief->snapshotLayer().size(), 6);
    QVERIFY(relief->heightsChanged && relief->appearanceChanged);
    QCOMPARE(relief->frameRegion, QRegion(relief->rect()));
    QCOMPARE(undo.totalSize(), 104U + 16U * 24U);

    const State after(*relief);
    relief->selectionActive = false;
    relief->rangeMaximum = 9.0;
    undo.undo();
    QVERIFY(State(*relief) == before);
    undo.redo();
    QVERIFY(State(*relief) == after);
    undo.undo();
    QVERIFY(State(*relief) == before);
    QCOMPARE(undo.count(), 1);
    QCOMPARE(undo.totalSize(), 104U + 16U * 24U);
}

void TestOperations::resizeIsRefused()
{
    const auto relief = filledRelief();
    const State before(*relief);
    SculptUndo undo;
    for (const QSize size : {QSize(1, 5), QSize(5, 1), QSize(-3, 4), QSize(6, 4)})
        QVERIFY(!resize(*relief, size.width(), size.height(), &undo));
    QVERIFY(State(*relief) == before);
    QVERIFY(!relief->heightsChanged);
    QCOMPARE(undo.count(), 0);
}

void TestOperations::zScale()
{
    Relief relief(3, 3);
    SculptUndo undo;
    relief.appearanceChanged = false;
    setZScale(relief, 1.0, &undo);
    setZScale(relief, std::numeric_limits<double>::quiet_NaN(), &undo);
    setZScale(relief, std::numeric_limits<double>::infinity(), nullptr);
    QVERIFY(!relief.appearanceChanged);
    QCOMPARE(undo.count(), 0);
    setZScale(relief, 3.0, &undo);
    setZScale(relief, 3.0, &undo);
    QVERIFY(relief.appearanceChanged);
    QCOMPARE(undo.count(), 1);
    setZScale(relief, 4.0, nullptr);
    QCOMPARE(relief.zScale, 4.0);
    undo.undo();
    QCOMPARE(relief.zScale, 1.0);
}

void TestOperations::crop_data()
{
    QTest::addColumn<QList<QPointF>>("outline");
    QTest::addColumn<QStringList>("left");
    const QStringList all{"######", "######", "######", "######", "######"};
    const QStringList none(5, QStringLiteral("......"));
    // The relief is 6 x 5: column = 3 + x, row = 2.5 + y, truncated.
    QTest::newRow("both ends") << QList<QPointF>{{-1.0, -1.0}, {1.0, 1.0}}
                               << QStringList{"......", "..###.", "..###.", "..###.", "......"};
    QTest::newRow("points truncated first, in any order")
        << QList<QPointF>{{1.9, 0.0}, {-1.9, 1.9}, {0.0, -1.9}}
        << QStringList{"......", "..###.", "..###.", "..###.", "......"};
    QTest::newRow("a point") << QList<QPointF>{{2.0, -2.0}}
                             << QStringList{".....#", "......", "......", "......", "......"};
    QTest::newRow("partly off") << QList<QPointF>{{-1e300, 0.0}, {-1.0, 1e300}}
                                << QStringList{"......", "......", "###...", "###...", "###..."};
    QTest::newRow("around the relief") << QList<QPointF>{{-50, -50}, {50, 50}} << all;
    QTest::newRow("off to the right") << QList<QPointF>{{9, -9}, {20, 20}} << none;
    QTest::newRow("off to the left") << QList<QPointF>{{-20, -9}, {-9, 20}} << none;
    QTest::newRow("no point") << QList<QPointF>{} << all;
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("no usable point") << QList<QPointF>{{notANumber, 0.0}, {0.0, notANumber}} << all;
}

void TestOperations::crop()
{
    QFETCH(QList<QPointF>, outline);
    const auto relief = pictures::relief(QStringList(5, QStringLiteral("123456")));
    cropApply(*relief, outline, nullptr);
    QTEST(pictures::ofLayer(*relief, relief->heights()), "left");
}

void TestOperations::cropIsOneStep()
{
    const auto relief = filledRelief();
    const State before(*relief);
    SculptUndo undo;
    relief->frameRegion = {};
    cropApply(*relief, {{-1.0, -1.0}, {0.0, 0.0}}, &undo);
    QVERIFY(relief->heightsChanged);
    QCOMPARE(relief->frameRegion, QRegion(relief->rect()));
    QCOMPARE(undo.totalSize(), 144U + 8U * 24U);
    const State after(*relief);
    undo.undo();
    QVERIFY(State(*relief) == before);
    undo.redo();
    QVERIFY(State(*relief) == after);
}

void TestOperations::maskOperations_data()
{
    QTest::addColumn<Floats>("mask");
    QTest::addColumn<Floats>("inverted");
    QTest::newRow("painted") << Floats{0.0F, 0.25F, 0.75F, 1.0F}
                             << Floats{1.0F, 0.75F, 0.25F, 0.0F};
    QTest::newRow("untouched") << Floats{} << Floats{1.0F, 1.0F, 1.0F, 1.0F};
}

void TestOperations::maskOperations()
{
    QFETCH(Floats, mask);
    QFETCH(Floats, inverted);
    Relief relief(2, 2);
    if (!mask.isEmpty())
        std::ranges::copy(mask, relief.maskLayer().data());
    const Floats before = valuesOf(relief.maskLayer());
    SculptUndo undo;
    relief.heightsChanged = false;
    relief.appearanceChanged = false;
    invertMask(relief, &undo);
    QCOMPARE(valuesOf(relief.maskLayer()), inverted);
    QVERIFY(relief.appearanceChanged);
    QVERIFY(!relief.heightsChanged);
    clearMask(relief, &undo);
    QCOMPARE(valuesOf(relief.maskLayer()), Floats(4, 0.0F));
    QCOMPARE(undo.totalSize(), 2U * (144U + 8U * 4U));
    undo.undo();
    QCOMPARE(valuesOf(relief.maskLayer()), inverted);
    undo.undo();
    QCOMPARE(valuesOf(relief.maskLayer()), before);
    undo.redo();
    invertMask(relief, nullptr);
    QCOMPARE(valuesOf(relief.maskLayer()), before);
    undo.redo();
    QCOMPARE(valuesOf(relief.maskLayer()), Floats(4, 0.0F));
}

void TestOperations::nothingDuringAStroke()
{
    const auto relief = filledRelief();
    relief->setTool(std::make_unique<Tool>());
    const State before(*relief);
    SculptUndo undo;
    QVERIFY(!resize(*relief, 9, 9, &undo));
    cropApply(*relief, {{0.0, 0.0}}, &undo);
    clearMask(*relief, &undo);
    invertMask(*relief, &undo);
    QVERIFY(State(*relief) == before);
    QCOMPARE(undo.count(), 0);
}

QTEST_APPLESS_MAIN(TestOperations)
#include "tst_operations.moc"
