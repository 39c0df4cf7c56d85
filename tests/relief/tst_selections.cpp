#include "pictures.h"
#include "relief/selection/selections.h"

#include <QSet>
#include <QTest>

#include <cmath>
#include <limits>
#include <numbers>
#include <random>

using namespace marlowen;

using Modifier = SelectionModifier;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

QPoint truncated(QPointF point)
{
    return {static_cast<int>(point.x()), static_cast<int>(point.y())};
}

/// The plainest continuous fill: a stack of cells, each followed to its four neighbours.
QStringList filledByStack(const Relief &relief, QPoint start, double low, double high)
{
    Relief marked(relief.width(), relief.height());
    GridLayer &layer = marked.workLayer();
    QList<QPoint> pending{start};
    layer.data()[marked.index(start.x(), start.y())] = 1.0F;
    while (!pending.isEmpty()) {
        const QPoint cell = pending.takeLast();
        for (const QPoint step : {QPoint(-1, 0), QPoint(1, 0), QPoint(0, -1), QPoint(0, 1)}) {
            const QPoint next = cell + step;
            if (!marked.contains(next.x(), next.y()))
                continue;
            const qsizetype index = marked.index(next.x(), next.y());
            const double height = static_cast<double>(relief.heightAt(index));
            if (layer.constData()[index] != 0.0F || height < low || height > high)
                continue;
            layer.data()[index] = 1.0F;
            pending << next;
        }
    }
    return pictures::ofLayer(marked, layer);
}

/// Outline and inside of a closed curve on a window well larger than the grid: everything that a
/// walk around the outside cannot reach. `inside` tells whether there is an inside at all.
QStringList enclosed(const Relief &relief, const QSet<QPoint> &outline, bool inside)
{
    const QRect window = relief.rect().adjusted(-30, -30, 30, 30);
    QSet<QPoint> outside;
    QList<QPoint> pending{window.topLeft()};
    while (!pending.isEmpty()) {
        const QPoint cell = pending.takeLast();
        if (!window.contains(cell) || outline.contains(cell) || outside.contains(cell))
            continue;
        outside << cell;
        for (const QPoint step : {QPoint(-1, 0), QPoint(1, 0), QPoint(0, -1), QPoint(0, 1)})
            pending << cell + step;
    }
    QStringList rows;
    for (int row = 0; row < relief.height(); ++row) {
        QString line;
        for (int column = 0; column < relief.width(); ++column) {
            const QPoint cell(column, row);
            line += (inside ? !outside.contains(cell) : outline.contains(cell)) ? u'#' : u'.';
        }
        rows << line;
    }
    return rows;
}

} // namespace

class TestSelections : public QObject
{
    Q_OBJECT

private slots:
    void magic_data();
    void magic();
    void magicToleranceIsExact();
    void magicEqualsStackFill();
    void modifiers_data();
    void modifiers();
    void untouchedSelectionStaysUntouched();
    void rectangle_data();
    void rectangle();
    void ellipse_data();
    void ellipse();
    void ellipseEqualsFloodFill();
    void polygon_data();
    void polygon();
    void polygonEqualsFloodFill();
    void farCornersCostNothing();
    void invalidShapesChangeNothing();
};

void TestSelections::magic_data()
{
    QTest::addColumn<QStringList>("heights");
    QTest::addColumn<QPointF>("point");
    QTest::addColumn<double>("tolerance");
    QTest::addColumn<bool>("continuous");
    QTest::addColumn<QStringList>("selected");

    // Every relief here has the range 0..10, so that a tolerance of 0.1 is a band of 1.
    const QStringList steps{"1234", "1299", "9911"};
    QTest::newRow("the band holds both its ends")
        << steps << QPointF(-1.0, -1.0) << 0.1 << true << QStringList{"###.", "##..", "...."};
    QTest::newRow("scattered cells count when not continuous")
        << steps << QPointF(-1.0, -1.0) << 0.1 << false << QStringList{"###.", "##..", "..##"};
    QTest::newRow("no way through a diagonal gap")
        << QStringList{"1191", "9911", "1911"} << QPointF(-1.0, -1.0) << 0.01 << true
        << QStringList{"##..", "....", "...."};
    QTest::newRow("around corners and back up")
        << QStringList{"15151", "15151", "11111"} << QPointF(-2.5, -1.5) << 0.01 << true
        << QStringList{"#.#.#", "#.#.#", "#####"};
    QTest::newRow("flat and empty") << QStringList{"000", "000"} << QPointF(0.0, 0.0) << 0.01
                                    << true << QStringList{"###", "###"};
    QTest::newRow("off the relief nothing is joined")
        << steps << QPointF(50.0, 0.0) << 0.1 << true << QStringList{"....", "....", "...."};
    QTest::newRow("off the relief the height is 0")
        << steps << QPointF(0.0, -99.0) << 0.1 << false << QStringList{"#...", "#...", "..##"};
    QTest::newRow("no point at all")
        << steps << QPointF(notANumber, 0.0) << 0.1 << true << QStringList{"....", "....", "...."};
    QTest::newRow("no tolerance takes equal heights")
        << steps << QPointF(-1.0, -1.0) << notANumber << false
        << QStringList{".#..", ".#..", "...."};
}

