#include "relief/strokes/strokepath.h"
#include "relief/tools/tool.h"

#include <QTest>

#include <cmath>
#include <limits>

using namespace marlowen;

namespace {

constexpr double broken = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

using Points = QList<QPointF>;

Points fromVector(const std::vector<StrokePoint> &points)
{
    return Points(points.begin(), points.end());
}

bool near(QPointF a, QPointF b, double tolerance = 1e-9)
{
    return std::abs(a.x() - b.x()) <= tolerance && std::abs(a.y() - b.y()) <= tolerance;
}

} // namespace

class TestStrokePath : public QObject
{
    Q_OBJECT

private slots:
    void resampling_data()
    {
        QTest::addColumn<QPointF>("to");
        QTest::addColumn<double>("spacing");
        QTest::addColumn<bool>("finalPoint");
        QTest::addColumn<Points>("expected");
        const QPointF from(1.0, 2.0);
        QTest::newRow("a cell is too short") << QPointF(2.0, 2.0) << 1.0 << true << Points{};
        QTest::newRow("shorter than the spacing") << QPointF(4.0, 2.0) << 3.0 << false << Points{};
        QTest::newRow("shorter, but final") << QPointF(3.5, 2.0) << 3.0 << true << Points{from};
        QTest::newRow("just over a spacing")
            << QPointF(1.0, 5.5) << 3.0 << false << Points{from, {1.0, 5.0}};
        QTest::newRow("aslant") << QPointF(7.5, -6.5) << 5.0 << false
                                << Points{from,
                                          {1.0 + 3.0371, 2.0 - 3.9716},
                                          {1.0 + 6.0742, 2.0 - 7.9432}};
        QTest::newRow("backward") << QPointF(-1.2, 2.0) << 1.0 << false
                                  << Points{from, {0.0, 2.0}, {-1.0, 2.0}};
    }
    void resampling()
    {
        QFETCH(QPointF, to);
        QFETCH(double, spacing);
        QFETCH(bool, finalPoint);
        QFETCH(Points, expected);
        std::vector<StrokePoint> points;
        const QPointF last = resample({{1.0, 2.0}, to, spacing, finalPoint, {150, 200}}, points);
        QCOMPARE(points.size(), size_t(expected.size()));
        for (size_t i = 0; i < points.size(); ++i)
            QVERIFY(near(points[i], expected[static_cast<int>(i)], 1e-3));
        QVERIFY(near(last, expected.isEmpty() ? QPointF(1.0, 2.0) : expected.last(), 1e-3));
    }

    void spacing_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<double>("size");
        QTest::addColumn<int>("points");
        QTest::newRow("small") << int(Tool::Deposit) << 0.5 << 37; // radius 25: every cell
        QTest::newRow("large") << int(Tool::Deposit) << 2.0 << 10; // radius 100: every 4 cells
        QTest::newRow("large smudge") << int(Tool::Smudge) << 2.0 << 37;
    }
    void spacing()
    {
        QFETCH(int, type);
        QFETCH(double, size);
        QFETCH(int, points);
        ToolParams params;
        params.type = type;
        params.size = size;
        Tool tool(params, {0.0, 0.0}, 500.0);
        tool.addPoint({36.5, 0.0}, false, {500.0, 500.0});
        QCOMPARE(int(tool.path.pending.size()), points);
        QVERIFY(near(tool.lastPoint(), {36.0, 0.0}));
        tool.addPoint({broken, 0.0}, true, {500.0, 500.0});
        tool.addPoint({0.0, -infinite}, true, {500.0, 500.0});
        tool.addPoint({1e300, 0.0}, true, {500.0, 500.0});
        QCOMPARE(int(tool.path.pending.size()), points);
    }

    void longMovesStayShort()
    {
        std::vector<StrokePoint> points;
        const QPointF last = resample({{-5e8, 10.0}, {5e8, 30.0}, 1.0, false, {100, 50}}, points);
        QVERIFY(points.size() < 300);
        QVERIFY(near(last, points.back()) && last.x() > 4.99e8);
        QVERIFY(points.front().x() < -100.0); // the last point before the relief is kept
        int within = 0;
        for (const QPointF &point : points)
            within += std::abs(point.x()) <= 100.0;
        QVERIFY(within >= 200);
        points.clear();
        resample({{-5e8, 60.0}, {5e8, 60.0}, 1.0, false, {100, 50}}, points); // passes by
        QVERIFY(points.size() <= 2);
    }

    void curves_data()
    {
        QTest::addColumn<Points>("points");
        QTest::addColumn<Points>("expected");
        QTest::newRow("nothing") << Points{} << Points{};
        QTest::newRow("one") << Points{{3, 4}} << Points{{3, 4}};
        QTest::newRow("two: a straight line") << Points{{0, 0}, {6, 2}} << Points{{0, 0}, {3, 1}};
        QTest::newRow("three cannot bend it")
            << Points{{0, 0}, {3, 9}, {6, 0}} << Points{{0, 0}, {2, 0}, {4, 0}};
        QTest::newRow("all in one place")
            << Points{{5, 5}, {5, 5}, {5, 5}, {5, 5}} << Points{{5, 5}, {5, 5}, {5, 5}, {5, 5}};
        QTest::newRow("even steps stay even")
            << Points{{0, 0}, {1, 2}, {2, 4}, {3, 6}, {4, 8}}
            << Points{{0, 0}, {0.8, 1.6}, {1.6, 3.2}, {2.4, 4.8}, {3.2, 6.4}};
    }
    void curves()
    {
        QFETCH(Points, points);
        QFETCH(Points, expected);
        const Points path =
            fromVector(smoothPath(std::vector<StrokePoint>(points.begin(), points.end())));
        QCOMPARE(path.size(), expected.size());
        for (int i = 0; i < path.size(); ++i)
            QVERIFY2(near(path[i], expected[i]),
                     qPrintable(QString("%1: %2, %3").arg(i).arg(path[i].x()).arg(path[i].y())));
    }

    void curvesFollowAnArc()
    {
        std::vector<StrokePoint> arc;
        for (int i = 0; i <= 40; ++i)
            arc.push_back({20.0 * std::cos(i * 0.03), 20.0 * std::sin(i * 0.03)});
        const std::vector<StrokePoint> path = smoothPath(arc);
        QCOMPARE(path.size(), arc.size());
        for (const QPointF &point : path)
            QVERIFY(std::abs(std::hypot(point.x(), point.y()) - 20.0) < 0.05);
        QVERIFY(near(path.front(), arc.front()));
    }
};

QTEST_APPLESS_MAIN(TestStrokePath)
#include "tst_strokepath.moc"
