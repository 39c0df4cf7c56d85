#include "relief/tools/alphabrush.h"
#include "relief/tools/falloff.h"
#include "relief/tools/tool.h"

#include <QRegularExpression>
#include <QTest>

#include <cmath>
#include <limits>
#include <numbers>
#include <queue>

using namespace marlowen;

namespace {

constexpr double unreached = std::numeric_limits<double>::max();

/// '.' outside, '#' inside, 'o' outline.
std::vector<unsigned char> cellsOf(const QStringList &picture)
{
    std::vector<unsigned char> cells;
    for (const QString &row : picture)
        for (const QChar c : row)
            cells.push_back(c == '.' ? 0 : c == '#' ? 1 : 2);
    return cells;
}

QStringList pictureOf(const Tool &tool)
{
    QStringList picture;
    for (int row = 0; row < tool.dimension(); ++row) {
        QString line;
        for (int column = 0; column < tool.dimension(); ++column)
            line += QChar(".#o"[tool.footprint()[row * tool.dimension() + column]]);
        picture << line;
    }
    return picture;
}

/// Shortest ways from the outline, cell by cell in the order of their length.
std::vector<double> shortestWays(const std::vector<unsigned char> &cells, int side)
{
    using Place = std::pair<double, int>;
    std::vector<double> ways(cells.size(), unreached);
    std::priority_queue<Place, std::vector<Place>, std::greater<>> open;
    for (size_t i = 0; i < cells.size(); ++i) {
        if (cells[i] == 0)
            ways[i] = 0.0;
        if (cells[i] == 2)
            open.push({1.0, static_cast<int>(i)});
    }
    while (!open.empty()) {
        const auto [way, cell] = open.top();
        open.pop();
        if (ways[static_cast<size_t>(cell)] <= way)
            continue;
        ways[static_cast<size_t>(cell)] = way;
        for (int dy = -1; dy <= 1; ++dy) {
            for (int dx = -1; dx <= 1; ++dx) {
                const int x = cell % side + dx;
                const int y = cell / side + dy;
                if (x >= 0 && x < side && y >= 0 && y < side &&
                    cells[static_cast<size_t>(y * side + x)])
                    open.push(
                        {way + (dx != 0 && dy != 0 ? std::numbers::sqrt2 : 1.0), y * side + x});
            }
        }
    }
    return ways;
}

void compareMaps(const double *map, const std::vector<double> &expected, int side)
{
    for (size_t i = 0; i < expected.size(); ++i)
        if (!(std::abs(map[i] - expected[i]) <= 1e-9))
            QFAIL(qPrintable(QString("%1 instead of %2 at column %3, row %4")
                                 .arg(map[i])
                                 .arg(expected[i])
                                 .arg(i % static_cast<size_t>(side))
                                 .arg(i / static_cast<size_t>(side))));
}

ToolParams shape(int form, double size, double aspect = 1.0, double angle = 0.0)
{
    ToolParams params;
    params.form = form;
    params.size = size;
    params.aspect = aspect;
    params.angle = angle;
    return params;
}

void loadAlpha(int mode, int side = 5)
{
    std::vector<float> image(static_cast<size_t>(side * side));
    for (size_t i = 0; i < image.size(); ++i)
        image[i] = static_cast<float>(i % 7) / 6.0F;
    AlphaBrush::instance().setImage({image.data(), side, side});
    AlphaBrush::instance().mode = mode;
    AlphaBrush::instance().repeatCount = 3;
}

} // namespace

Q_DECLARE_METATYPE(ToolParams)

