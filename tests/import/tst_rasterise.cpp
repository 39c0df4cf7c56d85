#include "import/mesh/rasterise.h"

#include "files/mesh/meshreader.h"
#include "files/stlwriter.h"
#include "import/importsource.h"

#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

using namespace marlowen;

namespace {

using Corner = std::array<int, 3>;
using Facet = std::array<Corner, 3>;

constexpr int side = 24;
/// Far below all heights of the facets under test; opens the box to the whole grid.
const std::vector<Facet> frame{{{{0, 0, -50}, {side, 0, -50}, {0, side, -50}}},
                               {{{side, side, -50}, {side, 0, -50}, {0, side, -50}}}};

FacetShape shapeOf(const std::vector<Facet> &facets, double unitsPerCell)
{
    TriangleMesh mesh;
    for (const Facet &facet : facets) {
        const auto first = static_cast<quint32>(mesh.positions.size());
        for (const Corner &corner : facet)
            mesh.positions.push_back(
                {corner[0] * unitsPerCell, corner[1] * unitsPerCell, corner[2] * unitsPerCell});
        mesh.triangles.push_back({first, first + 1, first + 2});
    }
    return {std::move(mesh), 0};
}

/// Height of a segment over a point, or nothing, in whole numbers until the last division.
std::optional<double> onSegment(const Corner &a, const Corner &b, int x, int y)
{
    const int dx = b[0] - a[0];
    const int dy = b[1] - a[1];
    if (dx == 0 && dy == 0)
        return x == a[0] && y == a[1] ? std::optional<double>(std::max(a[2], b[2])) : std::nullopt;
    if (dx * (y - a[1]) != dy * (x - a[0]))
        return {};
    const int along = dx * (x - a[0]) + dy * (y - a[1]);
    const int length = dx * dx + dy * dy;
    if (along < 0 || along > length)
        return {};
    return a[2] + static_cast<double>((b[2] - a[2]) * along) / length;
}

/// Highest height of a facet over a grid point, computed another way than the rasteriser does.
std::optional<double> heightOver(const Facet &f, int x, int y)
{
    const auto cross = [&](const Corner &a, const Corner &b) {
        return (b[0] - a[0]) * (y - a[1]) - (b[1] - a[1]) * (x - a[0]);
    };
    const int w0 = cross(f[1], f[2]);
    const int w1 = cross(f[2], f[0]);
    const int w2 = cross(f[0], f[1]);
    const int whole = w0 + w1 + w2;
    if (whole != 0) {
        const bool inside = (w0 >= 0 && w1 >= 0 && w2 >= 0) || (w0 <= 0 && w1 <= 0 && w2 <= 0);
        if (!inside)
            return {};
        return static_cast<double>(w0 * f[0][2] + w1 * f[1][2] + w2 * f[2][2]) / whole;
    }
    std::optional<double> highest;
    for (size_t i = 0; i < 3; ++i) {
        const std::optional<double> z = onSegment(f[i], f[(i + 1) % 3], x, y);
        highest = z && (!highest || *z > *highest) ? z : highest;
    }
    return highest;
}

Corner randomCorner(QRandomGenerator &random, int lines)
{
    // Few lines make many facets that are walls, slivers or share an edge with the grid.
    const int step = side / lines;
    return {random.bounded(lines + 1) * step, random.bounded(lines + 1) * step,
            random.bounded(-40, 41)};
}

std::vector<Facet> randomFacets(QRandomGenerator &random, int count, int lines)
{
    std::vector<Facet> facets = frame;
    for (int i = 0; i < count; ++i)
        facets.push_back({randomCorner(random, lines), randomCorner(random, lines),
                          randomCorner(random, lines)});
    return facets;
}

FloatGrid rasterised(const FacetShape &shape)
{
    Progress silent;
    const Result<LayerGrid> grid = rasterise(shape, silent);
    if (!grid)
        return {};
    const std::span<const float> values = grid.value().view().span();
    return {grid.value().width, grid.value().height, {values.begin(), values.end()}};
}

FloatGrid randomHeights(QRandomGenerator &random, bool withEmpty)
{
    FloatGrid grid(237, 123);
    for (float &height : grid.values) {
        height = std::pow(10.0F, static_cast<float>(random.bounded(9)) - 6.0F) *
                 (0.1F + static_cast<float>(random.generateDouble()));
        height = withEmpty && random.bounded(4) == 0 ? 0.0F : height;
    }
    return grid;
}

struct CancelAtOnce : Progress
{
    bool cancelled() const override { return true; }
};

} // namespace

class TestRasterise : public QObject
{
    Q_OBJECT

private slots:
    void everyGridPoint_data();
    void everyGridPoint();
    void betweenGridPoints();
    void nearlyOnTheGrid();
    void laterFacetsKeepWhatIsDrawn();
    void exportedReliefComesBack_data();
    void exportedReliefComesBack();
    void refusals();
    void opensAnImport();
    void endsAnImportAtOnce_data();
    void endsAnImportAtOnce();
};

