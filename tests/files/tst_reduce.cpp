#include "meshcheck.h"

#include "base/progress.h"
#include "files/export/meshexport.h"
#include "relief/grid/relief.h"

#include <QTemporaryDir>
#include <QtTest>

#include <random>

using namespace marlowen;

namespace {

using meshcheck::Grid;

constexpr double tolerance = 0.0005;

template <typename Height>
Grid makeGrid(int width, int height, Height heightAt)
{
    Grid grid{width, height, {}};
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column)
            grid.heights.push_back(static_cast<float>(heightAt(column, row)));
    }
    return grid;
}

double wave(int c, int r)
{
    return 20.0 + 8.0 * std::sin(c * 0.05) * std::cos(r * 0.07) + 0.02 * c;
}

Grid noise(unsigned sparsity, std::vector<float> values)
{
    std::mt19937 random(7);
    return makeGrid(61, 43, [&](int, int) {
        return random() % sparsity == 0 ? values[random() % values.size()] : 0.0F;
    });
}

Grid disc(double edgeHeight)
{
    return makeGrid(131, 120, [edgeHeight](int c, int r) {
        const double d = std::hypot(c - 66.0, r - 58.0) / 50.0;
        return d < 1.0 ? edgeHeight + 10.0 * (1.0 - d * d) * (edgeHeight > 0.0 ? 1.0 : 0.004) : 0.0;
    });
}

void addGrids()
{
    QTest::addColumn<Grid>("grid");
    QTest::newRow("smooth") << makeGrid(140, 110, wave);
    QTest::newRow("smooth, Z scale") << [] {
        Grid grid = makeGrid(100, 90, wave);
        grid.zFactor = 2.37;
        return grid;
    }();
    QTest::newRow("flat") << makeGrid(70, 30, [](int, int) { return 3.3; });
    QTest::newRow("flat with one spike")
        << makeGrid(70, 30, [](int c, int r) { return c == 40 && r == 11 ? 9.0 : 1.0; });
    QTest::newRow("steep outline") << disc(40.0);
    QTest::newRow("faint outline") << disc(0.0);
    QTest::newRow("step of the full depth")
        << makeGrid(90, 90, [](int c, int r) { return c + 2 * r < 130 ? 1.0 : 64.0; });
    QTest::newRow("two rows") << makeGrid(500, 2, wave);
    QTest::newRow("two columns") << makeGrid(2, 500, wave);
    QTest::newRow("much longer than wide") << makeGrid(3, 4000, wave);
    QTest::newRow("checkerboard") << makeGrid(
        40, 41, [](int c, int r) { return (c + r) % 2 == 0 ? 12.0 : 0.0; });
    QTest::newRow("thin empty lines")
        << makeGrid(120, 50, [](int c, int r) { return c % 17 == 3 || r == 20 ? 0.0 : 5.0; });
    QTest::newRow("dust") << noise(60, {0.01F});
    QTest::newRow("noise") << noise(1, {1.0F, 2.5F, 7.0F, 30.0F});
    QTest::newRow("huge heights") << noise(5, {1e30F, 3.0F, 0.25F});
    QTest::newRow("one corner") << makeGrid(30, 20, [](int c, int r) { return c + r == 0; });
    QTest::newRow("all empty") << makeGrid(30, 20, [](int, int) { return 0.0; });
    QTest::newRow("one row") << makeGrid(50, 1, wave);
    QTest::newRow("one column") << makeGrid(1, 50, wave);
    QTest::newRow("one cell") << makeGrid(1, 1, wave);
}

std::unique_ptr<Relief> reliefOf(const Grid &grid)
{
    auto relief = std::make_unique<Relief>(grid.width, grid.height);
    std::copy(grid.heights.begin(), grid.heights.end(), relief->heights().data());
    relief->zScale = grid.zFactor;
    return relief;
}

/// A written file and the writer's report.
struct Written
{
    MeshReport report;
    QByteArray bytes;
};

Written written(const Grid &grid, const ExportOptions &options, MeshFormat format = MeshFormat::Stl)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("mesh"));
    Result<MeshReport> done = exportMesh(*reliefOf(grid), options, {path, format});
    QFile file(path);
    if (!done || !file.open(QIODevice::ReadOnly))
        return {};
    return {done.take(), file.readAll()};
}

/// Triangles of the grid that have a height.
uint64_t gridTriangles(const Grid &grid)
{
    return written(grid, {}).report.facets;
}

} // namespace

Q_DECLARE_METATYPE(Grid)

class TestReduce : public QObject
{
    Q_OBJECT

private slots:
    void keepsToTheTolerance_data() { addGrids(); }

    void keepsToTheTolerance()
    {
        QFETCH(Grid, grid);
        const Written file = written(grid, {.tolerance = tolerance});
        const meshcheck::Stl stl = meshcheck::readStl(file.bytes, true);
        QCOMPARE(stl.fault, QString());
        double worst = 0.0;
        QCOMPARE(meshcheck::judgeSurface(grid, stl.facets, worst), QString());
        QVERIFY2(worst <= tolerance, qPrintable(QString::number(worst)));
        QVERIFY(std::abs(worst - file.report.largestErrorInches) <= 1e-9);
        QVERIFY(file.report.withinTolerance);
        QCOMPARE(file.report.facets, static_cast<uint64_t>(stl.facets.size()));
        QVERIFY(file.report.facets <= gridTriangles(grid));
    }

    void solidsAreClosed_data() { addGrids(); }

