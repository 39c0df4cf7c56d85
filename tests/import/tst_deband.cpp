#include "import/deband/deband.h"
#include "import/importsource.h"
#include "testgrid.h"

#include <QTest>

#include <algorithm>
#include <cmath>

using namespace marlowen;

namespace {

FloatGrid smoothed(const FloatGrid &values, double strength = 1.0)
{
    Progress silent;
    return {values.width, values.height, *debanded(values.view(), strength, silent)};
}

double ramp(int x, int y)
{
    return 20.0 + 0.07 * x + 0.03 * y;
}

/// Of a grid whose right half lies higher by `step`.
double rmsToRamp(const FloatGrid &grid, int step = 0)
{
    double sum = 0.0;
    for (int y = 0; y < grid.height; ++y)
        for (int x = 0; x < grid.width; ++x)
            sum += std::pow(static_cast<double>(grid.row(y)[x]) - ramp(x, y) -
                                (x < grid.width / 2 ? 0 : step),
                            2);
    return std::sqrt(sum / static_cast<double>(grid.cells()));
}

} // namespace

class TestDeband : public QObject
{
    Q_OBJECT

private slots:
    void levelsAreTheSmallestDifference_data()
    {
        QTest::addColumn<QList<float>>("values");
        QTest::addColumn<float>("level");
        QTest::newRow("whole") << QList<float>{0, 3, 5, 200} << 2.0F;
        QTest::newRow("sixteen bits") << QList<float>{0, 100.0F / 257, 103.0F / 257} << 3.0F / 257;
        QTest::newRow("negative") << QList<float>{-4, 8, 2} << 6.0F;
        QTest::newRow("all equal") << QList<float>{7, 7, 7} << 0.0F;
    }
    void levelsAreTheSmallestDifference()
    {
        QFETCH(QList<float>, values);
        QFETCH(float, level);
        const FloatGrid grid(static_cast<int>(values.size()), 1, {values.begin(), values.end()});
        QVERIFY(std::fabs(levelOf(grid.view()) - level) < 1e-5F);
    }

    void terracesBecomeASlope()
    {
        const FloatGrid terraces =
            gridOf(200, 150, [](int x, int y) { return std::round(ramp(x, y)); });
        const FloatGrid slope = smoothed(terraces);
        QVERIFY(rmsToRamp(terraces) > 0.25);
        QVERIFY(rmsToRamp(slope) < 0.06);
        const FloatGrid half = smoothed(terraces, 0.5);
        for (size_t i = 0; i < slope.values.size(); ++i) {
            QVERIFY(std::fabs(slope.values[i] - terraces.values[i]) <= 0.5F);
            QVERIFY(std::fabs(half.values[i] - terraces.values[i]) <= 0.25F);
        }
    }

    void edgesStay()
    {
        const FloatGrid values = gridOf(
            200, 150, [](int x, int y) { return std::round(ramp(x, y)) + (x < 100 ? 0 : 40); });
        QVERIFY(rmsToRamp(smoothed(values), 40) < 0.07);
    }

    void surfacesWithoutTerracesStay_data()
    {
        QTest::addColumn<FloatGrid>("values");
        QTest::newRow("empty") << FloatGrid(20, 9);
        QTest::newRow("flat") << gridOf(20, 9, [](int, int) { return 3; });
        QTest::newRow("figure") << gridOf(
            61, 47, [](int x, int y) { return std::hypot(x - 30, y - 20) < 17 ? 7 : 0; });
        QTest::newRow("one cell") << FloatGrid(1, 1, {4.0F});
        QTest::newRow("checkerboard")
            << gridOf(33, 31, [](int x, int y) { return (x + y) % 2 * 50; });
    }
    void surfacesWithoutTerracesStay()
    {
        QFETCH(FloatGrid, values);
        QVERIFY(smoothed(values).values == values.values);
    }

    void zeroStaysAndNothingFallsBelowTheLowest()
    {
        const FloatGrid values =
            gridOf(120, 80, [](int x, int y) { return y < 10 ? 0.0 : 5.0 + std::floor(0.05 * x); });
        const FloatGrid result = smoothed(values);
        for (int x = 0; x < 120; ++x)
            QVERIFY(result.row(4)[x] == 0.0F && result.row(60)[x] > 0.0F);
        FloatGrid raised = values;
        for (float &value : raised.values)
            value += 3.0F;
        const FloatGrid bounded = smoothed(raised);
        QVERIFY(*std::min_element(bounded.values.begin(), bounded.values.end()) >= 3.0F);
    }

    void theImportStartsFromTheDebandedValues()
    {
        const FloatGrid terraces =
            gridOf(100, 60, [](int x, int y) { return std::round(ramp(x, y)); });
        ImportSource source(terraces, {.deband = 1.0});
        const ValueRange range = source.range();
        std::vector<float> heights(terraces.values.size());
        source.computeHeights(heights.data());
        const FloatGrid slope = smoothed(terraces);
        for (size_t i = 0; i < heights.size(); ++i)
            QCOMPARE(heights[i], slope.values[i] - static_cast<float>(range.lowest));
        ImportSettings off;
        source.setSettings(off);
        source.computeHeights(heights.data());
        QCOMPARE(heights[150], terraces.values[150] - static_cast<float>(range.lowest));
        QCOMPARE(source.range().span(), range.span());
    }
};

QTEST_GUILESS_MAIN(TestDeband)
#include "tst_deband.moc"