void TestRasterise::everyGridPoint_data()
{
    QTest::addColumn<int>("lines");
    QTest::addColumn<double>("unitsPerCell");
    for (const int lines : {2, 4, 24}) {
        QTest::addRow("%d lines", lines) << lines << 1.0 / 128;
        QTest::addRow("%d lines, with rounding", lines) << lines << 0.1 / 128;
    }
}

void TestRasterise::everyGridPoint()
{
    QFETCH(int, lines);
    QFETCH(double, unitsPerCell);
    QRandomGenerator random(11);
    for (int n = 0; n < 200; ++n) {
        const std::vector<Facet> facets = randomFacets(random, 3, lines);
        FacetShape shape = shapeOf(facets, unitsPerCell);
        const double factor = 1.0 / (128.0 * unitsPerCell);
        shape.setScale({factor, factor, factor});
        const FloatGrid grid = rasterised(shape);
        QCOMPARE(grid.width, side + 1);
        QCOMPARE(grid.height, side + 1);
        for (int i = 0; i < grid.cells(); ++i) {
            double expected = 0.0;
            for (const Facet &facet : facets) {
                const auto z = heightOver(facet, i % grid.width, i / grid.width);
                expected = std::max(expected, z ? *z + 50.0 : 0.0);
            }
            QVERIFY2(std::abs(grid.values[static_cast<size_t>(i)] - expected) < 2e-5,
                     qPrintable(QStringLiteral("try %1 cell %2: %3 instead of %4")
                                    .arg(n)
                                    .arg(i)
                                    .arg(grid.values[static_cast<size_t>(i)])
                                    .arg(expected)));
        }
    }
}

void TestRasterise::betweenGridPoints()
{
    // A plane cut into slivers at places that fit no grid: no seam, and the plane's own height.
    TriangleMesh mesh;
    QRandomGenerator random(5);
    const auto add = [&mesh](double x, double y) {
        mesh.positions.push_back({x / 128, y / 128, (3.0 * x + 2.0 * y) / 128});
        return static_cast<quint32>(mesh.positions.size() - 1);
    };
    const quint32 low = add(0.0, 0.0);
    quint32 before = add(100.0, 0.0);
    for (double along = 0.0; along < 100.0;) {
        along = std::min(100.0, along + random.generateDouble() * 0.4);
        const quint32 next = add(100.0, along);
        mesh.triangles.push_back({low, before, next});
        before = next;
    }
    const FloatGrid grid = rasterised({std::move(mesh), 0});
    for (int r = 0; r < grid.height; ++r) {
        for (int c = 0; c < grid.width; ++c) {
            const double expected = c >= r ? 3.0 * c + 2.0 * r : 0.0;
            QVERIFY(std::abs(grid.row(r)[c] - expected) < 1e-4);
        }
    }
}

void TestRasterise::nearlyOnTheGrid()
{
    // The upper edge of a facet rises from just below row 2 to just above it. Grid points of that
    // row count that are nearer than the tolerance to the edge, although the facet ends before.
    for (const int columns : {8, 80}) {
        const double tilt = 5e-6;
        TriangleMesh mesh;
        mesh.positions = {{0, 2 - tilt, 4},
                          {columns + 0.0, 2 + tilt, 4},
                          {columns / 2.0, 0, 4},
                          {0, 0, 0},
                          {1, 3, 0}};
        for (MeshPoint &point : mesh.positions) {
            for (double &value : point)
                value /= 128;
        }
        mesh.triangles = {{0, 1, 2}, {3, 4, 4}};
        const FloatGrid grid = rasterised({std::move(mesh), 0});
        for (int c = 1; c < columns; ++c) {
            const double outside = tilt * (1.0 - 2.0 * c / columns);
            if (std::abs(outside - 1e-6) > 4e-7)
                QVERIFY2(grid.row(2)[c] == (outside < 1e-6 ? 4.0F : 0.0F),
                         QByteArray::number(c) + " of " + QByteArray::number(columns));
        }
    }
}

