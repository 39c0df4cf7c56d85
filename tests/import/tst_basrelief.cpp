#include "import/bas/basutil.h"
#include "import/importsettings.h"
#include "testgrid.h"

#include <QTest>

#include <algorithm>
#include <cmath>
#include <numeric>

using namespace marlowen;

namespace {

/// A dome with ripples of 8 cells on an empty ground.
FloatGrid rippledDome(int side, double ripple)
{
    return gridOf(side, side, [=](int x, int y) {
        const double rest =
            1.0 - 4 * (std::pow(x - side / 2, 2) + std::pow(y - side / 2, 2)) / (0.8 * side * side);
        return rest > 0.0 ? side * (0.02 + 0.4 * std::sqrt(rest)) + ripple * std::sin(x * 0.785)
                          : 0.0;
    });
}

std::optional<FloatGrid> made(const FloatGrid &heights, const ImportSettings &settings,
                              Progress &progress)
{
    auto result = makeBasRelief(
        {heights.view(), settings.gridSize, settings.contrastFactor, settings.smoothness},
        progress);
    if (!result)
        return std::nullopt;
    return FloatGrid(heights.width, heights.height, std::move(*result));
}

FloatGrid made(const FloatGrid &heights, const ImportSettings &settings = {})
{
    Progress silent;
    return *made(heights, settings, silent);
}

float highest(const FloatGrid &grid)
{
    return *std::max_element(grid.values.begin(), grid.values.end());
}

/// How much of the ripples of rippledDome is in a grid: the mean product with them over an inner
/// part of whole ripples.
double rippleOf(const FloatGrid &grid)
{
    double sum = 0.0;
    int count = 0;
    for (int y = grid.height / 2 - 16; y < grid.height / 2 + 16; ++y) {
        for (int x = grid.width / 2 - 32; x < grid.width / 2 + 32; ++x, ++count)
            sum += static_cast<double>(grid.row(y)[x]) * std::sin(x * 0.785);
    }
    return 2.0 * sum / count;
}

/// Cancels once a share of the work is done.
class CancelAt : public Progress
{
public:
    explicit CancelAt(double share)
        : m_share(share)
    {
    }
    void advance(double fraction) override { m_done = fraction; }
    bool cancelled() const override { return m_done >= m_share; }

private:
    double m_share;
    double m_done = 0.0;
};

} // namespace

class TestBasRelief : public QObject
{
    Q_OBJECT

private slots:
    void emptyStaysEmptyAndFilledStaysFilled_data()
    {
        QTest::addColumn<FloatGrid>("heights");
        const auto noise = [](int x, int y) { return (x * 7919 + y * 104729) % 1009 % 5; };
        QTest::newRow("one cell") << FloatGrid(1, 1, {3.0F});
        QTest::newRow("one row") << gridOf(40, 1, [](int x, int) { return x % 7; });
        QTest::newRow("one column") << gridOf(1, 40, [](int, int y) { return y % 7; });
        QTest::newRow("all empty") << FloatGrid(9, 5);
        QTest::newRow("all equal") << gridOf(9, 5, [](int, int) { return 2.5; });
        QTest::newRow("one filled cell")
            << gridOf(17, 9, [](int x, int y) { return x == y && x == 4; });
        QTest::newRow("islands") << gridOf(
            301, 200, [](int x, int y) { return x % 3 && y % 3 ? 1 + (x * y) % 11 : 0; });
        QTest::newRow("checkerboard")
            << gridOf(64, 64, [](int x, int y) { return (x + y) % 2 * x; });
        QTest::newRow("noise") << gridOf(130, 70, noise);
        QTest::newRow("huge") << gridOf(64, 50, [&](int x, int y) { return 1e30 * noise(x, y); });
        QTest::newRow("tiny") << gridOf(64, 50, [&](int x, int y) { return 1e-38 * noise(x, y); });
        QTest::newRow("tall on low")
            << gridOf(50, 50, [](int x, int y) { return x == 25 && y == 25 ? 1e30 : 1e-3; });
    }
    void emptyStaysEmptyAndFilledStaysFilled()
    {
        QFETCH(FloatGrid, heights);
        for (const ImportSettings &settings :
             {ImportSettings{},
              ImportSettings{.gridSize = 32, .contrastFactor = 65536, .smoothness = 10000000}}) {
            const FloatGrid result = made(heights, settings);
            QCOMPARE(result.values.size(), heights.values.size());
            for (size_t i = 0; i < heights.values.size(); ++i) {
                const float value = result.values[i];
                QVERIFY2(heights.values[i] > 0.0F ? value > 0.0F && std::isfinite(value)
                                                  : value == 0.0F,
                         qPrintable(QString::number(i)));
            }
            QVERIFY(highest(result) <= 1.01F * highest(heights));
        }
    }

