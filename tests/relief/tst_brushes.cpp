#include "relief/tools/alphabrush.h"
#include "relief/tools/tooltable.h"
#include "sculptbench.h"

#include <QTest>

#include <cmath>
#include <functional>

using namespace marlowen;

namespace {

/// Brushes at half strength and a linear falloff.
struct Bench : SculptBench
{
    Bench()
    {
        params.strength = 0.5;
        params.falloff = Tool::LinearFalloff;
        params.hardness = 0.0; // an outline cell of D = 4 then weighs (1 - (2 - 1) / 2) = 0.5
    }
};

/// New values of a footprint's cells, around the dab's centre cell.
struct Dabbed
{
    double centre;
    double left;
    double right;
    double above;
    double aboveLeft;
};

struct HandCase
{
    int type;
    std::function<void(Bench &)> prepare;
    Dabbed result;
    QPoint centre{150, 200};
    std::function<void(Bench &)> further = [](Bench &) {};
};

const HandCase evenGround(
    int type, double height, const std::function<void(Bench &)> &prepare = [](Bench &) {})
{
    return {type, prepare, {height, height, height, height, height}};
}

void strengthOne(Bench &b)
{
    b.params.strength = 1.0;
}

void hill(Bench &b)
{
    b.params.strength = 1.0;
    b.at(150, 200) = 12.0F;
}

void ramp(Bench &b)
{
    b.fill([](int column, int) { return column - 140.0; });
}

void invert(Bench &b)
{
    b.relief.invert = true;
}

void stepRight(Bench &b)
{
    b.engine.applyAt({1.0, 0.0});
}

const std::vector<std::pair<const char *, HandCase>> handCases{
    // s = 0.5, w = 0.25; a rise or fall of 500 * 0.001 * 0.5 = 0.25 by a quarter.
    {"Deposit", evenGround(Tool::Deposit, 2.0625)},
    {"Deposit, inverted", evenGround(Tool::Deposit, 1.9375, invert)},
    {"Deposit to a ceiling",
     {Tool::Deposit,
      [](Bench &b) {
          b.params.ceilingOrFloor = true;
          b.at(149, 200) = 2.125F;
      },
      {2.03125, 2.125, 2.03125, 2.03125, 2.03125}}},
    {"Remove", evenGround(Tool::Remove, 1.9375)},
    {"Remove, inverted", evenGround(Tool::Remove, 2.0625, invert)},
    {"Remove to a floor",
     {Tool::Remove,
      [](Bench &b) {
          b.params.ceilingOrFloor = true;
          b.params.keepTransparency = false;
          b.at(149, 200) = 1.875F;
          b.at(150, 199) = 0.0F;
      },
      {1.96875, 1.875, 1.96875, 0.0, 1.96875}}},
    {"Remove down to nothing",
     {Tool::Remove,
      [](Bench &b) {
          strengthOne(b);
          b.params.falloff = Tool::ConstantFalloff;
          b.fill([](int, int) { return 0.25; });
      },
      {0.0, 0.0, 0.0, 0.0, 0.0}}},
    // Means 6 in the middle, 4 beside it, 3 diagonally; a quarter of the way there.
    {"Smooth",
     {Tool::Smooth, [](Bench &b) { b.at(150, 200) = 18.0F; }, {15.0, 2.5, 2.5, 2.5, 2.25}}},
    {"Smooth, raise",
     {Tool::Smooth,
      [](Bench &b) {
          b.params.mode = Tool::Raise;
          b.at(150, 200) = 18.0F;
      },
      {18.0, 2.5, 2.5, 2.5, 2.25}}},
    {"Smooth, lower",
     {Tool::Smooth,
      [](Bench &b) {
          b.params.mode = Tool::Lower;
          b.at(150, 200) = 18.0F;
      },
      {15.0, 2.0, 2.0, 2.0, 2.0}}},
    // Plane at 2 + 500 * 0.02 = 12, half of the way weighs 0.5.
    {"Clay", evenGround(Tool::Clay, 7.0, strengthOne)},
    {"Clay, inverted", evenGround(Tool::Clay, 0.0,
                                  [](Bench &b) {
                                      strengthOne(b);
                                      b.relief.invert = true;
                                  })},
    // Mean 4 of 12 and four times 2.
    {"Flatten", {Tool::Flatten, hill, {8.0, 3.0, 3.0, 3.0, 3.0}}},
    {"Scrape", {Tool::Scrape, hill, {8.0, 2.0, 2.0, 2.0, 2.0}}},
    {"Scrape, inverted",
     {Tool::Scrape,
      [](Bench &b) {
          hill(b);
          b.relief.invert = true;
      },
      {12.0, 3.0, 3.0, 3.0, 3.0}}},
    {"Undo", evenGround(Tool::UndoBrush, 3.0,
                        [](Bench &b) {
                            float *reference = b.relief.referenceLayer().data();
                            std::fill_n(reference, b.relief.cells(), 6.0F);
                        })},
    {"Undo towards nothing", evenGround(Tool::UndoBrush, 1.5)},
    {"Erase", evenGround(Tool::Erase, 0.0)},
    {"Brush", evenGround(Tool::HeightBrush, 3.5, [](Bench &b) { b.relief.sampleHeight = 3.5F; })},
    {"Brush without a height",
     evenGround(Tool::HeightBrush, 0.0, [](Bench &b) { b.relief.sampleHeight = std::nanf(""); })},
    // The material of one column to the left is a cell lower.
    {"Smudge", {Tool::Smudge, ramp, {10.75, 9.75, 11.75, 10.75, 9.75}, {151, 200}, stepRight}},
    {"Smudge, raise",
     {Tool::Smudge,
      [](Bench &b) {
          ramp(b);
          b.params.mode = Tool::Raise;
      },
      {11.0, 10.0, 12.0, 11.0, 10.0},
      {151, 200},
      stepRight}},
    // Half of the two columns that the pointer went.
    {"Move",
     {Tool::Move,
      ramp,
      {11.0, 10.0, 12.0, 11.0, 10.0},
      {152, 200},
      [](Bench &b) {
          b.engine.applyAt({2.0, 0.0});
      }}},
    {"Pinch",
     {Tool::Pinch,
      [](Bench &b) {
          ramp(b);
          strengthOne(b);
      },
      {10.0, 8.875, 11.125, 10.0, 9.0 - 0.125 / std::sqrt(2.0)}}},
};

} // namespace

