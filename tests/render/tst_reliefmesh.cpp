#include "relief/grid/relief.h"
#include "render/meshes/reliefmesh.h"

#include <QTest>

#include <cmath>
#include <random>

using namespace marlowen;

namespace {

std::unique_ptr<Relief> bumpy(int width, int height)
{
    auto relief = std::make_unique<Relief>(width, height);
    std::mt19937 random(7);
    std::uniform_real_distribution<float> values(0.0F, 30.0F);
    for (qsizetype i = 0; i < relief->cells(); ++i)
        relief->heights().data()[i] = values(random);
    return relief;
}

// Height of a cell, those beyond the edge counting as the edge cell.
double heightNear(const Relief &relief, int x, int y)
{
    return double(relief.heightAt(std::clamp(x, 0, relief.width() - 1),
                                  std::clamp(y, 0, relief.height() - 1)));
}

// The vertex of a cell by the formulas, in doubles.
std::array<double, 6> expectedVertex(const Relief &relief, int x, int y)
{
    const auto h = [&](int dx, int dy) { return heightNear(relief, x + dx, y + dy); };
    const double s = relief.zScale;
    return {x - relief.width() / 2.0,
            y - relief.height() / 2.0,
            h(0, 0) * s,
            s * (2 * (h(-1, 0) - h(1, 0)) + h(-1, -1) - h(1, 1) + h(0, 1) - h(0, -1)) / 6,
            s * (2 * (h(0, -1) - h(0, 1)) + h(-1, -1) - h(1, 1) + h(1, 0) - h(-1, 0)) / 6,
            1.0};
}

// The mean slopes of the step x step cells around a vertex, as a normal's x and y.
std::array<double, 2> meanSlopes(const Relief &relief, QPoint cell, int step)
{
    const QRect block(cell.x() - step / 2, cell.y() - step / 2, step, step);
    const QRect cells = block & relief.rect();
    std::array<double, 2> sum{};
    for (int y = cells.top(); y <= cells.bottom(); ++y) {
        for (int x = cells.left(); x <= cells.right(); ++x) {
            sum[0] += heightNear(relief, x - 1, y) - heightNear(relief, x + 1, y);
            sum[1] += heightNear(relief, x, y - 1) - heightNear(relief, x, y + 1);
        }
    }
    const double divisor = 2.0 * cells.width() * cells.height() / relief.zScale;
    return {sum[0] / divisor, sum[1] / divisor};
}

bool vertexIs(ReliefMesh &mesh, const Relief &relief, int i, int j)
{
    const int x = mesh.region().x() + i * mesh.step();
    const int y = mesh.region().y() + j * mesh.step();
    const auto vertex = static_cast<size_t>(j * mesh.columns() + i);
    auto expected = expectedVertex(relief, x, y);
    if (mesh.step() > 1) {
        const std::array<double, 2> slopes = meanSlopes(relief, {x, y}, mesh.step());
        std::copy(slopes.begin(), slopes.end(), expected.begin() + 3);
    }
    for (size_t k = 0; k < 3; ++k) {
        if (std::abs(double(mesh.positions()[3 * vertex + k]) - expected[k]) > 1e-4 ||
            std::abs(double(mesh.normals()[3 * vertex + k]) - expected[3 + k]) > 1e-4)
            return false;
    }
    return true;
}

struct Copy
{
    std::vector<float> values;
    explicit Copy(ReliefMesh &mesh)
    {
        const auto count = static_cast<ptrdiff_t>(mesh.vertexCount());
        values.assign(mesh.positions(), mesh.positions() + 3 * count);
        values.insert(values.end(), mesh.normals(), mesh.normals() + 3 * count);
        values.insert(values.end(), mesh.selection(), mesh.selection() + count);
    }
};

} // namespace

class ReliefMeshTest : public QObject
{
    Q_OBJECT

private slots:
    void strips()
    {
        std::vector<uint32_t> indices;
        appendStrips(indices, 3, 3);
        const std::vector<uint32_t> expected = {3, 0, 4, 1, 5, 2, 0xFFFFFFFF,
                                                6, 3, 7, 4, 8, 5, 0xFFFFFFFF};
        QCOMPARE(indices, expected);
        // Every second column and row, and the last of each.
        indices.clear();
        appendStrips(indices, 4, 3, 2);
        const std::vector<uint32_t> coarse = {8, 0, 10, 2, 11, 3, 0xFFFFFFFF};
        QCOMPARE(indices, coarse);
        indices.clear();
        appendStrips(indices, 5, 1);
        appendStrips(indices, 0, 0);
        QVERIFY(indices.empty());
    }

    void vertices_data()
    {
        QTest::addColumn<QSize>("grid");
        QTest::addColumn<QRect>("region");
        QTest::addColumn<int>("step");
        QTest::newRow("whole") << QSize(37, 21) << QRect(0, 0, 37, 21) << 1;
        QTest::newRow("inside") << QSize(37, 21) << QRect(5, 3, 20, 11) << 1;
        QTest::newRow("every third") << QSize(37, 22) << QRect(0, 0, 37, 22) << 3;
        QTest::newRow("steps in a part") << QSize(64, 64) << QRect(10, 7, 50, 57) << 4;
        QTest::newRow("one cell") << QSize(1, 1) << QRect(0, 0, 1, 1) << 1;
        QTest::newRow("one column") << QSize(1, 4000) << QRect(0, 0, 1, 4000) << 5;
        QTest::newRow("one row") << QSize(300, 1) << QRect(0, 0, 300, 1) << 1;
        QTest::newRow("two columns") << QSize(2, 9) << QRect(0, 0, 2, 9) << 1;
    }