    void depthFallsToAThirdAndDetailStays()
    {
        const FloatGrid heights = rippledDome(256, 1.5);
        const FloatGrid result = made(heights);
        QVERIFY(highest(result) < highest(heights) / 3);
        const double kept = rippleOf(result) / rippleOf(heights);
        QVERIFY2(kept > 0.8 && kept < 1.5, qPrintable(QString::number(kept)));
    }

    void parametersActMonotonically_data()
    {
        QTest::addColumn<QList<int>>("steps");
        QTest::addColumn<int>("which");
        QTest::newRow("contrast lowers the depth") << QList<int>{2, 8, 64, 2048, 65536} << 0;
        QTest::newRow("contrast strengthens detail") << QList<int>{2, 8, 64, 2048, 65536} << 1;
        QTest::newRow("smoothness calms detail")
            << QList<int>{20000, 50000, 200000, 1000000, 10000000} << 2;
    }
    void parametersActMonotonically()
    {
        QFETCH(QList<int>, steps);
        QFETCH(int, which);
        const FloatGrid heights = rippledDome(256, 1.5);
        double last = 1e9;
        for (const int step : steps) {
            ImportSettings settings;
            (which == 2 ? settings.smoothness : settings.contrastFactor) = step;
            const FloatGrid result = made(heights, settings);
            const double figure = which == 0   ? static_cast<double>(highest(result))
                                  : which == 1 ? -rippleOf(result)
                                               : rippleOf(result);
            QVERIFY2(figure < last, qPrintable(QString::number(step)));
            last = figure;
        }
    }

    void largerGridsLetBroadFormsSink()
    {
        // A tilted plane with a hump: the more local, the more of the depth is the hump's.
        const FloatGrid heights = gridOf(256, 256, [](int x, int y) {
            const double r2 = std::pow((x - 128) / 24.0, 2) + std::pow((y - 128) / 24.0, 2);
            return 10 + 0.4 * x + 20 * std::exp(-r2);
        });
        double last = 0.0;
        for (const int gridSize : {2, 4, 8, 16, 32}) {
            const FloatGrid result = made(heights, {.gridSize = gridSize});
            const double hump = static_cast<double>(
                result.row(128)[128] - (result.row(128)[48] + result.row(128)[208]) / 2);
            const double share = hump / static_cast<double>(highest(result));
            QVERIFY2(share > last, qPrintable(QString::number(gridSize)));
            last = share;
        }
    }

    void objectsKeepTheirOrder()
    {
        const FloatGrid heights = gridOf(300, 80, [](int x, int y) {
            const int island = x / 100;
            const bool filled = x % 100 > 10 && x % 100 < 90 && y > 10 && y < 70;
            return filled ? 20 + 60 * island + 0.1 * y : 0;
        });
        const FloatGrid result = made(heights);
        QVERIFY(result.row(40)[50] < result.row(40)[150]);
        QVERIFY(result.row(40)[150] < result.row(40)[250]);
        QVERIFY(result.row(65)[150] > result.row(15)[150]);
    }

    void theSameInputGivesTheSameHeights()
    {
        const FloatGrid heights = rippledDome(600, 2.0);
        const FloatGrid once = made(heights, {.smoothness = 100000});
        QVERIFY(once.values == made(heights, {.smoothness = 100000}).values);
    }

    void cancelGivesNothing()
    {
        const FloatGrid heights = rippledDome(700, 2.0);
        for (const double share : {0.0, 0.1, 0.25, 0.5, 0.75}) {
            CancelAt progress(share);
            QVERIFY2(!made(heights, {.smoothness = 1000000}, progress),
                     qPrintable(QString::number(share)));
        }
    }

    void quickMeansAMillionFilledCells()
    {
        QVERIFY(basReliefIsQuick({nullptr, 1000, 1000}));
        FloatGrid large(1500, 1500);
        QVERIFY(basReliefIsQuick({large.values.data(), 1500, 1500}));
        std::fill(large.values.begin(), large.values.end(), 1.0F);
        QVERIFY(!basReliefIsQuick({large.values.data(), 1500, 1500}));
    }
};

QTEST_GUILESS_MAIN(TestBasRelief)
#include "tst_basrelief.moc"
