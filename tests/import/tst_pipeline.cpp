#include "import/pipeline.h"

#include <QtTest>

#include <cmath>
#include <random>

using namespace marlowen;

namespace {

using Values = std::vector<float>;

FloatGrid filled(int width, int height, float value)
{
    return {width, height, Values(static_cast<size_t>(width) * static_cast<size_t>(height), value)};
}

/// A rectangle of ones on a grid of zeros.
FloatGrid figure(QSize size, QRect box)
{
    FloatGrid grid(size.width(), size.height());
    for (int y = box.top(); y <= box.bottom(); ++y)
        std::fill_n(grid.row(y) + box.left(), box.width(), 1.0F);
    return grid;
}

FloatGrid randomGrid(int width, int height, int emptyPercent)
{
    std::mt19937 random(42);
    FloatGrid grid(width, height);
    for (float &value : grid.values)
        value = static_cast<int>(random() % 100) < emptyPercent
                    ? 0.0F
                    : static_cast<float>(random() % 1000) / 8;
    return grid;
}

Values mapped(const FloatGrid &grid, const ImportSettings &settings)
{
    Values heights(grid.values.size());
    mapBase(grid.view(), rangeOf(grid.values), settings, heights.data());
    return heights;
}

Values tilted(const FloatGrid &grid, const ImportSettings &settings)
{
    Values values(grid.values.size());
    tilt(grid.view(), tiltSlope(settings, 100.0), values.data());
    return values;
}

/// One pass of trimming, cell by cell.
FloatGrid trimmedOnce(const FloatGrid &grid)
{
    FloatGrid result(grid.width, grid.height);
    for (int y = 1; y + 1 < grid.height; ++y) {
        for (int x = 1; x + 1 < grid.width; ++x) {
            bool keep = true;
            for (int i = 0; i < 9; ++i)
                keep = keep && grid.row(y + i / 3 - 1)[x + i % 3 - 1] != 0.0F;
            result.row(y)[x] = keep ? grid.row(y)[x] : 0.0F;
        }
    }
    return result;
}

/// The smoothed value of one cell, neighbour by neighbour.
double smoothedCell(const FloatGrid &grid, int x, int y)
{
    double sum = 0.0;
    double weights = 0.0;
    for (int dy = -1; dy <= 1; ++dy) {
        for (int dx = -1; dx <= 1; ++dx) {
            if (x + dx < 0 || x + dx >= grid.width || y + dy < 0 || y + dy >= grid.height)
                continue;
            const double weight = (2 - std::abs(dx)) * (2 - std::abs(dy));
            sum += weight * static_cast<double>(grid.row(y + dy)[x + dx]);
            weights += weight;
        }
    }
    return sum / weights;
}

} // namespace

