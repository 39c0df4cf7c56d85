#include "render/gestures/placegesture.h"

#include <QtTest>

using namespace marlowen;

class TestPlaceGesture : public QObject
{
    Q_OBJECT

private slots:
    void handlesDoWhatTheyShow_data()
    {
        QTest::addColumn<QPointF>("press");
        QTest::addColumn<QPointF>("to");
        QTest::addColumn<bool>("steps");
        QTest::addColumn<QPointF>("centre");
        QTest::addColumn<double>("angle");
        QTest::addColumn<double>("scale");
        const QPointF middle(50, 40);
        QTest::newRow("move") << QPointF(55, 42) << QPointF(65, 39) << false << QPointF(60, 37)
                              << 0.0 << 1.0;
        QTest::newRow("along an axis")
            << QPointF(55, 42) << QPointF(65, 39) << true << QPointF(60, 40) << 0.0 << 1.0;
        QTest::newRow("stays on the relief")
            << QPointF(55, 42) << QPointF(-800, 42) << false << QPointF(0, 40) << 0.0 << 1.0;
        QTest::newRow("corner") << QPointF(70, 50) << QPointF(90, 60) << false << middle << 0.0
                                << 2.0;
        QTest::newRow("through the middle")
            << QPointF(70, 50) << middle << false << middle << 0.0 << 0.01;
        QTest::newRow("turn") << QPointF(50, 63) << QPointF(20, 40) << false << middle << 90.0
                              << 1.0;
        QTest::newRow("turn in steps")
            << QPointF(50, 63) << QPointF(28, 41) << true << middle << 90.0 << 1.0;
        QTest::newRow("beside") << QPointF(5, 5) << QPointF(50, 50) << false << middle << 0.0
                                << 1.0;
    }

    void handlesDoWhatTheyShow()
    {
        QFETCH(QPointF, press);
        QFETCH(QPointF, to);
        QFETCH(bool, steps);
        PlaceGesture gesture;
        gesture.setLimits({QSizeF(100, 80), 0.01, 10.0});
        gesture.setFrame({{50, 40}, 0.0, 1.0, {40, 20}});
        gesture.press(press, 0.5);
        gesture.moveTo(to, steps);
        gesture.release();
        QTEST(gesture.frame().centre, "centre");
        QTEST(gesture.frame().angle, "angle");
        QTEST(gesture.frame().scale, "scale");
    }
};

QTEST_APPLESS_MAIN(TestPlaceGesture)
#include "tst_placegesture.moc"
