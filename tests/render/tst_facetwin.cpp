#include "render/meshes/gridfacets.h"
#include "render/meshes/pixelfacets.h"
#include "render/meshes/reliefmesh.h"
#include "render/views/facetwin.h"

#include <QtTest>

#include <cmath>

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

/// Pixels from the border of a facet to the middle of a pixel inside it, at most; negative when
/// all middles are outside.
double depthOfPixels(const std::array<QPointF, 3> &corners, const QRect &pixels)
{
    const auto cross = [](QPointF a, QPointF b) { return a.x() * b.y() - a.y() * b.x(); };
    const double turn = cross(corners[1] - corners[0], corners[2] - corners[0]) < 0.0 ? -1.0 : 1.0;
    double deepest = -1e9;
    for (int pixel = 0; pixel < pixels.width() * pixels.height(); ++pixel) {
        const int row = pixel / pixels.width();
        const QPointF middle =
            pixels.topLeft() + QPointF(pixel - row * pixels.width() + 0.5, row + 0.5);
        double depth = 1e9;
        for (size_t i = 0; i < 3; ++i) {
            const QPointF edge = corners[(i + 1) % 3] - corners[i];
            depth = std::min(depth, turn * cross(edge, middle - corners[i]) /
                                        std::hypot(edge.x(), edge.y()));
        }
        deepest = std::max(deepest, depth);
    }
    return deepest;
}

/// The same with the facets of the strips of every step-th vertex.
TriangleMesh gridPlate(quint32 squares, double size, int step)
{
    TriangleMesh mesh = plate(squares, size);
    std::vector<uint32_t> strips;
    const int side = static_cast<int>(squares) + 1;
    appendStrips(strips, side, side, step);
    mesh.triangles.clear();
    for (size_t i = 2; i < strips.size(); ++i) {
        const MeshTriangle facet{strips[i - 2], strips[i - 1], strips[i]};
        if (*std::max_element(facet.begin(), facet.end()) < mesh.positions.size())
            mesh.triangles.push_back(facet);
    }
    return mesh;
}

constexpr Matrix turned = {0.9, 0.5, 0, 0, -0.4, 0.8, 0, 0, 0, 0, 1, 0, 0.3, 0.2, 0, 1};

/// Of a plate 3 long and wide in a picture of 40 x 32 pixels by `turned`: of these corners every
/// facet over the middle of one of the pixels is there, none that is clearly between them, and all
/// in their order.
void verifySeen(const TriangleMesh &mesh, const std::vector<uint32_t> &seen, const QRect &pixels)
{
    const FacetFrame frame = frameOf({{0.0, 0.0, 0.0}, {3.0, 3.0, 0.0}});
    const auto placeOf = [&](quint32 corner) {
        const auto [x, y, z] = frame.at(mesh.positions[corner]);
        return QPointF((0.9 * x - 0.4 * y + 0.3 + 1.0) * 20.0,
                       (0.5 * x + 0.8 * y + 0.2 + 1.0) * 16.0);
    };
    auto next = seen.begin();
    for (const MeshTriangle &facet : mesh.triangles) {
        const bool kept =
            next != seen.end() && std::is_permutation(facet.begin(), facet.end(), next);
        next += kept ? 3 : 0;
        const double depth =
            depthOfPixels({placeOf(facet[0]), placeOf(facet[1]), placeOf(facet[2])}, pixels);
        QVERIFY2(kept ? depth > -0.1 : depth < 0.0, qPrintable(QString::number(depth)));
    }
    QVERIFY(next == seen.end());
    QVERIFY(seen.size() < mesh.triangles.size());
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
    void facetsBetweenPixelsAreLeftOut();
    void facetsOfAGridBetweenPixelsAreLeftOut_data();
    void facetsOfAGridBetweenPixelsAreLeftOut();
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

// Turned and larger than the picture of 40 x 32 pixels, with facets of about half a pixel.
void TestFacetWin::facetsBetweenPixelsAreLeftOut()
{
    const TriangleMesh mesh = plate(60, 3.0);
    FacetPicture picture{frameOf(boxOf(mesh)), turned, {40, 32}};
    verifySeen(mesh, facetsOverPixels(mesh, picture), QRect(0, 0, 40, 32));
}

void TestFacetWin::facetsOfAGridBetweenPixelsAreLeftOut_data()
{
    QTest::addColumn<int>("squares");
    QTest::addColumn<int>("step");
    QTest::newRow("every vertex") << 60 << 1;
    QTest::newRow("every second one and the last") << 119 << 2;
}

void TestFacetWin::facetsOfAGridBetweenPixelsAreLeftOut()
{
    QFETCH(int, squares);
    QFETCH(int, step);
    const TriangleMesh mesh = gridPlate(static_cast<quint32>(squares), 3.0, step);
    const std::vector<float> positions = facetVertices(mesh, frameOf(boxOf(mesh)));
    const QRect part(3, 5, 30, 20);
    const GridPicture picture{positions, squares + 1, squares + 1, step, turned, {40, 32}, part};
    verifySeen(mesh, facetsOverPixels(picture, 0, squares), part);
    // Of the rows in the middle alone.
    const TriangleMesh few{mesh.positions,
                           {mesh.triangles.begin() + 120 * 20, mesh.triangles.end() - 120 * 5}};
    verifySeen(few, facetsOverPixels(picture, 20 * step, 55 * step), part);
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