class TestBrushes : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { AlphaBrush::instance().setImage({}); }

    void namedToolsHaveTheirRows()
    {
        for (const auto &[type, id] :
             {std::pair(Tool::Erase, "Erase"), {Tool::Crop, "Crop"}, {Tool::Mask, "Mask"}})
            QCOMPARE(QByteArray(toolRow(type)->id), id);
        QVERIFY(!toolRow(-1) && !toolRow(static_cast<int>(toolTable().size())));
    }

    void computedCases_data();
    void computedCases();
    void masks();
    void planeOfAnEmptyFootprint();
    void smoothAtTheEdge();
    void smudgeAtTheEdge();
    void moveReadsBeyondItsBox();
    void largeMovesTakeEveryCellFromTheReliefBefore();
    void stampCutsDownToItsLevel();
};

void TestBrushes::computedCases_data()
{
    QTest::addColumn<int>("index");
    int index = 0;
    for (const auto &[name, handCase] : handCases)
        QTest::newRow(name) << index++;
}

void TestBrushes::computedCases()
{
    QFETCH(int, index);
    const HandCase handCase = handCases[static_cast<size_t>(index)].second;
    Bench b;
    handCase.prepare(b);
    b.params.type = handCase.type;
    Layer expected = copyOf(b.relief.heights());
    b.engine.beginStroke(b.params, {0.0, 0.0});
    handCase.further(b);
    b.engine.endStroke({}, false);

    const auto set = [&](int dx, int dy, double height) {
        const QPoint cell = handCase.centre + QPoint(dx, dy);
        expected[static_cast<size_t>(b.relief.index(cell.x(), cell.y()))] =
            static_cast<float>(height);
    };
    set(0, 0, handCase.result.centre);
    set(-1, 0, handCase.result.left);
    set(1, 0, handCase.result.right);
    set(0, -1, handCase.result.above);
    set(-1, -1, handCase.result.aboveLeft);
    for (int row = 0; row < b.relief.height(); ++row)
        for (int column = 0; column < b.relief.width(); ++column) {
            const auto cell = static_cast<size_t>(b.relief.index(column, row));
            if (!(std::abs(b.at(column, row) - expected[cell]) < 2e-6F))
                QFAIL(qPrintable(QString("%1 instead of %2 at %3, %4")
                                     .arg(b.at(column, row))
                                     .arg(expected[cell])
                                     .arg(column)
                                     .arg(row)));
        }
}

