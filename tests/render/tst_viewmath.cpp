#include "relief/grid/relief.h"
#include "relief/tools/alphabrush.h"
#include "relief/tools/tool.h"
#include "relief/tools/toolparams.h"
#include "render/camera/arcball.h"
#include "render/camera/axislock.h"
#include "render/camera/levelofdetail.h"
#include "render/overlays/footprint.h"
#include "render/overlays/gizmo.h"
#include "render/views/statustext.h"

#include <QTest>

#include <cmath>
#include <limits>

using namespace marlowen;

namespace {

Vector turned(const Quaternion &q, const Vector &v)
{
    const Matrix m = rotationMatrix(q);
    return {m[0] * v.x + m[4] * v.y + m[8] * v.z, m[1] * v.x + m[5] * v.y + m[9] * v.z,
            m[2] * v.x + m[6] * v.y + m[10] * v.z};
}

double distance(const Vector &a, const Vector &b)
{
    return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

bool isIdentity(const Matrix &m)
{
    double worst = 0.0;
    for (size_t i = 0; i < 16; ++i)
        worst = std::max(worst, std::abs(m[i] - identityMatrix()[i]));
    return worst < 1e-12;
}

const Quaternion skew = normalized({0.8, 0.3, -0.4, 0.2});
const SceneBox medal{800, 600, 0, 40};
const QSize window(640, 480);

} // namespace

class ViewMathTest : public QObject
{
    Q_OBJECT

private slots:
    void arcballFollowsThePointer()
    {
        Arcball ball;
        const QSizeF viewport(200, 100);
        QCOMPARE(ball.pointOnBall({0, 0}, viewport).z, 1.0);
        // The rim of each axis is half the viewport away; beyond it the rim is kept.
        QVERIFY(distance(ball.pointOnBall({100, 0}, viewport), {1, 0, 0}) < 1e-12);
        QVERIFY(distance(ball.pointOnBall({0, 90}, viewport), {0, 1, 0}) < 1e-12);

        ball.beginDrag({0, 0}, viewport);
        ball.dragTo({50, 0}, viewport); // 30 degrees of arc turn the model by 60
        const Vector front = turned(ball.rotation(), {0, 0, 1});
        QVERIFY(distance(front, {std::sin(M_PI / 3), 0, std::cos(M_PI / 3)}) < 1e-12);
        ball.endDrag();
        ball.beginDrag({50, 0}, viewport);
        ball.dragTo({0, 0}, viewport);
        QVERIFY(isIdentity(ball.matrix()));
    }

    void arcballFoldsDragsInOrder()
    {
        Arcball ball;
        const QSizeF viewport(100, 100);
        const QPointF ways[] = {{20, 5}, {-10, 30}, {44, -8}};
        Matrix expected = identityMatrix();
        for (const QPointF &way : ways) {
            Arcball single;
            single.beginDrag({0, 0}, viewport);
            single.dragTo(way, viewport);
            expected = multiplied(single.matrix(), expected);
            ball.beginDrag({0, 0}, viewport);
            ball.dragTo(way, viewport);
            ball.endDrag();
        }
        for (size_t i = 0; i < 16; ++i)
            QVERIFY(std::abs(ball.matrix()[i] - expected[i]) < 1e-12);
        ball.setRotation(skew);
        QCOMPARE(ball.rotation(), skew);
    }

    void projectionIsOneUnitAPixel()
    {
        const ViewMatrices plain = viewMatrices({}, medal, window);
        const Vector centre = project({}, plain);
        QCOMPARE(centre.x, 320.0);
        QCOMPARE(centre.y, 240.0);
        QCOMPARE(centre.z, 0.5);
        QCOMPARE(project({10, 20, 0}, plain).x, 330.0);
        // Panning down the screen moves the model down.
        const ViewMatrices moved = viewMatrices({identityMatrix(), 2.0, {5, 7}}, medal, window);
        QCOMPARE(project({10, 20, 0}, moved).x, 345.0);
        QCOMPARE(project({10, 20, 0}, moved).y, 240.0 - 7 + 40);

        const double d = std::sqrt(800.0 * 800 + 600.0 * 600 + 40.0 * 40);
        QCOMPARE(clipPlanes(medal, 3.0).near, -3 * d);
        QCOMPARE(clipPlanes({}, 3.0).far, 5000.0);
        // Thicker than wide, and far above the floor.
        QVERIFY(clipPlanes({10, 10, 400, 420}, 1.0).far > 420.0);
        QCOMPARE(modelviewOf({identityMatrix(), 0.0, {}})[0], 1.0);
    }

