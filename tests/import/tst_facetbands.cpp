#include "import/mesh/facetbands.h"
#include "relief/grid/floatgrid.h"

#include <QRandomGenerator>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <numeric>

using namespace marlowen;

/// The same facets drawn in bands and as a whole, and by each set of instructions.
class TestFacetBands : public QObject
{
    Q_OBJECT

private slots:
    void bandsGiveTheWhole();
    void sameOnEveryMachine_data();
    void sameOnEveryMachine();
};

void TestFacetBands::bandsGiveTheWhole()
{
    // Facets that are drawn as they come and, after them, facets that lie anywhere.
    constexpr int columns = 333, rows = 2500;
    constexpr quint32 count = 10'000;
    QRandomGenerator random(4);
    TriangleMesh mesh;
    for (quint32 n = 0; n < count; ++n) {
        const double low = n < count / 2 ? 2.0 * rows / count * n : random.bounded(double(rows));
        const double size = n % 100 == 0 ? 200.0 : 30.0;
        for (int i = 0; i < 3; ++i)
            mesh.positions.push_back({random.bounded(columns - 1.0),
                                      std::min(low + random.bounded(size), rows - 1.0),
                                      random.bounded(9.0)});
        mesh.triangles.push_back({3 * n, 3 * n + 1, 3 * n + 2});
    }
    std::vector<quint32> numbers(count);
    std::iota(numbers.begin(), numbers.end(), 0);
    FloatGrid whole(columns, rows), banded(columns, rows);
    const CellPlacement placement{{}, {}, 1.0};
    const auto drawn = [&](FloatGrid &grid) {
        return FacetGrid{grid.values.data(), columns, rows, 0, rows};
    };
    drawFacetsHere().front()(mesh, numbers, placement, drawn(whole));
    Progress silent;
    QVERIFY(drawMesh(mesh, placement, drawn(banded), silent));
    QVERIFY(banded.values == whole.values);
}

void TestFacetBands::sameOnEveryMachine_data()
{
    QTest::addColumn<int>("columns");
    QTest::addColumn<double>("size");
    for (const int columns : {3, 20, 333}) {
        QTest::addRow("%d columns, facets of few cells", columns) << columns << 6.0;
        QTest::addRow("%d columns, of many", columns) << columns << 30.0;
        QTest::addRow("%d columns, of most rows", columns) << columns << 400.0;
    }
}

void TestFacetBands::sameOnEveryMachine()
{
    QFETCH(int, columns);
    QFETCH(double, size);
    constexpr int rows = 150;
    QRandomGenerator random(static_cast<quint32>(columns));
    TriangleMesh mesh;
    std::vector<quint32> numbers(999);
    std::iota(numbers.begin(), numbers.end(), 0);
    for (const quint32 number : numbers) {
        const MeshPoint middle{random.bounded(double(columns)), random.bounded(double(rows)), 5.0};
        for (int i = 0; i < 3; ++i) {
            MeshPoint corner = middle;
            for (double &place : corner)
                place += (random.generateDouble() - 0.5) * size;
            // Some lie on a grid line, some so near that they count as on it.
            if (random.bounded(3) == 0)
                corner[1] = std::round(corner[1]) + (random.bounded(3) - 1) * 0.9e-6;
            mesh.positions.push_back({std::clamp(corner[0], 0.0, columns - 1.0),
                                      std::clamp(corner[1], 0.0, rows - 1.0), corner[2]});
        }
        mesh.triangles.push_back({3 * number, 3 * number + 1, 3 * number + 2});
    }
    std::vector<FloatGrid> grids;
    for (const DrawFacets draw : drawFacetsHere()) {
        FloatGrid &grid = grids.emplace_back(columns, rows);
        draw(mesh, numbers, {{}, {}, 1.0}, {grid.values.data(), columns, rows, 0, rows});
        QCOMPARE(grid.values, grids.front().values);
    }
    QVERIFY(columns * rows - std::ranges::count(grids.front().values, 0.0F) > 200);
}

QTEST_APPLESS_MAIN(TestFacetBands)
#include "tst_facetbands.moc"