void TestBrushes::masks()
{
    Bench b;
    b.params.type = Tool::Mask;
    b.params.strength = 0.35; // a step of 0.5 * (0.35 + 0.15)
    b.relief.maskLayer().data()[b.relief.index(151, 200)] = 0.9F;
    b.engine.beginStroke(b.params, {0.0, 0.0});
    b.engine.endStroke({}, false);
    const float *mask = b.relief.maskLayer().constData();
    QCOMPARE(mask[b.relief.index(150, 200)], 0.25F);
    QCOMPARE(mask[b.relief.index(151, 200)], 1.0F);
    QCOMPARE(mask[b.relief.index(152, 200)], 0.0F);
    QVERIFY(b.relief.appearanceChanged);
    b.params.mode = Tool::Lower;
    b.engine.beginStroke(b.params, {0.0, 0.0});
    b.engine.endStroke({}, false);
    QCOMPARE(mask[b.relief.index(150, 200)], 0.0F);
    QCOMPARE(mask[b.relief.index(151, 200)], 0.75F);

    // Half masked, a deposit raises half as much.
    std::fill_n(b.relief.maskLayer().data(), b.relief.cells(), 0.5F);
    b.params.type = Tool::Deposit;
    b.params.strength = 0.5;
    b.engine.beginStroke(b.params, {0.0, 0.0});
    QCOMPARE(b.at(150, 200), 2.03125F);
}

void TestBrushes::planeOfAnEmptyFootprint()
{
    // Without a selected cell the plane lies at the centre cell's height; nothing may be painted.
    Bench b;
    b.params.type = Tool::Flatten;
    b.relief.selectionActive = true;
    b.engine.beginStroke(b.params, {0.0, 0.0});
    b.engine.endStroke({}, false);
    QCOMPARE(b.at(150, 200), 2.0F);

    // The mean leaves out cells that are empty or not selected.
    b.params.strength = 1.0;
    b.at(149, 200) = 0.0F;
    b.at(150, 199) = 30.0F;
    b.at(151, 200) = 4.0F;
    std::fill_n(b.relief.selectionLayer().data(), b.relief.cells(), 1.0F);
    b.relief.selectionLayer().data()[b.relief.index(150, 199)] = 0.0F;
    b.engine.beginStroke(b.params, {0.0, 0.0});
    const double mean = (2.0 + 2.0 + 4.0) / 3.0;
    QVERIFY(std::abs(b.at(151, 200) - (4.0 + mean) / 2.0) < 1e-6);
    QCOMPARE(b.at(150, 199), 30.0F);
    QCOMPARE(b.at(149, 200), 0.0F);
}

void TestBrushes::smoothAtTheEdge()
{
    // In the corner: the cell weighs 4, its two sides 2, the diagonal 1.
    Bench b;
    b.params.type = Tool::Smooth;
    b.params.strength = 1.0;
    b.at(0, 0) = 11.0F;
    b.engine.beginStroke(b.params, {-150.0, -200.0});
    QCOMPARE(b.at(0, 0), 11.0F + 0.5F * (6.0F - 11.0F));
    // Beside the corner: 4 + 3 * 2 + 2 = 12, of which the corner weighs 2.
    QCOMPARE(b.at(1, 0), 2.0F + 0.5F * (3.5F - 2.0F));
    // Level ground stays level, to the last bit, with neighbours missing as well.
    b.fill([](int, int) { return 0.1; });
    const Layer level = copyOf(b.relief.heights());
    b.params.size = 1.0;
    for (const QPointF edge :
         {QPointF(0, -200), QPointF(0, 199), QPointF(-150, 0), QPointF(149, 0)})
        b.engine.beginStroke(b.params, edge);
    QVERIFY(copyOf(b.relief.heights()) == level);
}