void TestSelections::magic()
{
    QFETCH(QStringList, heights);
    QFETCH(QPointF, point);
    QFETCH(double, tolerance);
    QFETCH(bool, continuous);
    const auto relief = pictures::relief(heights);
    relief->rangeMaximum = 10.0;
    magicSelect(*relief, {point, tolerance, continuous}, Modifier::Normal);
    QTEST(pictures::ofSelection(*relief), "selected");
    QVERIFY(relief->selectionActive);
}

void TestSelections::magicToleranceIsExact()
{
    // 0.3 and 0.7 lie between floats: the ends are compared as the doubles they are.
    Relief relief(4, 1);
    relief.rangeMaximum = 1.0;
    const float inside = std::nextafter(0.7F, 0.0F);
    const std::array heights{0.5F, inside, 0.7F, std::nextafter(0.7F, 1.0F)};
    std::ranges::copy(heights, relief.heights().data());
    magicSelect(relief, {{-2.0, 0.0}, 0.2, false}, Modifier::Normal);
    for (int i = 0; i < 4; ++i) {
        const bool within = static_cast<double>(heights[static_cast<size_t>(i)]) <= 0.5 + 0.2;
        QCOMPARE(relief.selectionLayer().constData()[i] != 0.0F, within);
    }
}

void TestSelections::magicEqualsStackFill()
{
    std::mt19937 random(7);
    for (const QSize size : {QSize(1, 1), QSize(1, 90), QSize(90, 1), QSize(63, 20), QSize(64, 64),
                             QSize(65, 31), QSize(129, 77), QSize(200, 150)}) {
        for (const int share : {50, 59, 62, 80}) {
            Relief relief(size.width(), size.height());
            relief.rangeMaximum = 100.0;
            for (qsizetype i = 0; i < relief.cells(); ++i)
                relief.heights().data()[i] = static_cast<float>(random() % 100);
            const QPoint cell(static_cast<int>(random() % static_cast<uint>(size.width())),
                              static_cast<int>(random() % static_cast<uint>(size.height())));
            relief.heights().data()[relief.index(cell.x(), cell.y())] = 0.0F;
            const QPointF point(cell.x() + 0.5 - size.width() * 0.5,
                                cell.y() + 0.5 - size.height() * 0.5);
            magicSelect(relief, {point, share / 100.0, true}, Modifier::Normal);
            QCOMPARE(pictures::ofSelection(relief), filledByStack(relief, cell, -share, share));
        }
    }
}

void TestSelections::modifiers_data()
{
    QTest::addColumn<Modifier>("modifier");
    QTest::addColumn<QString>("selected");
    QTest::newRow("normal replaces") << Modifier::Normal << "..##.";
    QTest::newRow("additive joins") << Modifier::Additive << ".###.";
    QTest::newRow("subtractive cuts out") << Modifier::Subtractive << ".#...";
}

void TestSelections::modifiers()
{
    QFETCH(Modifier, modifier);
    QFETCH(QString, selected);
    Relief relief(5, 2);
    selectRectangle(relief, {1, 0}, {2, 0}, Modifier::Normal);
    selectRectangle(relief, {2, 0}, {3, 0}, modifier);
    QCOMPARE(pictures::ofSelection(relief), QStringList({selected, "....."}));
    QVERIFY(relief.selectionActive);
    selectNone(relief);
    QVERIFY(!relief.selectionActive);
    QCOMPARE(pictures::ofSelection(relief), QStringList({".....", "....."}));
}

void TestSelections::untouchedSelectionStaysUntouched()
{
    Relief relief(9, 9);
    relief.rangeMaximum = 1.0;
    magicSelect(relief, {{0.0, 0.0}, 0.5, false}, Modifier::Subtractive);
    QVERIFY(relief.selectionActive);
    QVERIFY(!relief.selectionLayer().written());
    selectRectangle(relief, {20, 20}, {30, 30}, Modifier::Normal);
    QVERIFY(!relief.selectionLayer().written());
    QVERIFY(relief.selectionActive);
}