    void solidsAreClosed()
    {
        QFETCH(Grid, grid);
        for (const double error : {0.0, tolerance, 0.002}) {
            const Written file =
                written(grid, {.tolerance = error, .standardStl = true, .solid = 0.1});
            const meshcheck::Stl stl = meshcheck::readStl(file.bytes, false);
            QCOMPARE(stl.fault, QString());
            QCOMPARE(stl.facets.empty(), gridTriangles(grid) == 0);
            QVERIFY(std::ranges::none_of(stl.normals, [](auto n) { return std::isnan(n[0]); }));
            // Volumes and slopes of huge heights are beyond doubles.
            if (*std::ranges::max_element(grid.heights) < 1e20F && !stl.facets.empty())
                QCOMPARE(meshcheck::judgeSolid(stl), QString());
            else
                QVERIFY(meshcheck::isClosed(stl.facets));
        }
    }

    void objHoldsTheFacetsOfTheStl_data() { addGrids(); }

    void objHoldsTheFacetsOfTheStl()
    {
        QFETCH(Grid, grid);
        for (const double error : {0.0, tolerance}) {
            for (const double base : {0.0, 0.1}) {
                const ExportOptions options{.tolerance = error, .standardStl = true, .solid = base};
                const meshcheck::Stl stl = meshcheck::readStl(written(grid, options).bytes, false);
                const meshcheck::Stl obj =
                    meshcheck::readObj(written(grid, options, MeshFormat::Obj).bytes);
                QCOMPARE(obj.fault, QString());
                QVERIFY(obj.facets == stl.facets);
                for (size_t i = 0; i < obj.normals.size(); ++i) {
                    const auto &[x, y, z] = obj.normals[i];
                    QVERIFY(std::abs(x * x + y * y + z * z - 1.0F) < 1e-3F);
                    // The base faces down; smoothed normals lean, but stay on the upper side.
                    QVERIFY(stl.normals[i / 3][2] >= 0.0F ? z >= 0.0F : z == -1.0F);
                }
            }
        }
    }

    void writesFewFacets()
    {
        const Grid smooth = makeGrid(400, 400, wave);
        QVERIFY(written(smooth, {.tolerance = tolerance}).report.facets <
                gridTriangles(smooth) / 10);
        const Grid plane = makeGrid(70, 30, [](int c, int r) { return 1 + 2 * c + r; });
        QCOMPARE(written(plane, {.tolerance = tolerance}).report.facets, uint64_t{2});
    }

    void limitsTheFacets_data()
    {
        QTest::addColumn<int>("limit");
        QTest::addColumn<double>("base");
        for (const int limit : {1, 2, 3, 10, 100, 1001}) {
            QTest::addRow("%d", limit) << limit << 0.0;
            QTest::addRow("%d, solid", limit) << limit << 0.2;
        }
    }

    void limitsTheFacets()
    {
        QFETCH(int, limit);
        QFETCH(double, base);
        const Grid grid = disc(4.0);
        const Written file = written(grid, {.tolerance = 1e-6, .facets = limit, .solid = base});
        // The rectangle takes two facets, and as a solid two below and eight around.
        const int least = base > 0.0 ? 12 : 2;
        QVERIFY(file.report.facets <= static_cast<uint64_t>(std::max(limit, least)));
        QVERIFY(!file.report.withinTolerance);
        QVERIFY(file.report.largestErrorInches > 1e-6);
        QVERIFY(describe(file.report).contains(QLatin1String("limited")));
        const meshcheck::Stl stl = meshcheck::readStl(file.bytes, true);
        QCOMPARE(stl.facets.size(), static_cast<size_t>(file.report.facets));
        if (base > 0.0)
            QCOMPARE(meshcheck::judgeSolid(stl), QString());
    }

    void aLimitThatIsMetChangesNothing()
    {
        const Grid grid = disc(4.0);
        const Written full = written(grid, {.facets = static_cast<int>(gridTriangles(grid))});
        QVERIFY(!full.report.reduced);
        QCOMPARE(full.bytes, written(grid, {}).bytes);
    }

    void worksInSlices()
    {
        const Grid grid = makeGrid(300, 300, wave);
        const GridView view{grid.heights.data(), grid.width, grid.height};
        const ReductionGoal goal{.toleranceInches = 1e-4};
        FacetReducer atOnce(view, goal);
        QVERIFY(atOnce.step(std::chrono::hours(1)));
        FacetReducer inSlices(view, goal);
        int slices = 0;
        double progress = 0.0;
        while (!inSlices.step(std::chrono::milliseconds(0))) {
            QVERIFY(inSlices.progress() >= progress && inSlices.facets() >= 2);
            QVERIFY(inSlices.largestErrorInches() >= goal.toleranceInches);
            progress = inSlices.progress();
            ++slices;
        }
        QVERIFY(slices > 100);
        QCOMPARE(inSlices.progress(), 1.0);
        QCOMPARE(inSlices.mesh(), atOnce.mesh());
        QCOMPARE(inSlices.largestErrorInches(), atOnce.largestErrorInches());
    }

    void cancelKeepsTheOldFile()
    {
        struct Stop : Progress
        {
            bool cancelled() const override { return true; }
        } stop;
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("old.stl"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("old") == 3);
        file.close();
        for (const double error : {0.0, tolerance}) {
            for (const MeshFormat format : {MeshFormat::Stl, MeshFormat::Obj}) {
                const auto relief = reliefOf(makeGrid(200, 200, wave));
                QVERIFY(!exportMesh(*relief, {.tolerance = error}, {path, format, &stop}));
            }
        }
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("old"));
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files).size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestReduce)
#include "tst_reduce.moc"