void TestBrushes::smudgeAtTheEdge()
{
    // Material picked up half off the relief: the cells that had none keep their own height.
    Bench b;
    ramp(b);
    b.params.type = Tool::Smudge;
    b.fill([](int column, int) { return column + 1.0; });
    b.engine.beginStroke(b.params, {-150.0, 0.0}); // over columns 0 and 1
    b.engine.applyAt({-145.0, 0.0});
    QCOMPARE(b.at(5, 200), 6.0F + 0.25F * (1.0F - 6.0F));
    QCOMPARE(b.at(6, 200), 7.0F + 0.25F * (2.0F - 7.0F));
    QCOMPARE(b.at(4, 200), 5.0F);
}

void TestBrushes::moveReadsBeyondItsBox()
{
    Bench b;
    b.params.type = Tool::Move;
    ramp(b);
    b.engine.beginStroke(b.params, {0.0, 0.0});
    b.engine.applyAt({20.0, 0.0}); // ten columns at half weight, from outside the radius
    QCOMPARE(b.at(170, 200), 20.0F);
    // Cells beyond the edge of the relief have the heights of the edge.
    b.fill([](int column, int) { return column + 1.0; });
    b.engine.applyAt({-149.0, 0.0});
    b.engine.applyAt({-144.0, 0.0});
    QCOMPARE(b.at(6, 200), 4.5F);
    b.engine.applyAt({-100.0, 0.0});
    QCOMPARE(b.at(50, 200), 29.0F);
    b.engine.applyAt({-149.0, 0.0});
    QVERIFY(b.at(1, 200) > 20.0F);
}

/// Large enough that several threads share its rows.
void TestBrushes::largeMovesTakeEveryCellFromTheReliefBefore()
{
    Relief relief(701, 603);
    for (int i = 0; i < relief.cells(); ++i)
        relief.heights().data()[i] = static_cast<float>(1 + i * 7919 % 1009);
    const Layer before = copyOf(relief.heights());
    SculptEngine engine;
    engine.attach(&relief, nullptr);
    ToolParams params;
    params.type = Tool::Move;
    params.size = 1.0;
    params.falloff = Tool::ConstantFalloff;
    engine.beginStroke(params, {20.0, 10.0});
    engine.applyAt({25.0, 7.0});
    for (int row = 3; row < relief.height() - 3; ++row) {
        for (int column = 5; column < relief.width() - 5; ++column) {
            const double away = std::hypot(column - 375.5, row - 308.5);
            if (away < 88.0)
                QCOMPARE(relief.heightAt(column, row),
                         before[static_cast<size_t>(relief.index(column - 5, row + 3))]);
        }
    }
}

void TestBrushes::stampCutsDownToItsLevel()
{
    Bench b;
    stampImage();
    b.params.type = Tool::Deposit; // a depth of 500 * 0.04 * 0.5 = 10
    b.engine.beginStroke(b.params, {0.0, 0.0});
    QCOMPARE(b.at(150, 200), 6.0F);
    QCOMPARE(b.at(151, 201), 6.0F); // the whole square is its footprint
    b.at(150, 200) = 13.0F;
    b.engine.applyAt({0.0, 0.0});
    QCOMPARE(b.at(150, 200), 12.0F);
    QCOMPARE(b.at(149, 200), 8.4F);
    b.engine.endStroke({}, false);
    b.params.type = Tool::Clay;
    b.relief.invert = true;
    b.engine.beginStroke(b.params, {0.0, 0.0});
    QCOMPARE(b.at(150, 200), 12.0F - 4.0F);
}

QTEST_APPLESS_MAIN(TestBrushes)
#include "tst_brushes.moc"
