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

ToolParams randomParams(std::mt19937 &random, int type)
{
    std::uniform_real_distribution<double> share(0.0, 1.0);
    ToolParams params;
    params.type = type;
    params.mode = static_cast<int>(random() % 3);
    params.form = static_cast<int>(random() % 2);
    params.falloff = static_cast<int>(random() % 4);
    params.size = 0.1 + 0.9 * share(random);
    params.strength = share(random);
    params.hardness = share(random);
    params.aspect = 1.0 + 2.0 * share(random);
    params.angle = 180.0 * share(random) - 90.0;
    params.useDecay = random() % 2;
    params.decayLength = 0.1 * share(random);
    params.keepTransparency = random() % 2;
    params.ceilingOrFloor = random() % 2;
    return params;
}

/// Rough ground with empty cells, a reference, a mask and a selection, all of them patchy.
void roughen(Relief &relief, std::mt19937 &random)
{
    std::uniform_real_distribution<float> height(0.0F, 5.0F);
    for (qsizetype i = 0; i < relief.cells(); ++i) {
        relief.heights().data()[i] = random() % 5 ? height(random) : 0.0F;
        relief.referenceLayer().data()[i] = height(random);
        relief.maskLayer().data()[i] = random() % 3 ? 0.0F : height(random) / 5.0F;
        relief.selectionLayer().data()[i] = random() % 4 ? 1.0F : 0.0F;
    }
    relief.sampleHeight = 1.25F;
}

void wander(SculptEngine &engine, const ToolParams &params, std::mt19937 &random)
{
    std::uniform_real_distribution<double> place(-40.0, 40.0);
    engine.beginStroke(params, {place(random), place(random)});
    for (int i = 0; i < 2; ++i) {
        engine.addStrokePoint({place(random), place(random)});
        engine.flush();
    }
    engine.endStroke({place(random), place(random)});
}

} // namespace

/// The properties of every row of the tool table.
class TestBrushProperties : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { AlphaBrush::instance().setImage({}); }

    void properties_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<bool>("stamp");
        for (const ToolRow &row : toolTable()) {
            if (row.dab)
                QTest::newRow(row.id) << int(row.type) << false;
            if (row.stamp)
                QTest::addRow("%s, stamp", row.id) << int(row.type) << true;
        }
    }
    void properties();
    void strengthZero_data() { properties_data(); }
    void strengthZero();
    void emptyGridStaysEmpty_data() { properties_data(); }
    void emptyGridStaysEmpty();
    void largestHeightsStayNumbers_data() { properties_data(); }
    void largestHeightsStayNumbers();
    void mirrorsAreDabs_data() { properties_data(); }
    void mirrorsAreDabs();
};

void TestBrushProperties::properties()
{
    QFETCH(int, type);
    QFETCH(bool, stamp);
    std::mt19937 random(static_cast<unsigned>(type) + 7U);
    const ToolRow &row = *toolRow(type);
    for (int round = 0; round < 12; ++round) {
        Relief relief(73, 58);
        SculptEngine engine;
        engine.attach(&relief, nullptr);
        roughen(relief, random);
        relief.selectionActive = round % 2;
        if (stamp)
            stampImage();
        const ToolParams params = randomParams(random, type);
        const Layer before = copyOf(relief.heights());
        const Layer maskBefore = copyOf(relief.maskLayer());
        engine.beginStroke(params, {5.3, -4.0});
        engine.applyAt({7.0, -2.5});
        const double radius = relief.tool()->radius();
        engine.endStroke({}, false);
        for (qsizetype i = 0; i < relief.cells(); ++i) {
            const float height = relief.heightAt(i);
            const auto k = static_cast<size_t>(i);
            QVERIFY(std::isfinite(height) && height >= 0.0F);
            if (height == before[k] && relief.maskLayer().constData()[i] == maskBefore[k])
                continue;
            const QPoint cell(static_cast<int>(i % 73), static_cast<int>(i / 73));
            const QPointF offset = cell - QPointF(36.5 + 6.15, 29.0 - 3.25);
            QVERIFY(std::abs(offset.x()) <= radius + 2.0 && std::abs(offset.y()) <= radius + 2.0);
            QVERIFY((type == Tool::Mask) == (height == before[k]));
            if (row.has(KeepsUnselected) && relief.selectionActive)
                QVERIFY(relief.selectionLayer().constData()[i] != 0.0F);
            if (row.has(KeepsEmpty) && params.keepTransparency)
                QVERIFY(before[k] != 0.0F);
            if (row.has(HeedsMask))
                QVERIFY(maskBefore[k] < 1.0F);
            QVERIFY(relief.strokeRegion.contains(cell));
        }
    }
}