    void vertices()
    {
        QFETCH(QSize, grid);
        QFETCH(QRect, region);
        QFETCH(int, step);
        const auto relief = bumpy(grid.width(), grid.height());
        relief->zScale = 1.5;
        ReliefMesh mesh;
        QVERIFY(mesh.layOut(region, step, true));
        QCOMPARE(mesh.columns(), int(std::ceil(region.width() / double(step))));
        QCOMPARE(mesh.strips(mesh.facets()).count,
                 uint32_t((2 * mesh.columns() + 1) * (mesh.rows() - 1)));
        fillSculptVertices(mesh, *relief, mesh.vertices());
        for (int j = 0; j < mesh.rows(); ++j)
            for (int i = 0; i < mesh.columns(); ++i)
                QVERIFY2(vertexIs(mesh, *relief, i, j),
                         qPrintable(QString("%1, %2").arg(i).arg(j)));
    }

    void maskIsANegativeSelection()
    {
        Relief relief(8, 2);
        ReliefMesh mesh;
        mesh.layOut(relief.rect(), 2, true);
        fillSculptVertices(mesh, relief, mesh.vertices());
        QCOMPARE(mesh.selection()[1], 0.0F);
        relief.maskLayer().data()[2] = 0.25F;
        relief.maskLayer().data()[4] = 0.25F;
        relief.selectionLayer().data()[4] = 1.0F;
        fillSculptVertices(mesh, relief, mesh.vertices());
        const std::vector<float> expected = {0.0F, -0.25F, 1.0F, 0.0F};
        QCOMPARE(std::vector<float>(mesh.selection(), mesh.selection() + 4), expected);
    }

    void arraysAreKeptWhileTheGridIsTheSame()
    {
        ReliefMesh mesh;
        QVERIFY(mesh.layOut({0, 0, 40, 30}, 1, true));
        const float *positions = mesh.positions();
        QVERIFY(!mesh.layOut({5, 5, 40, 30}, 1, true));
        QVERIFY(!mesh.layOut({0, 0, 80, 60}, 2, true));
        QCOMPARE(mesh.positions(), positions);
        // As many vertices, other strips.
        QVERIFY(mesh.layOut({0, 0, 30, 40}, 1, true));
        QCOMPARE(mesh.arrays().indices[0], 30U);
        mesh.clear();
        QCOMPARE(mesh.vertexCount(), 0U);
        QVERIFY(mesh.verticesTouchedBy(QRect(0, 0, 9, 9)).isEmpty());
        mesh.layOut({0, 0, 4, 4}, 1, false);
        QVERIFY(!mesh.normals());
    }

    void refreshEqualsRebuild_data()
    {
        QTest::addColumn<int>("step");
        QTest::addColumn<QRect>("changed");
        QTest::newRow("every cell") << 1 << QRect(20, 30, 9, 5);
        QTest::newRow("at the corner") << 1 << QRect(0, 0, 3, 3);
        QTest::newRow("beyond the region") << 1 << QRect(85, 60, 30, 20);
        QTest::newRow("between vertices") << 5 << QRect(21, 31, 2, 2);
        QTest::newRow("one before a vertex") << 5 << QRect(24, 34, 1, 1);
        QTest::newRow("one after a vertex") << 5 << QRect(26, 36, 1, 1);
        QTest::newRow("many") << 3 << QRect(11, 13, 50, 40);
    }

    void refreshEqualsRebuild()
    {
        QFETCH(int, step);
        QFETCH(QRect, changed);
        const auto relief = bumpy(100, 80);
        ReliefMesh mesh;
        mesh.layOut(QRect(0, 0, 90, 70), step, true);
        fillSculptVertices(mesh, *relief, mesh.vertices());
        for (int y = changed.top(); y <= changed.bottom(); ++y)
            for (int x = changed.left(); x <= changed.right(); ++x)
                if (relief->contains(x, y)) {
                    relief->heights().data()[relief->index(x, y)] += 11.0F;
                    relief->maskLayer().data()[relief->index(x, y)] = 1.0F;
                }
        int refreshed = 0;
        for (const QRect &rect : mesh.verticesTouchedBy(changed)) {
            QVERIFY(mesh.vertices().contains(rect));
            fillSculptVertices(mesh, *relief, rect);
            refreshed += rect.width() * rect.height();
        }
        QVERIFY(refreshed <=
                ((changed.width() + 1) / step + 2) * ((changed.height() + 1) / step + 2) * 2);
        const Copy partial(mesh);
        fillSculptVertices(mesh, *relief, mesh.vertices());
        QVERIFY(partial.values == Copy(mesh).values);
    }
};

QTEST_MAIN(ReliefMeshTest)
#include "tst_reliefmesh.moc"