void TestSelections::rectangle_data()
{
    QTest::addColumn<QPoint>("corner");
    QTest::addColumn<QPoint>("opposite");
    QTest::addColumn<QStringList>("selected");
    const QStringList middle{"....", ".##.", ".##.", "...."};
    QTest::newRow("both ends") << QPoint(1, 1) << QPoint(2, 2) << middle;
    QTest::newRow("corners the other way") << QPoint(2, 1) << QPoint(1, 2) << middle;
    QTest::newRow("partly off") << QPoint(-5, 2) << QPoint(1, 9)
                                << QStringList{"....", "....", "##..", "##.."};
    QTest::newRow("wholly off") << QPoint(4, 0) << QPoint(9, 3)
                                << QStringList{"....", "....", "....", "...."};
    QTest::newRow("a cell") << QPoint(3, 0) << QPoint(3, 0)
                            << QStringList{"...#", "....", "....", "...."};
}

void TestSelections::rectangle()
{
    QFETCH(QPoint, corner);
    QFETCH(QPoint, opposite);
    Relief relief(4, 4);
    selectRectangle(relief, corner, opposite, Modifier::Normal);
    QTEST(pictures::ofSelection(relief), "selected");
}

void TestSelections::ellipse_data()
{
    QTest::addColumn<QPointF>("corner");
    QTest::addColumn<QPointF>("opposite");
    QTest::addColumn<QStringList>("selected");
    // Centre (4, 3), semi-axes 3 and 2: row 1 holds x from 4 - 2.6 to 4 + 2.6, truncated; column 7
    // is reached by the first sample alone, row 5 by none.
    const QStringList oval{".........", ".######..", ".######..", ".#######.",
                           ".######..", ".........", "........."};
    QTest::newRow("oval") << QPointF(1, 1) << QPointF(7, 5) << oval;
    QTest::newRow("corners the other way") << QPointF(7, 5) << QPointF(1, 1) << oval;
    QTest::newRow("a line") << QPointF(2, 3) << QPointF(6, 3)
                            << QStringList{".........", ".........", ".........", "..#####..",
                                           ".........", ".........", "........."};
    QTest::newRow("a point") << QPointF(2, 3) << QPointF(2, 3)
                             << QStringList{".........", ".........", ".........", "..#......",
                                            ".........", ".........", "........."};
    QTest::newRow("around the relief")
        << QPointF(-20, -20) << QPointF(30, 27) << QStringList(7, QStringLiteral("#########"));
    QTest::newRow("wholly off") << QPointF(-20, -20) << QPointF(-3, -3)
                                << QStringList(7, QStringLiteral("........."));
}

void TestSelections::ellipse()
{
    QFETCH(QPointF, corner);
    QFETCH(QPointF, opposite);
    Relief relief(9, 7);
    selectEllipse(relief, corner, opposite, Modifier::Normal);
    QTEST(pictures::ofSelection(relief), "selected");
}

void TestSelections::ellipseEqualsFloodFill()
{
    std::mt19937 random(11);
    std::uniform_real_distribution<double> coordinate(-25.0, 60.0);
    const Relief grid(40, 33);
    for (int trial = 0; trial < 60; ++trial) {
        QPointF from(coordinate(random), coordinate(random));
        QPointF to(coordinate(random), coordinate(random));
        if (trial % 3 == 0) // whole cells, as people draw them, and thin ones
            from = truncated(from), to = QPointF(truncated(to).x(), from.y() + trial % 5);
        const QPointF centre = (from + to) * 0.5;
        const double a = std::abs(to.x() - from.x()) * 0.5;
        const double b = std::abs(to.y() - from.y()) * 0.5;
        const double step = 0.5 / std::sqrt(a * a + b * b);
        QSet<QPoint> outline{truncated(centre + QPointF(a, 0.0))};
        for (int i = 1; i * step < 2.0 * std::numbers::pi; ++i)
            outline << truncated(centre + QPointF(a * std::cos(i * step), b * std::sin(i * step)));
        Relief relief(grid.width(), grid.height());
        selectEllipse(relief, from, to, Modifier::Normal);
        QCOMPARE(pictures::ofSelection(relief),
                 enclosed(grid, outline, !outline.contains(truncated(centre))));
    }
}