void TestBrushProperties::strengthZero()
{
    QFETCH(int, type);
    QFETCH(bool, stamp);
    if (!toolRow(type)->has(UsesStrength) || type == Tool::Mask)
        return; // these do not scale with the strength
    std::mt19937 random(5);
    Relief relief(70, 70);
    SculptUndo undo;
    SculptEngine engine;
    engine.attach(&relief, &undo);
    roughen(relief, random);
    if (stamp)
        stampImage();
    ToolParams params = randomParams(random, type);
    params.strength = 0.0;
    const Layer before = copyOf(relief.heights());
    wander(engine, params, random);
    QVERIFY(copyOf(relief.heights()) == before);
    QCOMPARE(undo.count(), 0);
}

void TestBrushProperties::emptyGridStaysEmpty()
{
    QFETCH(int, type);
    QFETCH(bool, stamp);
    std::mt19937 random(6);
    Relief relief(70, 70);
    SculptEngine engine;
    engine.attach(&relief, nullptr);
    relief.sampleHeight = 2.0F;
    if (stamp)
        stampImage();
    ToolParams params = randomParams(random, type);
    params.keepTransparency = true;
    wander(engine, params, random);
    QVERIFY(copyOf(relief.heights()) == Layer(70 * 70, 0.0F));
}

/// Nothing on the way to a new height leaves the range of floats.
void TestBrushProperties::largestHeightsStayNumbers()
{
    QFETCH(int, type);
    QFETCH(bool, stamp);
    constexpr float largest = std::numeric_limits<float>::max();
    std::mt19937 random(9);
    Relief relief(70, 70);
    SculptEngine engine;
    engine.attach(&relief, nullptr);
    std::generate_n(relief.heights().data(), relief.cells(),
                    [&] { return random() % 4 ? largest : 1.0F; });
    relief.referenceLayer().copyFrom(relief.heights());
    relief.sampleHeight = largest;
    if (stamp)
        stampImage();
    for (int round = 0; round < 4; ++round) {
        relief.invert = round % 2;
        wander(engine, randomParams(random, type), random);
    }
    const Layer heights = copyOf(relief.heights());
    QVERIFY(std::ranges::all_of(heights, [](float h) { return h >= 0.0F && h <= largest; }));
}

/// With symmetry one dab is that dab and its mirror images, each a dab like any other.
void TestBrushProperties::mirrorsAreDabs()
{
    QFETCH(int, type);
    QFETCH(bool, stamp);
    std::mt19937 random(8);
    Relief mirrored(90, 91);
    Relief plain(90, 91);
    roughen(mirrored, random);
    plain.heights().copyFrom(mirrored.heights());
    plain.referenceLayer().copyFrom(mirrored.referenceLayer());
    plain.maskLayer().copyFrom(mirrored.maskLayer());
    plain.sampleHeight = mirrored.sampleHeight;
    if (stamp)
        stampImage();
    ToolParams params = randomParams(random, type);
    params.size = 0.6;
    params.useDecay = false;
    mirrored.symmetryX = mirrored.symmetryY = true;
    SculptEngine engine;
    engine.attach(&mirrored, nullptr);
    engine.beginStroke(params, {20.0, 21.0});
    engine.applyAt({22.0, 20.0});
    engine.attach(&plain, nullptr);
    for (const QPointF sign : {QPointF(1, 1), QPointF(-1, 1), QPointF(1, -1), QPointF(-1, -1)}) {
        engine.beginStroke(params, {20.0 * sign.x(), 21.0 * sign.y()});
        engine.applyAt({22.0 * sign.x(), 20.0 * sign.y()});
    }
    engine.endStroke({}, false);
    QVERIFY(copyOf(mirrored.heights()) == copyOf(plain.heights()));
    QVERIFY(copyOf(mirrored.maskLayer()) == copyOf(plain.maskLayer()));
}

QTEST_APPLESS_MAIN(TestBrushProperties)
#include "tst_brushproperties.moc"