class TestPipeline : public QObject
{
    Q_OBJECT

private slots:
    void padding_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QRect>("box");
        QTest::addColumn<QList<int>>("expected"); // left, right, top, bottom
        QTest::newRow("black: the whole image counts")
            << QSize(60, 40) << QRect() << QList<int>{3, 3, 2, 2};
        QTest::newRow("full") << QSize(100, 59) << QRect(0, 0, 100, 59) << QList<int>{5, 5, 2, 2};
        QTest::newRow("roomy") << QSize(100, 100) << QRect(10, 10, 80, 80)
                               << QList<int>{0, 0, 0, 0};
        // Margins 4 and 2.5: gaps of 1 and 0 leave 3 and 2.5, truncated.
        QTest::newRow("off centre")
            << QSize(100, 100) << QRect(1, 50, 80, 50) << QList<int>{3, 0, 0, 2};
        QTest::newRow("a column is no box")
            << QSize(40, 40) << QRect(0, 0, 1, 40) << QList<int>{2, 2, 2, 2};
        QTest::newRow("one cell") << QSize(1, 1) << QRect(0, 0, 1, 1) << QList<int>{0, 0, 0, 0};
        QTest::newRow("wide") << QSize(20000, 10) << QRect(0, 0, 20000, 10)
                              << QList<int>{1000, 1000, 0, 0};
    }

    void padding()
    {
        QFETCH(QSize, size);
        QFETCH(QRect, box);
        QFETCH(QList<int>, expected);
        const Padding wanted{expected[0], expected[1], expected[2], expected[3]};
        const FloatGrid grid = figure(size, box);
        QVERIFY(paddingFor(grid) == wanted);
        const FloatGrid result = padded(grid, wanted);
        QCOMPARE(result.width, size.width() + wanted.left + wanted.right);
        QCOMPARE(result.height, size.height() + wanted.top + wanted.bottom);
        QVERIFY(
            result.values ==
            figure({result.width, result.height}, box.translated(wanted.left, wanted.top)).values);
    }

    void mapping_data()
    {
        QTest::addColumn<ImportSettings>("settings");
        QTest::addColumn<QList<float>>("expected");
        // The source is 0 10 / 50 20: lowest 0, highest 50.
        using S = ImportSettings;
        QTest::newRow("plain") << S{} << QList<float>{0, 10, 50, 20};
        QTest::newRow("flipped") << S{.flipY = true} << QList<float>{50, 20, 0, 10};
        QTest::newRow("inverted, background stays")
            << S{.invertZ = true} << QList<float>{0, 40, 0, 30};
        QTest::newRow("lowered by 30 %") << S{.raiseLower = 30} << QList<float>{0, 0, 35, 5};
        QTest::newRow("raised by its range")
            << S{.raiseLower = -100} << QList<float>{0, 60, 100, 70};
        QTest::newRow("lowered by its range") << S{.raiseLower = 100} << QList<float>{0, 0, 0, 0};
        QTest::newRow("no preview, no raise")
            << S{.preview = false, .raiseLower = 30} << QList<float>{0, 10, 50, 20};
        QTest::newRow("depth") << S{.depth = 5.0} << QList<float>{0, 1, 5, 2};
        QTest::newRow("all") << S{.flipY = true, .invertZ = true, .raiseLower = -10, .depth = 25.0}
                             << QList<float>{2.5F, 17.5F, 0, 22.5F};
    }

    void mapping()
    {
        QFETCH(ImportSettings, settings);
        QFETCH(QList<float>, expected);
        QVERIFY(mapped({2, 2, {0, 10, 50, 20}}, settings) ==
                Values(expected.begin(), expected.end()));
    }

    void mappingStartsAtTheLowestValue()
    {
        QVERIFY(mapped({3, 1, {4, 6, 9}}, {}) == Values({0, 2, 5}));
        QVERIFY(mapped({3, 1, {4, 4, 4}}, {}) == Values({0, 0, 0}));
    }

    void trimmingRemovesTheOutline()
    {
        FloatGrid grid = filled(5, 5, 7.0F);
        trim(grid.view(), 1);
        for (int i = 0; i < 25; ++i) {
            const bool inside = i % 5 >= 1 && i % 5 <= 3 && i / 5 >= 1 && i / 5 <= 3;
            QCOMPARE(grid.values[static_cast<size_t>(i)], inside ? 7.0F : 0.0F);
        }
    }

    void trimmingEqualsItsPassesOneByOne_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<int>("emptyPercent");
        QTest::newRow("speckled") << QSize(67, 45) << 2;
        QTest::newRow("dense") << QSize(130, 90) << 0;
        QTest::newRow("one row") << QSize(30, 1) << 0;
        QTest::newRow("three columns") << QSize(3, 40) << 0;
    }

    void trimmingEqualsItsPassesOneByOne()
    {
        QFETCH(QSize, size);
        QFETCH(int, emptyPercent);
        const FloatGrid source = randomGrid(size.width(), size.height(), emptyPercent);
        FloatGrid expected = source;
        for (int passes = 0; passes <= 20; ++passes) {
            FloatGrid result = source;
            trim(result.view(), passes);
            QVERIFY2(result.values == expected.values, QByteArray::number(passes));
            expected = trimmedOnce(expected);
        }
    }

    void smoothingSpreadsOneCell()
    {
        FloatGrid grid(5, 5);
        grid.row(2)[2] = 16.0F;
        smooth(grid.view(), 1.0, false);
        QVERIFY(grid.values == Values({0, 0, 0, 0, 0, //
                                       0, 1, 2, 1, 0, //
                                       0, 2, 4, 2, 0, //
                                       0, 1, 2, 1, 0, //
                                       0, 0, 0, 0, 0}));
    }

    void smoothingDividesByTheWeightsPresent()
    {
        // Divisors 9 in corners, 12 on edges, 16 inside; weights 4-2-1.
        FloatGrid grid{3, 3, {36, 0, 0, 0, 0, 0, 0, 0, 0}};
        smooth(grid.view(), 1.0, false);
        QVERIFY(grid.values == Values({16, 6, 0, 6, 2.25F, 0, 0, 0, 0}));
        FloatGrid flat = filled(4, 3, 5.0F);
        smooth(flat.view(), 3.0, true);
        QVERIFY(flat.values == Values(12, 5.0F));
    }

    void transparencyKeepsEmptyCells()
    {
        FloatGrid grid{3, 1, {8, 0, 8}};
        smooth(grid.view(), 1.0, true);
        // A single row: 4 and 2 of weights 4 + 2 at its ends.
        QVERIFY(grid.values ==
                Values({static_cast<float>(32.0 / 6.0), 0.0F, static_cast<float>(32.0 / 6.0)}));
        FloatGrid filledIn{3, 1, {8, 0, 8}};
        smooth(filledIn.view(), 1.0, false);
        QCOMPARE(filledIn.values[1], 4.0F);
    }

    void theLastPassIsBlended_data()
    {
        QTest::addColumn<double>("amount");
        QTest::addColumn<int>("fullPasses");
        QTest::addColumn<double>("fraction");
        QTest::newRow("none") << 0.0 << 0 << 0.0;
        QTest::newRow("half") << 0.5 << 0 << 0.5;
        QTest::newRow("one") << 1.0 << 1 << 0.0;
        QTest::newRow("two and a quarter") << 2.25 << 2 << 0.25;
        QTest::newRow("five") << 5.0 << 5 << 0.0;
    }

    void theLastPassIsBlended()
    {
        QFETCH(double, amount);
        QFETCH(int, fullPasses);
        QFETCH(double, fraction);
        FloatGrid expected = randomGrid(23, 17, 30);
        FloatGrid result = expected;
        for (int pass = 0; pass < fullPasses + (fraction > 0.0 ? 1 : 0); ++pass) {
            const FloatGrid before = expected;
            const double blend = pass < fullPasses ? 1.0 : fraction;
            for (int i = 0; i < before.cells(); ++i) {
                float &cell = expected.values[static_cast<size_t>(i)];
                const double mean = smoothedCell(before, i % 23, i / 23);
                cell = cell == 0.0F ? 0.0F
                                    : static_cast<float>(mean * blend +
                                                         static_cast<double>(cell) * (1.0 - blend));
            }
        }
        smooth(result.view(), amount, true);
        for (size_t i = 0; i < result.values.size(); ++i)
            QVERIFY(std::abs(result.values[i] - expected.values[i]) <= 1e-6F * expected.values[i]);
    }

    void thinGridsSmooth_data()
    {
        QTest::addColumn<QSize>("size");
        for (const QSize size : {QSize(1, 1), QSize(1, 9), QSize(9, 1), QSize(2, 2), QSize(2, 7)})
            QTest::addRow("%dx%d", size.width(), size.height()) << size;
    }

    void thinGridsSmooth()
    {
        QFETCH(QSize, size);
        FloatGrid grid = randomGrid(size.width(), size.height(), 0);
        const FloatGrid before = grid;
        smooth(grid.view(), 1.0, false);
        for (int i = 0; i < before.cells(); ++i)
            QCOMPARE(grid.values[static_cast<size_t>(i)],
                     static_cast<float>(smoothedCell(before, i % size.width(), i / size.width())));
    }

    void tiltSlopesAboutTheRealCentre()
    {
        // Centre at (1.5, 1): columns lie at -1.5, -0.5, 0.5, rows at -1 and 0.
        const FloatGrid grid{3, 2, {100, 100, 100, 0, 100, 1e-3F}};
        const ImportSettings settings{.tiltHorizontal = 100, .tiltVertical = -50};
        const double h = std::tan(10.0 * M_PI / 180.0);
        const double v = std::tan(5.0 * M_PI / 180.0);
        const Values values = tilted(grid, settings);
        QCOMPARE(values[0], static_cast<float>(100 + 1.5 * h + v));
        QCOMPARE(values[2], static_cast<float>(100 - 0.5 * h + v));
        QCOMPARE(values[3], 0.0F); // background
        QCOMPARE(values[4], static_cast<float>(100 + 0.5 * h));
        QCOMPARE(values[5], 0.0F); // sinks below 0
    }

    void theSlopeIsInFinishedHeights()
    {
        // 100 source units become 20 high, so a slope of 1 is 5 source units a cell.
        const ImportSettings settings{.tiltHorizontal = 100, .depth = 20.0};
        const FloatGrid grid{2, 1, {100, 100}};
        const Values values = tilted(grid, settings);
        QCOMPARE(values[0], static_cast<float>(100 + 5 * std::tan(10.0 * M_PI / 180.0)));
    }

    void rangesOfAnyLength()
    {
        for (const int count : {1, 2, 15, 16, 17, 100}) {
            FloatGrid grid = randomGrid(count, 1, 0);
            const auto [lowest, highest] =
                std::minmax_element(grid.values.begin(), grid.values.end());
            const ValueRange range = rangeOf({grid.values.data(), static_cast<size_t>(count)});
            QCOMPARE(range.lowest, static_cast<double>(*lowest));
            QCOMPARE(range.highest, static_cast<double>(*highest));
        }
    }
};

QTEST_APPLESS_MAIN(TestPipeline)
#include "tst_pipeline.moc"