    void unprojectUndoesProject()
    {
        const ViewMatrices view =
            viewMatrices({rotationMatrix(skew), 1.7, {-31, 12}}, medal, window);
        for (const Vector &p : {Vector{}, Vector{-400, 300, 0}, Vector{17, -3, 40}}) {
            const Vector onScreen = project(p, view);
            QVERIFY(onScreen.z > 0.0 && onScreen.z < 1.0);
            QVERIFY(distance(unproject(onScreen, view), p) < 1e-6);
        }
        ViewMatrices broken = view;
        broken.modelview = {};
        QCOMPARE(unproject({1, 1, 0.5}, broken).x, 0.0);
    }

    void zoomToAllShowsEveryCorner()
    {
        const Camera all = zoomedToAll({rotationMatrix(skew), 1.0, {}}, medal, window);
        const ViewMatrices view = viewMatrices(all, medal, window);
        for (const double x : {-400.0, 400.0})
            for (const double y : {-300.0, 300.0})
                QVERIFY(QRectF(0, 0, 640, 480)
                            .contains({project({x, y, 0}, view).x, project({x, y, 0}, view).y}));
        QCOMPARE(zoomedToAll({}, {}, window).zoom, 1.0);
        QCOMPARE(zoomedToAll({identityMatrix(), 5.0, {}}, medal, {0, 480}).zoom, 5.0);
    }

    void visibleCellsFollowTheCamera()
    {
        const auto visible = [](const Camera &camera) {
            return visibleCells(medal, viewMatrices(camera, medal, window));
        };
        QCOMPARE(visible({}), QRect(QPoint(80, 60), QPoint(720, 540)));
        QCOMPARE(visible({identityMatrix(), 0.5, {}}), QRect(0, 0, 800, 600));
        // Panned right by 100: the left of the relief comes into sight.
        QCOMPARE(visible({identityMatrix(), 4.0, {400, 0}}).left(), 220);
        QVERIFY(visible({identityMatrix(), 1.0, {5000, 0}}).isEmpty());
    }

    void noVisibleCellIsMissed()
    {
        const ViewMatrices view =
            viewMatrices({rotationMatrix(skew), 3.0, {200, -100}}, medal, window);
        const QRect cells = visibleCells(medal, view);
        QVERIFY(!cells.isEmpty() && cells.width() < 800);
        for (int y = 0; y < 480; y += 40) {
            for (int x = 0; x < 640; x += 40) {
                // Walk along the line of sight through the box.
                const Vector near = unproject({double(x), double(y), 0.0}, view);
                const Vector far = unproject({double(x), double(y), 1.0}, view);
                for (int i = 0; i <= 1000; ++i) {
                    const double t = i / 1000.0;
                    const double z = near.z + t * (far.z - near.z);
                    const QPointF p(near.x + t * (far.x - near.x) + 400,
                                    near.y + t * (far.y - near.y) + 300);
                    if (z >= 0 && z <= 40 && QRectF(0, 0, 799, 599).contains(p))
                        QVERIFY(cells.contains(p.toPoint()));
                }
            }
        }
    }

    void levelOfDetail()
    {
        const QSize grid(4047, 4047);
        const QSize wide(1200, 800);
        QCOMPARE(layoutFor(QRect({0, 0}, grid), grid, wide).step, 5);
        const MeshLayout near = layoutFor(QRect(1000, 1000, 1200, 800), grid, wide);
        QCOMPARE(near.step, 1);
        QCOMPARE(near.region, QRect(760, 840, 1680, 1120));
        QCOMPARE(lodStepFor(QRect(0, 0, 1, 4000), {0, 0}), 4000);

        QVERIFY(needsRebuild({}, QRect(0, 0, 10, 10), grid, wide));
        QVERIFY(!needsRebuild(near, QRect(800, 900, 1200, 800), grid, wide));
        QVERIFY(needsRebuild(near, QRect(700, 900, 1200, 800), grid, wide));
        QVERIFY(!needsRebuild(near, {}, grid, wide));
        const MeshLayout whole{QRect({0, 0}, grid), 5};
        QVERIFY(!needsRebuild(whole, whole.region, grid, wide));
        QVERIFY(needsRebuild(whole, QRect(0, 0, 1200, 800), grid, wide));
    }

    void axisLockHoldsOneLine()
    {
        AxisLock lock;
        lock.start(true, {100, 100});
        QCOMPARE(lock.apply({102, 101}), QPoint(100, 100));
        QCOMPARE(lock.apply({103, 102}), QPoint(103, 100));
        QCOMPARE(lock.apply({90, 300}), QPoint(90, 100));
        lock.start(true, {100, 100});
        QCOMPARE(lock.apply({101, 97}), QPoint(100, 97));
        QCOMPARE(int(lock.state()), int(AxisLock::Vertical));
        lock.start(true, {100, 100});
        QCOMPARE(lock.apply({104, 104}), QPoint(104, 100)); // a tie is horizontal
        lock.start(false, {100, 100});
        QCOMPARE(lock.apply({150, 170}), QPoint(150, 170));
    }

