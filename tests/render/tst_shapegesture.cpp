#include "relief/tools/tool.h"
#include "render/gestures/shapegesture.h"

#include <QTest>

#include <cmath>
#include <limits>

using namespace marlowen;

namespace {

constexpr QSize grid(100, 60);
constexpr double pixel = 0.5;

ShapeGesture gestureOf(int tool)
{
    ShapeGesture gesture;
    gesture.setTool(tool, grid);
    return gesture;
}

bool drag(ShapeGesture &gesture, QPointF from, QPointF to)
{
    gesture.press(from, pixel);
    gesture.moveTo((from + to) / 2.0, pixel);
    gesture.moveTo(to, pixel);
    return gesture.release(to, pixel);
}

bool click(ShapeGesture &gesture, QPointF at)
{
    gesture.press(at, pixel);
    return gesture.release(at, pixel);
}

} // namespace

class TestShapeGesture : public QObject
{
    Q_OBJECT

private slots:
    void smallMovementSelectsNothing();
    void ellipsePreviewTouchesItsBox();
    void cropBoxIsDragged_data();
    void cropBoxIsDragged();
    void cropClickKeepsTheBox();
    void holdsOfTheCropBox_data();
    void holdsOfTheCropBox();
    void farPositionsAreHarmless();
};

void TestShapeGesture::smallMovementSelectsNothing()
{
    for (int tool : {Tool::Rectangle, Tool::Elliptical, Tool::Crop}) {
        ShapeGesture gesture = gestureOf(tool);
        QVERIFY(!drag(gesture, {10, 10}, {11, 10.5}));
        QVERIFY(!gesture.active());
    }
}

void TestShapeGesture::ellipsePreviewTouchesItsBox()
{
    ShapeGesture gesture = gestureOf(Tool::Elliptical);
    gesture.press({10, 40}, pixel);
    gesture.moveTo({30, 20}, pixel);
    const QRectF bounds = gesture.preview().boundingRect();
    QCOMPARE(bounds, QRectF(10, 20, 20, 20));
    QVERIFY(gesture.previewClosed());
    QVERIFY(gesture.release({30, 20}, pixel));
}

void TestShapeGesture::cropBoxIsDragged_data()
{
    QTest::addColumn<QPointF>("from");
    QTest::addColumn<QPointF>("to");
    QTest::addColumn<QRect>("box");
    // From a box of columns 20..39 and rows 10..29, that is 20..40 by 10..30 in coordinates.
    QTest::newRow("left edge") << QPointF(20, 18) << QPointF(10, 25) << QRect(10, 10, 30, 20);
    QTest::newRow("right edge") << QPointF(41, 18) << QPointF(51, 25) << QRect(20, 10, 30, 20);
    QTest::newRow("bottom edge") << QPointF(30, 9) << QPointF(35, 4) << QRect(20, 5, 20, 25);
    QTest::newRow("top edge") << QPointF(30, 30) << QPointF(35, 40) << QRect(20, 10, 20, 30);
    QTest::newRow("top right") << QPointF(40, 30) << QPointF(50, 40) << QRect(20, 10, 30, 30);
    QTest::newRow("bottom left") << QPointF(21, 11) << QPointF(11, 1) << QRect(10, 0, 30, 30);
    QTest::newRow("inside") << QPointF(30, 20) << QPointF(35, 27) << QRect(25, 17, 20, 20);
    QTest::newRow("left past right") << QPointF(20, 18) << QPointF(80, 18) << QRect(39, 10, 1, 20);
    QTest::newRow("inside past the edge")
        << QPointF(30, 20) << QPointF(-90, 95) << QRect(0, 40, 20, 20);
    QTest::newRow("new box") << QPointF(60.5, 50.5) << QPointF(50.5, 55.5) << QRect(50, 50, 11, 6);
}

void TestShapeGesture::cropBoxIsDragged()
{
    QFETCH(QPointF, from);
    QFETCH(QPointF, to);
    QFETCH(QRect, box);
    ShapeGesture gesture = gestureOf(Tool::Crop);
    drag(gesture, {20.5, 10.5}, {39.5, 29.5});
    QCOMPARE(gesture.cropBox(), QRect(20, 10, 20, 20));
    QVERIFY(!drag(gesture, from, to));
    QCOMPARE(gesture.cropBox(), box);
    QCOMPARE(gesture.preview().boundingRect(), QRectF(box));
    QCOMPARE(gesture.handles().size(), 8);
}

void TestShapeGesture::cropClickKeepsTheBox()
{
    ShapeGesture gesture = gestureOf(Tool::Crop);
    drag(gesture, {20.5, 10.5}, {39.5, 29.5});
    click(gesture, {80, 50});
    QCOMPARE(gesture.cropBox(), QRect(20, 10, 20, 20));
    gesture.cancel();
    QVERIFY(gesture.cropBox().isEmpty());
}

void TestShapeGesture::holdsOfTheCropBox_data()
{
    QTest::addColumn<QPointF>("at");
    QTest::addColumn<int>("hold");
    QTest::newRow("left") << QPointF(20, 20) << int(ShapeGesture::Left);
    QTest::newRow("corner") << QPointF(42, 8) << int(ShapeGesture::Right | ShapeGesture::Bottom);
    QTest::newRow("inside") << QPointF(30, 20) << int(ShapeGesture::Inside);
    QTest::newRow("outside") << QPointF(50, 20) << 0;
    QTest::newRow("in line with an edge, far off") << QPointF(20, 45) << 0;
}

void TestShapeGesture::holdsOfTheCropBox()
{
    QFETCH(QPointF, at);
    QFETCH(int, hold);
    ShapeGesture gesture = gestureOf(Tool::Crop);
    drag(gesture, {20.5, 10.5}, {39.5, 29.5});
    QCOMPARE(gesture.holdAt(at, pixel), hold);
}

void TestShapeGesture::farPositionsAreHarmless()
{
    const double infinity = std::numeric_limits<double>::infinity();
    for (int tool : {Tool::Rectangle, Tool::Elliptical, Tool::Polygon, Tool::Crop}) {
        ShapeGesture gesture = gestureOf(tool);
        drag(gesture, {1e300, -1e300}, {-infinity, infinity});
        drag(gesture, {5, 5}, {infinity, 8});
        QVERIFY(QRect(QPoint(0, 0), grid).contains(gesture.cropBox()) ||
                gesture.cropBox().isEmpty());
    }
}

QTEST_GUILESS_MAIN(TestShapeGesture)
#include "tst_shapegesture.moc"