void TestSelections::polygon_data()
{
    QTest::addColumn<QPolygon>("corners");
    QTest::addColumn<QStringList>("selected");
    QTest::newRow("square") << QPolygon({{1, 1}, {4, 1}, {4, 3}, {1, 3}})
                            << QStringList{".......", ".####..", ".####..", ".####..", "......."};
    QTest::newRow("partly off") << QPolygon({{4, 2}, {20, 2}, {20, 20}, {4, 20}})
                                << QStringList{".......", ".......", "....###", "....###",
                                               "....###"};
    QTest::newRow("around the relief")
        << QPolygon({{-9, -9}, {30, -9}, {30, 30}, {-9, 30}})
        << QStringList{"#######", "#######", "#######", "#######", "#######"};
    QTest::newRow("wholly off") << QPolygon({{10, 0}, {20, 0}, {15, 9}})
                                << QStringList{".......", ".......", ".......", ".......",
                                               "......."};
    QTest::newRow("a point") << QPolygon({{3, 2}})
                             << QStringList{".......", ".......", "...#...", ".......", "......."};
    QTest::newRow("a line there and back")
        << QPolygon({{1, 2}, {5, 2}})
        << QStringList{".......", ".......", ".#####.", ".......", "......."};
    QTest::newRow("all corners on one line")
        << QPolygon({{1, 1}, {5, 1}, {3, 1}, {6, 1}})
        << QStringList{".......", ".######", ".......", ".......", "......."};
    QTest::newRow("bow tie") << QPolygon({{0, 0}, {0, 4}, {6, 0}, {6, 4}})
                             << QStringList{"##..###", "#######", "#######", "##..###", "#.....#"};
    QTest::newRow("what is enclosed twice is outside")
        << QPolygon(
               {{0, 0}, {6, 0}, {6, 4}, {0, 4}, {0, 0}, {2, 1}, {4, 1}, {4, 3}, {2, 3}, {2, 1}})
        << QStringList{"#######", "#######", "###.###", "#######", "#######"};
}

void TestSelections::polygon()
{
    QFETCH(QPolygon, corners);
    Relief relief(7, 5);
    selectPolygon(relief, corners, Modifier::Normal);
    QTEST(pictures::ofSelection(relief), "selected");
}

void TestSelections::polygonEqualsFloodFill()
{
    std::mt19937 random(5);
    std::uniform_real_distribution<double> share(0.0, 0.8);
    const Relief grid(90, 61);
    for (int trial = 0; trial < 25; ++trial) {
        // Corners in the order of their angles around a middle: no edge crosses another.
        QPolygon corners;
        for (int i = 0; i < 7; ++i) {
            const double angle = (i + share(random)) * 2.0 * std::numbers::pi / 7.0;
            const double reach = 12.0 + 50.0 * share(random);
            corners << truncated({45.0 + reach * std::cos(angle), 30.0 + reach * std::sin(angle)});
        }
        QSet<QPoint> outline;
        for (int i = 0; i < 7; ++i) {
            const QPointF from = corners[i];
            const QPointF way = corners[(i + 1) % 7] - corners[i];
            const int steps = static_cast<int>(std::ceil(2.0 * std::hypot(way.x(), way.y())));
            for (int k = 0; k <= steps; ++k)
                outline << truncated(from + way * k / std::max(1, steps));
        }
        Relief relief(grid.width(), grid.height());
        selectPolygon(relief, corners, Modifier::Normal);
        QCOMPARE(pictures::ofSelection(relief), enclosed(grid, outline, true));
    }
}

void TestSelections::farCornersCostNothing()
{
    constexpr int far = std::numeric_limits<int>::max();
    Relief relief(70, 5);
    const QStringList all(5, QString(70, u'#'));
    selectPolygon(relief, {{-far, -far}, {far, -far}, {far, far}, {-far, far}}, Modifier::Normal);
    QCOMPARE(pictures::ofSelection(relief), all);
    selectNone(relief);
    selectEllipse(relief, {-1e300, -1e300}, {1e300, 1e300}, Modifier::Normal);
    QCOMPARE(pictures::ofSelection(relief), all);
    // The left end of the ellipse is the only part on the relief.
    selectEllipse(relief, {60.0, -1e8}, {1e9, 1e8}, Modifier::Normal);
    QCOMPARE(pictures::ofSelection(relief), QStringList(5, QString(60, u'.') + QString(10, u'#')));
    selectRectangle(relief, {-far, -far}, {far, far}, Modifier::Normal);
    QCOMPARE(pictures::ofSelection(relief), all);
}

void TestSelections::invalidShapesChangeNothing()
{
    Relief relief(6, 6);
    selectEllipse(relief, {notANumber, 1.0}, {3.0, 3.0}, Modifier::Normal);
    selectEllipse(relief, {0.0, 1.0}, {3.0, infinity}, Modifier::Normal);
    selectPolygon(relief, {}, Modifier::Normal);
    QVERIFY(!relief.selectionActive);
    QVERIFY(!relief.selectionLayer().written());
}

QTEST_APPLESS_MAIN(TestSelections)
#include "tst_selections.moc"
