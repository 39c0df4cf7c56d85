#include "render/views/facetwin.h"

#include <QtTest>

using namespace marlowen;

namespace {

/// A plate of squares x squares pairs of facets that look up, `size` long and wide.
TriangleMesh plate(quint32 squares, double size)
{
    TriangleMesh mesh;
    for (quint32 r = 0; r <= squares; ++r) {
        for (quint32 c = 0; c <= squares; ++c)
            mesh.positions.push_back({size * c / squares, size * r / squares, 0.0});
    }
    for (quint32 r = 0; r < squares; ++r) {
        for (quint32 c = 0; c < squares; ++c) {
            const quint32 a = r * (squares + 1) + c;
            const quint32 b = a + squares + 1;
            mesh.triangles.push_back({a, a + 1, b});
            mesh.triangles.push_back({b, a + 1, b + 1});
        }
    }
    return mesh;
}

bool isReddish(QRgb color)
{
    return qRed(color) > qBlue(color) + 40;
}

} // namespace

class TestFacetWin : public QObject
{
    Q_OBJECT

private slots:
    void sceneShowsAnyModelAtOneSize_data();
    void sceneShowsAnyModelAtOneSize();
    void coarseFacetsKeepTheBoxAndTheLimit();
    void backSidesHaveTheirOwnColour();
};

void TestFacetWin::sceneShowsAnyModelAtOneSize_data()
{
    QTest::addColumn<double>("size");
    QTest::newRow("ordinary") << 12.0;
    QTest::newRow("tiny") << 1e-30;
    QTest::newRow("huge") << 1.7e308;
}

void TestFacetWin::sceneShowsAnyModelAtOneSize()
{
    QFETCH(double, size);
    const ModelBox file{{-size, 0.0, 0.0}, {size, size, 0.0}};
    // Turned about z, the long side made half as long.
    const ModelPlacement placement{{1, 0, 2}, {-1.0, 0.5, 1.0}};
    const FacetScene scene = sceneOf(file, placement);
    QCOMPARE(scene.box.width, facetSceneSide);
    QCOMPARE(scene.box.height, facetSceneSide);
    const std::array<float, 3> corner = frameOf(file).at({size, size, 0.0});
    const Matrix &m = scene.placement;
    QCOMPARE(m[0] * double(corner[0]) + m[4] * double(corner[1]), -facetSceneSide / 2.0);
    QCOMPARE(m[1] * double(corner[0]) + m[5] * double(corner[1]), facetSceneSide / 2.0);
}

void TestFacetWin::coarseFacetsKeepTheBoxAndTheLimit()
{
    const TriangleMesh mesh = plate(300, 3.0);
    const FacetFrame frame = frameOf(boxOf(mesh));
    const CoarseFacets coarse = coarsened(mesh, frame, 5000);
    QVERIFY(coarse.corners.size() / 3 <= 5000);
    QVERIFY(coarse.corners.size() / 3 > 2500);
    QVERIFY(*std::max_element(coarse.corners.begin(), coarse.corners.end()) <
            coarse.positions.size() / 3);
    const auto [low, high] = std::minmax_element(coarse.positions.begin(), coarse.positions.end());
    QVERIFY(*low < -0.95F && *high > 0.95F);
}

void TestFacetWin::backSidesHaveTheirOwnColour()
{
    const TriangleMesh mesh = plate(4, 2.0);
    FacetWin view;
    view.resize(400, 300);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    view.setMesh(&mesh, boxOf(mesh));
    FacetWin::Stand stand;
    stand.sizes[0] = QStringLiteral("2 in.");
    const auto middle = [&] {
        view.setStand(stand);
        view.zoomAll();
        return view.grabFramebuffer().pixel(200, 150);
    };
    QVERIFY(!isReddish(middle()));
    QVERIFY(view.pick({200, 150}).hit);
    stand.inverted = true;
    QVERIFY(isReddish(middle()));
    stand.placement = {{0, 1, 2}, {-1.0, 1.0, -1.0}}; // turned over
    QVERIFY(!isReddish(middle()));
    view.setMesh(nullptr);
    view.grabFramebuffer();
    QVERIFY(!view.pick({200, 150}).hit);
}

QTEST_MAIN(TestFacetWin)
#include "tst_facetwin.moc"