void TestRasterise::laterFacetsKeepWhatIsDrawn()
{
    // More than the 2^19 facets that are sorted together at first; those behind the first two lie
    // below them.
    constexpr int high = 9;
    std::vector<Facet> facets = frame;
    for (Facet &facet : facets) {
        for (Corner &corner : facet)
            corner[2] = high;
    }
    facets.push_back({{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}});
    TriangleMesh mesh = shapeOf(facets, 1.0 / 128).mesh();
    const MeshTriangle floor = mesh.triangles.back();
    mesh.triangles.resize(600'000, floor);
    const FloatGrid grid = rasterised({std::move(mesh), 0});
    QCOMPARE(grid.values, std::vector<float>((side + 1) * (side + 1), float{high}));
}

void TestRasterise::exportedReliefComesBack_data()
{
    QTest::addColumn<bool>("withEmpty");
    QTest::newRow("with empty cells") << true;
    QTest::newRow("without") << false;
}

void TestRasterise::exportedReliefComesBack()
{
    QFETCH(bool, withEmpty);
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.stl");
    QRandomGenerator random(2);
    const FloatGrid heights = randomHeights(random, withEmpty);
    Relief relief(heights.width, heights.height);
    std::copy(heights.values.begin(), heights.values.end(), relief.heights().data());
    QVERIFY(exportGridStl(relief, path));
    Progress silent;
    Result<ReadMesh> read = readMesh(path, {}, silent);
    QVERIFY(read);
    const FloatGrid grid = rasterised({read.take().mesh, 0});
    QCOMPARE(grid.width, heights.width);
    QCOMPARE(grid.height, heights.height);
    const float lowest = *std::min_element(heights.values.begin(), heights.values.end());
    for (size_t i = 0; i < grid.values.size(); ++i) {
        const auto expected = static_cast<float>(static_cast<double>(heights.values[i]) - lowest);
        QVERIFY2(grid.values[i] == expected, QByteArray::number(expected)); // to the last bit
    }
}

void TestRasterise::refusals()
{
    const auto sentence = [](const std::vector<Facet> &facets, double unitsPerCell) {
        Progress silent;
        const Result<LayerGrid> grid = rasterise(shapeOf(facets, unitsPerCell), silent);
        return grid ? QString() : grid.failure().sentence;
    };
    const QString flat = QStringLiteral("Error! The model has no extent in x or y");
    QCOMPARE(sentence({{{{0, 0, 0}, {5, 0, 9}, {9, 0, 0}}}}, 1.0), flat);
    QCOMPARE(sentence({{{{4, 0, 0}, {4, 5, 9}, {4, 9, 0}}}}, 1.0), flat);
    QCOMPARE(sentence({{{{0, 0, 0}, {40, 0, 9}, {0, 40, 0}}}}, 1.0),
             sizeLimitFailure(1600.0).sentence);
    TriangleMesh thread;
    thread.positions = {{0, 0, 0}, {1e9, 0, 0}, {0, 1e-7, 1}};
    thread.triangles = {{0, 1, 2}};
    Progress silent;
    QVERIFY(!rasterise({thread, 0}, silent));
    CancelAtOnce cancel;
    const Result<LayerGrid> cancelled = rasterise(shapeOf(frame, 1.0 / 128), cancel);
    QVERIFY(!cancelled && cancelled.failure().sentence.isEmpty());
}

void TestRasterise::opensAnImport()
{
    Progress silent;
    const FacetShape shape = shapeOf({{{{0, 0, 0}, {8, 0, 4}, {0, 8, 2}}}}, 1.0 / 128);
    Result<std::unique_ptr<Relief>> relief = importShape(shape, {}, silent);
    QVERIFY(relief);
    const std::unique_ptr<Relief> made = relief.take();
    QCOMPARE(made->width(), 9);
    QCOMPARE(made->heightAt(8, 0), 4.0F);
    QCOMPARE(made->heightAt(0, 8), 2.0F);
    QVERIFY(made->source() != nullptr);
}

void TestRasterise::endsAnImportAtOnce_data()
{
    QTest::addColumn<bool>("flipY");
    QTest::newRow("heights in place of the values") << false;
    QTest::newRow("heights beside them") << true;
}

void TestRasterise::endsAnImportAtOnce()
{
    QFETCH(bool, flipY);
    Progress silent;
    std::optional<FacetShape> shape = shapeOf({{{{0, 0, 0}, {8, 0, 4}, {0, 8, 2}}}}, 1.0 / 128);
    const ImportSettings settings{.flipY = flipY, .smoothing = 0.5, .depth = 8.0};
    const std::unique_ptr<Relief> open = importShape(*shape, {settings}, silent).take();
    ShapeImport import{.settings = settings, .accepted = true, .heightsOnly = true};
    const std::unique_ptr<Relief> only = importShape(*shape, import, silent).take();
    QVERIFY(!only->referenceLayer().written());
    import.heightsOnly = false;
    import.shapeDone = [&shape] { shape.reset();
};
const std::unique_ptr<Relief> ended = importShape(*shape, import, silent).take();
QVERIFY(!shape);
QVERIFY(!ended->source());
QCOMPARE(ended->rangeMaximum, open->rangeMaximum);
for (qsizetype cell = 0; cell < open->cells(); ++cell) {
    QCOMPARE(only->heightAt(cell), open->heightAt(cell));
    QCOMPARE(ended->heightAt(cell), open->heightAt(cell));
    QCOMPARE(ended->referenceLayer().constData()[cell], open->heightAt(cell));
}
}

QTEST_GUILESS_MAIN(TestRasterise)
#include "tst_rasterise.moc"