    void gizmoFacesAnswerThePointer()
    {
        QCOMPARE(gizmoViewport({800, 600}), QRect(0, 0, 150, 150));
        QCOMPARE(gizmoViewport({900, 800}), QRect(0, 0, 200, 200));
        QCOMPARE(gizmoViewport({900, 60}), QRect(0, 0, 60, 60));
        QVERIFY(gizmoViewport({0, 0}).isEmpty());

        const QRect viewport(0, 0, 150, 150);
        const auto faceAt = [&](const Quaternion &q, QPointF fromCentre) {
            const ViewMatrices view = gizmoMatrices(rotationMatrix(q), viewport, 600);
            return gizmoFaceAt(QPointF(56, 544) + 0.8 * fromCentre, view);
        };
        for (int face = 1; face <= 6; ++face)
            QCOMPARE(faceAt(presetOrientation(face), {5, -9}), face);
        QCOMPARE(faceAt({}, {36, 36}), 1);
        QCOMPARE(faceAt({}, {39, 0}), -1);
        // Tipped towards the viewer, the top face lies above the front face.
        const Quaternion tipped = rotationAbout({1, 0, 0}, 45);
        QCOMPARE(faceAt(tipped, {0, 20}), 3);
        QCOMPARE(faceAt(tipped, {0, -20}), 1);
    }

    void footprintOutlines()
    {
        const Relief relief(300, 400);
        ToolParams tool;
        tool.size = 0.4;
        tool.aspect = 2.0;
        const FootprintShape round = footprintShape(tool, relief);
        QCOMPARE(round.radius, 20.0);
        const std::vector<QPointF> ellipse = footprintOutline(round, 2.0);
        QCOMPARE(ellipse.size(), size_t(2 * M_PI * 40));
        for (const QPointF &p : ellipse)
            QVERIFY(std::abs(std::hypot(p.x() / 20, p.y() / 10) - 1) < 1e-9);

        tool.form = Tool::Square;
        tool.angle = 90;
        const std::vector<QPointF> square = footprintOutline(footprintShape(tool, relief), 1.0);
        QCOMPARE(square.size(), size_t(4 * 40));
        for (const QPointF &p : square) {
            const bool side = std::abs(std::abs(p.x()) - 10) < 1e-9 && std::abs(p.y()) <= 20 + 1e-9;
            const bool end = std::abs(std::abs(p.y()) - 20) < 1e-9 && std::abs(p.x()) <= 10 + 1e-9;
            QVERIFY(side || end);
        }
        tool.aspect = std::numeric_limits<double>::quiet_NaN();
        QVERIFY(std::isfinite(footprintOutline(footprintShape(tool, relief), 1e6).back().y()));
    }

    void footprintFollowsTheTool()
    {
        ToolParams tool;
        tool.hardness = 0.5;
        QCOMPARE(innerRingFraction(tool), 0.5);
        for (const double hidden : {0.0, 0.05, 0.98, 1.0}) {
            tool.hardness = hidden;
            QCOMPARE(innerRingFraction(tool), 0.0);
        }
        QVERIFY(hasFootprint(Tool::Clay) && hasFootprint(Tool::Mask));
        QVERIFY(!hasFootprint(Tool::Sample) && !hasFootprint(Tool::None) && !hasFootprint(99));

        const float grey[] = {0, 1, 1, 0};
        AlphaBrush &alpha = AlphaBrush::instance();
        alpha.setImage({grey, 2, 2});
        QVERIFY(usesAlphaFootprint(tool, alpha));
        tool.type = Tool::Flatten;
        QVERIFY(!usesAlphaFootprint(tool, alpha));
        tool.type = Tool::Clay;
        alpha.mode = AlphaBrush::Tile;
        QVERIFY(!usesAlphaFootprint(tool, alpha));
        alpha.mode = AlphaBrush::Shape;
        alpha.setImage({});
        QVERIFY(!usesAlphaFootprint(tool, alpha));

        Relief relief(4, 4);
        relief.heights().data()[relief.index(3, 1)] = 5.0F;
        relief.zScale = 2.0;
        QCOMPARE(surfaceHeight(relief, {1.9, -0.5}), 10.0);
        QCOMPARE(surfaceHeight(relief, {2.0, -0.5}), 0.0);
    }

    void statusLine()
    {
        const SceneBox box{256, 128, 0, 1};
        QCOMPARE(statusText({0, 0, 63.5}, box), QString("Position: (1.00, 0.50) z = 0.496 in."));
        QCOMPARE(statusText({-128, 63.5, -3}, box),
                 QString("Position: (0.00, 1.00) z = 0.000 in."));
        QCOMPARE(statusText({0, 0, 64}, box, 2), QString("Position: (25.5, 12.8) z = 12.7 mm"));
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        QCOMPARE(statusText({0, 0, 64}, box, 2), QString("Position: (25,5; 12,8) z = 12,7 mm"));
        QLocale::setDefault(QLocale::c());
    }
};

QTEST_MAIN(ViewMathTest)
#include "tst_viewmath.moc"
