#include "relief/grid/relief.h"
#include "render/meshes/flatvertices.h"
#include "render/meshes/reliefmesh.h"

#include <QTest>

#include <cmath>

using namespace marlowen;

class TestFlatVertices : public QObject
{
    Q_OBJECT

private slots:
    void levels_data();
    void levels();
    void verticesStandOnTheirCells();
};

void TestFlatVertices::levels_data()
{
    QTest::addColumn<double>("minimum");
    QTest::addColumn<double>("maximum");
    QTest::addColumn<double>("count");
    QTest::addColumn<double>("height");
    QTest::addColumn<double>("shown");
    QTest::newRow("empty") << 0.0 << 8.0 << 2.0 << 0.0 << 0.0;
    QTest::newRow("lowest of two") << 0.0 << 8.0 << 2.0 << 0.001 << 4.0;
    QTest::newRow("end of a level") << 0.0 << 8.0 << 2.0 << 4.0 << 4.0;
    QTest::newRow("upper of two") << 0.0 << 8.0 << 2.0 << 4.001 << 8.0;
    QTest::newRow("highest") << 0.0 << 8.0 << 2.0 << 8.0 << 8.0;
    QTest::newRow("raised minimum") << 2.0 << 10.0 << 4.0 << 5.0 << 6.0;
    QTest::newRow("the minimum itself") << 2.0 << 10.0 << 4.0 << 2.0 << 2.0;
    QTest::newRow("empty with a raised minimum") << 2.0 << 10.0 << 4.0 << 0.0 << 2.0;
    QTest::newRow("above an old range") << 0.0 << 8.0 << 2.0 << 11.0 << 12.0;
    QTest::newRow("below an old range") << 4.0 << 8.0 << 4.0 << 2.5 << 3.0;
    QTest::newRow("no range") << 5.0 << 5.0 << 64.0 << 5.0 << 5.0;
    QTest::newRow("fraction of a level") << 0.0 << 10.0 << 2.5 << 9.0 << 12.0;
}

void TestFlatVertices::levels()
{
    QFETCH(double, minimum);
    QFETCH(double, maximum);
    QFETCH(double, count);
    QFETCH(double, height);
    QFETCH(double, shown);
    QCOMPARE(levelledHeight(height, {minimum, maximum, count}), shown);
}

void TestFlatVertices::verticesStandOnTheirCells()
{
    Relief relief(11, 8);
    relief.zScale = 3.0;
    relief.heights().data()[relief.index(7, 5)] = 3.0F;
    relief.selectionLayer().data()[relief.index(4, 3)] = 1.0F;
    relief.maskLayer().data()[relief.index(7, 5)] = 1.0F;
    ReliefMesh mesh;
    mesh.layOut(QRect(1, 1, 9, 7), 3, false);
    QCOMPARE(mesh.columns(), 3);
    fillFlatVertices(mesh, relief, mesh.vertices(), {0.0, 8.0, 4.0});
    // Vertex (2, 1) stands on cell (7, 4), vertex (1, 1) on the selected cell (4, 4)'s row above.
    const float *corner = mesh.positions();
    QCOMPARE(corner[0], 1.0F - 5.5F);
    QCOMPARE(corner[1], 1.0F - 4.0F);
    QCOMPARE(corner[2], 0.0F);

    mesh.layOut(QRect(1, 2, 9, 6), 3, false);
    fillFlatVertices(mesh, relief, mesh.vertices(), {0.0, 8.0, 4.0});
    const float *raised = mesh.positions() + 3 * (1 * mesh.columns() + 2);
    QCOMPARE(raised[0], 7.0F - 5.5F);
    QCOMPARE(raised[1], 5.0F - 4.0F);
    QCOMPARE(raised[2], 12.0F);
    QCOMPARE(mesh.selection()[1 * mesh.columns() + 2], -1.0F); // masked
    mesh.layOut(QRect(1, 0, 9, 8), 3, false);
    fillFlatVertices(mesh, relief, mesh.vertices(), {0.0, 8.0, 4.0});
    QCOMPARE(mesh.selection()[1 * mesh.columns() + 1], 1.0F);
}

QTEST_GUILESS_MAIN(TestFlatVertices)
#include "tst_flatvertices.moc"