class TestFootprint : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { AlphaBrush::instance().setImage({}); }

    void radiusAndDimension_data()
    {
        QTest::addColumn<double>("size");
        QTest::addColumn<double>("scale");
        QTest::addColumn<double>("radius");
        QTest::addColumn<int>("dimension");
        QTest::newRow("smallest") << 0.01 << std::sqrt(20000.0) << 1.0 << 4;
        QTest::newRow("whole") << 0.5 << 1000.0 << 50.0 << 143;
        QTest::newRow("broken") << 0.505 << 1000.0 << 0.505 * 0.1 * 1000.0 << 146;
        QTest::newRow("far too large") << 1e300 << 1e6 << 2048.0 << 5794;
    }
    void radiusAndDimension()
    {
        QFETCH(double, size);
        QFETCH(double, scale);
        const Tool tool(shape(Tool::Round, size), {}, scale);
        QTEST(tool.radius(), "radius");
        QTEST(tool.dimension(), "dimension");
    }

    void pictures_data()
    {
        QTest::addColumn<ToolParams>("params");
        QTest::addColumn<QStringList>("picture");
        QTest::newRow("round 1") << shape(Tool::Round, 0.25)
                                 << QStringList{"....", ".oo.", ".ooo", "...."};
        QTest::newRow("square 2") << shape(Tool::Square, 0.5)
                                  << QStringList{".......", ".ooooo.", ".o###o.", ".o###o.",
                                                 ".o###o.", ".ooooo.", "......."};
        QTest::newRow("flat square 4")
            << shape(Tool::Square, 1.0, 4.0)
            << QStringList{".............", ".............", ".............", ".............",
                           ".............", "..ooooooooo..", "..o#######o..", "..ooooooooo..",
                           ".............", ".............", ".............", ".............",
                           "............."};
    }
    void pictures()
    {
        QFETCH(ToolParams, params);
        const Tool tool(params, {}, 40.0);
        QTEST(pictureOf(tool), "picture");
    }

    void rotatedSquareStaysWithinItsOutline()
    {
        const Tool tool(shape(Tool::Square, 1.0, 1.0, 45.0), {}, 200.0);
        const int middle = tool.dimension() / 2;
        for (int row = 0; row < tool.dimension(); ++row)
            for (int column = 0; column < tool.dimension(); ++column)
                if (tool.footprint()[row * tool.dimension() + column] != 0)
                    QVERIFY(std::abs(row - middle) + std::abs(column - middle) <=
                            20 * std::numbers::sqrt2 + 2.0);
        QCOMPARE(int(tool.footprint()[middle * tool.dimension() + middle]), 1);
    }

    void distances_data()
    {
        QTest::addColumn<ToolParams>("params");
        for (const int form : {Tool::Round, Tool::Square}) {
            for (const double angle : {0.0, 31.0, 45.0})
                QTest::addRow("form %d, angle %g", form, angle) << shape(form, 0.6, 1.7, angle);
            QTest::addRow("form %d, cut off by the array", form) << shape(form, 0.3, 0.4, 10.0);
        }
    }
    void distances()
    {
        QFETCH(ToolParams, params);
        const Tool tool(params, {}, 1000.0);
        const int side = tool.dimension();
        const std::vector<unsigned char> cells(tool.footprint(), tool.footprint() + side * side);
        compareMaps(tool.distanceMap(), shortestWays(cells, side), side);
    }

    void distancesFollowCoves()
    {
        const QStringList winding{"o#########", "........##", "##########", "#.........",
                                  "##########", "..........", "..........", "..........",
                                  "..........", ".........."};
        std::vector<unsigned char> cells = cellsOf(winding);
        std::vector<double> map(cells.size());
        QTest::ignoreMessage(QtDebugMsg,
                             QRegularExpression("^genDistMap: [3-5] loops, [0-9.]+ msec\\.$"));
        Tool::genDistMap(map.data(), cells.data(), 10);
        compareMaps(map.data(), shortestWays(cells, 10), 10);
        QVERIFY(map[49] > 25.0);
    }

    void distancesWithoutOutline()
    {
        unsigned char inside[] = {1, 1, 1, 0};
        double map[4];
        Tool::genDistMap(map, inside, 2);
        QVERIFY(map[0] == unreached && map[1] == unreached && map[2] == unreached && map[3] == 0.0);
        QTest::ignoreMessage(QtDebugMsg, QRegularExpression("^genDistMap: 1 loops"));
        Tool::genDistMap(map, inside, 1);
        QCOMPARE(map[0], unreached);
    }

    void profiles_data()
    {
        QTest::addColumn<int>("falloff");
        QTest::addColumn<double>("hardness");
        QTest::addColumn<double>("distance");
        QTest::addColumn<double>("weight");
        // With D = 10, t is (5 - distance) / 5.
        QTest::newRow("linear") << 1 << 0.0 << 2.0 << 0.4;
        QTest::newRow("linear, half hard") << 1 << 0.5 << 1.25 << 0.5;
        QTest::newRow("flat within the hardness") << 1 << 0.5 << 2.5 << 1.0;
        QTest::newRow("smooth") << 0 << 0.0 << 2.5 << 0.5;
        QTest::newRow("smooth, early") << 0 << 0.0 << 3.75 << 0.84375;
        QTest::newRow("sphere") << 2 << 0.0 << 2.0 << 0.8;
        QTest::newRow("constant") << 3 << 0.7 << 0.0 << 1.0;
        QTest::newRow("on the rim") << 0 << 0.0 << 0.0 << 0.0;
        QTest::newRow("no outline") << 2 << 0.0 << unreached << 1.0;
        QTest::newRow("hardness 1 falls in a fiftieth") << 1 << 1.0 << 0.05 << 0.5;
        QTest::newRow("hardness below 0") << 1 << -3.0 << 2.0 << 0.4;
    }
    void profiles()
    {
        QFETCH(int, falloff);
        QFETCH(double, hardness);
        QFETCH(double, distance);
        QFETCH(double, weight);
        ToolParams params;
        params.falloff = falloff;
        params.hardness = hardness;
        std::vector<double> map(100, 0.0);
        map[34] = distance;
        QVERIFY(std::abs(falloffWeight(params, {map.data(), 10, 10}, 4, 3) - weight) < 1e-12);
    }

    void alphaSamples_data()
    {
        QTest::addColumn<double>("u");
        QTest::addColumn<double>("v");
        QTest::addColumn<bool>("wrap");
        QTest::addColumn<double>("value");
        QTest::newRow("between four") << 0.5 << 0.5 << false << 0.375;
        QTest::newRow("on a cell") << 0.75 << 0.25 << false << 1.0;
        QTest::newRow("edge, clamped") << 1.0 << 0.25 << false << 1.0;
        QTest::newRow("edge, wrapped") << 1.0 << 0.25 << true << 0.5;
        QTest::newRow("corner, wrapped") << 0.0 << 0.0 << true << 0.375;
        QTest::newRow("beyond") << 1.001 << 0.5 << false << 0.0;
        QTest::newRow("before") << 0.5 << -0.001 << false << 0.0;
        QTest::newRow("turns away, wrapped") << -2.25 << 3.25 << true << 1.0;
        QTest::newRow("no number") << std::nan("") << 0.5 << true << 0.0;
    }
    void alphaSamples()
    {
        QFETCH(double, u);
        QFETCH(double, v);
        QFETCH(bool, wrap);
        QFETCH(double, value);
        const float image[] = {0.0F, 1.0F, 0.25F, 0.25F};
        QCOMPARE(alphaSample({image, 2, 2}, u, v, wrap), value);
    }

    void alphaImages()
    {
        AlphaBrush &brush = AlphaBrush::instance();
        const uint32_t before = brush.changeCounter();
        const float image[] = {std::nanf(""), -1.0F, 2.0F, 0.5F};
        brush.setImage({image, 2, 2});
        QCOMPARE(brush.values(), (std::vector<float>{0.0F, 0.0F, 1.0F, 0.5F}));
        brush.setImage({});
        QVERIFY(!brush.loaded() && brush.side() == 0);
        QCOMPARE(brush.changeCounter(), before + 4);
    }

    void alphaShapesTheFootprint_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("mode");
        QTest::addColumn<bool>("square");
        QTest::newRow("shape") << int(Tool::Deposit) << int(AlphaBrush::Shape) << true;
        QTest::newRow("stamp") << int(Tool::Smooth) << int(AlphaBrush::Stamp) << true;
        QTest::newRow("tile") << int(Tool::Deposit) << int(AlphaBrush::Tile) << false;
        QTest::newRow("flatten") << int(Tool::Flatten) << int(AlphaBrush::Shape) << false;
        QTest::newRow("scrape") << int(Tool::Scrape) << int(AlphaBrush::Stamp) << false;
    }
    void alphaShapesTheFootprint()
    {
        QFETCH(int, type);
        QFETCH(int, mode);
        QFETCH(bool, square);
        loadAlpha(mode);
        ToolParams params = shape(Tool::Round, 0.5);
        params.type = type;
        const Tool tool(params, {}, 200.0);
        QCOMPARE(int(tool.footprint()[0]), square ? 1 : 0);
    }

    void alphaWeights()
    {
        // D = 12: half 6, R = 10 / sqrt(8); the image's middle is at cell (6, 6).
        std::vector<double> map(144, 3.0);
        ToolParams params;
        params.falloff = Tool::LinearFalloff;
        params.hardness = 0.0;
        const float image[] = {0.25F};
        AlphaBrush::instance().setImage({image, 1, 1});
        AlphaBrush::instance().mode = AlphaBrush::Stamp;
        QCOMPARE(falloffWeight(params, {map.data(), 12, 12}, 6, 6), 0.25);
        QCOMPARE(falloffWeight(params, {map.data(), 12, 12}, 10, 6), 0.0); // beyond the image
        AlphaBrush::instance().mode = AlphaBrush::Tile;
        QCOMPARE(falloffWeight(params, {map.data(), 12, 12}, 10, 6), 0.5 * 0.25);
        AlphaBrush::instance().mode = AlphaBrush::Shape;
        QCOMPARE(falloffWeight(params, {map.data(), 12, 12}, 6, 6), 0.25);
        const double t = 3.0 / (10.0 / std::sqrt(8.0));
        QVERIFY(std::abs(falloffWeight(params, {map.data(), 12, 12}, 9, 6) - 0.25 * (1.0 - t)) <
                1e-12);
    }

    void strokeWeightsAreTheFormula_data()
    {
        QTest::addColumn<int>("falloff");
        QTest::addColumn<int>("alphaMode");
        for (int falloff = 0; falloff < 4; ++falloff)
            for (int mode = -1; mode < 3; ++mode)
                QTest::addRow("falloff %d, alpha %d", falloff, mode) << falloff << mode;
    }
    void strokeWeightsAreTheFormula()
    {
        QFETCH(int, falloff);
        QFETCH(int, alphaMode);
        if (alphaMode >= 0)
            loadAlpha(alphaMode);
        ToolParams params = shape(Tool::Round, 0.7, 1.4, 20.0);
        params.falloff = falloff;
        params.hardness = 0.3;
        const Tool tool(params, {}, 200.0);
        const FootprintWeights &weights = tool.weights();
        const int side = tool.dimension();
        for (int y = 0; y < weights.side(); ++y) {
            for (int x = 0; x < weights.side(); ++x) {
                const double weight = static_cast<double>(weights.values[y * weights.side() + x]);
                const int column = side / 2 - weights.reach + x;
                const int row = side / 2 - weights.reach + y;
                const bool covered = column >= 0 && column < side && row >= 0 && row < side &&
                                     tool.footprint()[row * side + column] != 0;
                const FootprintWeights::Extent extent = weights.rows[y];
                if (!covered) {
                    QVERIFY(weight < 0.0);
                    continue;
                }
                QVERIFY(x >= extent.first && x <= extent.last);
                const double exact =
                    falloffWeight(params, {tool.distanceMap(), side, side}, column, row);
                QVERIFY(std::abs(weight - exact) < 1e-6);
            }
        }
    }

    void invalidParametersAreCorrected()
    {
        const double broken = std::nan("");
        const double infinite = std::numeric_limits<double>::infinity();
        ToolParams params;
        params.size = infinite;
        params.strength = 7.0;
        params.hardness = broken;
        params.aspect = 0.0;
        params.angle = -infinite;
        params.decayLength = -1.0;
        params.smoothLength = -5;
        params.falloff = 99;
        const ToolParams usable = usableParams(params);
        const ToolParams defaults;
        QCOMPARE(usable.size, defaults.size);
        QCOMPARE(usable.strength, 1.0);
        QCOMPARE(usable.hardness, defaults.hardness);
        QCOMPARE(usable.aspect, defaults.aspect);
        QCOMPARE(usable.angle, defaults.angle);
        QCOMPARE(usable.decayLength, 0.0);
        QCOMPARE(usable.smoothLength, 2);
        QCOMPARE(usable.falloff, int(Tool::SmoothFalloff));
        params.aspect = 1e-300;
        const Tool tool(params, {}, 1000.0); // takes a moment
        QVERIFY(tool.params().aspect > 0.0);
    }
};

QTEST_APPLESS_MAIN(TestFootprint)
#include "tst_footprint.moc"
