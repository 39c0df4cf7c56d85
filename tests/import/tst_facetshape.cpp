#include "import/mesh/facetshape.h"

#include "base/datafolder.h"
#include "base/sessionlog.h"

#include <QDir>
#include <QtTest>

using namespace marlowen;

namespace {

enum Unit : size_t { Inches, Centimetres, Millimetres };

/// Two facets that fill a box, with one position that no facet uses.
FacetShape boxShape(const MeshPoint &low, const MeshPoint &high, size_t unit = Inches)
{
    TriangleMesh mesh;
    mesh.positions = {low, {high[0], low[1], low[2]}, high, {1e9, 1e9, 1e9}};
    mesh.triangles = {{0, 1, 2}};
    return {std::move(mesh), unit};
}

} // namespace

class TestFacetShape : public QObject
{
    Q_OBJECT

private slots:
    void turns_data();
    void turns();
    void scaleStaysWithItsAxis();
    void areaInEveryUnit();
    void shrinksFromTheLimitOn();
    void unitTakesTheShrinkBack();
    void sizes();
};

void TestFacetShape::turns_data()
{
    QTest::addColumn<QList<int>>("turns");
    QTest::addColumn<QList<double>>("point"); // where (1, 2, 3) goes
    const auto row = [](const char *name, const QList<ModelTurn> &turns,
                        const QList<double> &point) {
        QList<int> numbers;
        for (const ModelTurn turn : turns)
            numbers << static_cast<int>(turn);
        QTest::newRow(name) << numbers << point;
    };
    using enum ModelTurn;
    row("none", {}, {1, 2, 3});
    row("right brings the front to the right", {Right}, {3, 2, -1});
    row("left brings the front to the left", {Left}, {-3, 2, 1});
    row("down brings the front down", {Down}, {1, -3, 2});
    row("up brings the front up", {Up}, {1, 3, -2});
    row("counter-clockwise", {CounterClockwise}, {-2, 1, 3});
    row("clockwise", {Clockwise}, {2, -1, 3});
    row("flip", {Flip}, {-1, 2, -3});
    row("about the axes as seen", {Right, CounterClockwise}, {-2, 3, -1});
    row("there and back", {Up, Left, Clockwise, CounterClockwise, Right, Down}, {1, 2, 3});
}

void TestFacetShape::turns()
{
    QFETCH(QList<int>, turns);
    QFETCH(QList<double>, point);
    FacetShape shape = boxShape({0, 0, 0}, {1, 2, 3});
    for (const int turn : turns)
        shape.turn(static_cast<ModelTurn>(turn));
    const MeshPoint placed = shape.placement().at(MeshPoint{1, 2, 3});
    const ModelBox box = shape.box();
    for (int i = 0; i < 3; ++i) {
        const auto axis = static_cast<size_t>(i);
        QCOMPARE(placed[axis], point[i]);
        QCOMPARE(box.low[axis], qMin(0.0, point[i]));
        QCOMPARE(box.high[axis], qMax(0.0, point[i]));
    }
    shape.resetOrientation();
    QVERIFY(shape.placement().at(MeshPoint{1, 2, 3}) == (MeshPoint{1, 2, 3}));
}

void TestFacetShape::scaleStaysWithItsAxis()
{
    FacetShape shape = boxShape({-1, 1, 2}, {1, 2, 4});
    shape.setScale({10.0, 1.0, 0.5});
    shape.turn(ModelTurn::Right);
    QVERIFY(shape.scale() == (std::array<double, 3>{0.5, 1.0, 10.0}));
    QVERIFY(shape.box() == (ModelBox{{1, 1, -10}, {2, 2, 10}}));
    QVERIFY(shape.importedBox() == (ModelBox{{2, 1, -1}, {4, 2, 1}}));
}

void TestFacetShape::areaInEveryUnit()
{
    FacetShape shape = boxShape({0, 0, 0}, {100, 100, 1}, Centimetres);
    QVERIFY(qAbs(shape.areaSquareInches() - 1550.0031) < 1e-4);
    QVERIFY(shape.tooBig());
    shape.setUnit(Millimetres);
    QVERIFY(!shape.tooBig());
    shape.setUnit(Inches);
    QCOMPARE(shape.areaSquareInches(), 10000.0);
    shape.turn(ModelTurn::Up);
    QCOMPARE(shape.areaSquareInches(), 100.0);
}

void TestFacetShape::shrinksFromTheLimitOn()
{
    FacetShape below = boxShape({0, 0, 0}, {999, 1, 5000});
    QVERIFY(!below.shrinkToLimit());
    FacetShape exact = boxShape({0, 0, 0}, {1000, 1, 5});
    QVERIFY(exact.tooBig());
    QVERIFY(exact.shrinkToLimit());
    QCOMPARE(exact.scale()[2], std::sqrt(0.999));
    QVERIFY(!exact.tooBig());
    FacetShape endless = boxShape({0, 0, 0}, {1e300, 1e300, 5});
    QVERIFY(!endless.shrinkToLimit());
    QVERIFY(endless.tooBig());

    logFlush();
    QFile log(dataFolder() + QDir::separator() +
              QStringLiteral("marlowen3_%1.log").arg(QCoreApplication::applicationPid(), 0, 16));
    QVERIFY(log.open(QIODevice::ReadOnly));
    QVERIFY(log.readAll().contains(
        "Info: Model was over the 1000 sq in limit (1000); scaled by 0.9995\n"));
}

void TestFacetShape::unitTakesTheShrinkBack()
{
    FacetShape shape = boxShape({0, 0, 0}, {100, 100, 1});
    QVERIFY(shape.shrinkToLimit());
    shape.turn(ModelTurn::Clockwise);
    shape.setUnit(Inches);
    QVERIFY(shape.scale()[0] < 1.0);
    shape.setUnit(Millimetres);
    QCOMPARE(shape.scale()[0], 1.0);
    shape.setUnit(Inches);
    QVERIFY(shape.tooBig());

    shape.shrinkToLimit();
    shape.setScale({0.1, 0.1, 0.2});
    shape.setUnit(Millimetres);
    QCOMPARE(shape.scale()[2], 0.2);
}

void TestFacetShape::sizes()
{
    FacetShape shape = boxShape({0, 0, 0}, {2.0, 1.0 + 0.6 / 128, 1});
    QCOMPARE(shape.gridSize().columns, 257.0);
    QCOMPARE(shape.gridSize().rows, 130.0);
    QCOMPARE(shape.reliefMegabytes(), 257.0 * 130.0 * 12.0 / 1e6);
    QVERIFY(shape.hasArea());
    shape.setScale({1e-9, 1.0, 1.0});
    QCOMPARE(shape.gridSize().columns, 2.0);
    QVERIFY(!boxShape({3, 0, 0}, {3, 1, 1}).hasArea());
}

QTEST_GUILESS_MAIN(TestFacetShape)
#include "tst_facetshape.moc"
