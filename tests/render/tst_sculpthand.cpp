#include "relief/selection/selections.h"
#include "relief/tools/tool.h"
#include "relief/tools/tooltable.h"
#include "render/gestures/pointeroptions.h"
#include "render/overlays/gizmo.h"
#include "sculptbench.h"

#include <QSignalSpy>
#include <QTabletEvent>

using namespace marlowen;

namespace {

std::vector<float> copyOf(const GridLayer &layer)
{
    return std::vector<float>(layer.constData(), layer.constData() + layer.size());
}

double heightSum(const Relief &relief)
{
    double sum = 0;
    for (qsizetype i = 0; i < relief.cells(); ++i)
        sum += double(relief.heightAt(i));
    return sum;
}

QPointF flat(const Vector &v)
{
    return {v.x, v.y};
}

// Runs the same stroke points through an engine of its own, without a window.
std::unique_ptr<Relief> strokedHeadless(const Relief &before, const ToolParams &tool,
                                        const QList<QPointF> &points)
{
    auto relief = std::make_unique<Relief>(before.width(), before.height());
    relief->heights().copyFrom(before.heights());
    relief->referenceLayer().copyFrom(before.referenceLayer());
    relief->sampleHeight = before.sampleHeight;
    SculptUndo undo;
    SculptEngine engine;
    engine.attach(relief.get(), &undo);
    engine.beginStroke(tool, points.first());
    for (const QPointF &point : points.mid(1)) {
        engine.addStrokePoint(point);
        engine.flush();
    }
    engine.endStroke(points.last());
    return relief;
}

} // namespace

// What pointer and wheel do in the 3D view.
class SculptHandTest : public QObject
{
    Q_OBJECT

private slots:
    void pointerMovesTheCamera()
    {
        SculptBench b(medal(200, 150));
        const QPoint c = b.centre();
        b.drag({c, c + QPoint(25, 40)}, Qt::MiddleButton, Qt::ShiftModifier);
        QCOMPARE(b.view.camera().pan, QPoint(25, 40));
        QCOMPARE(b.view.mode(), int(ReliefView::NoMode));
        b.view.zoomAll();
        QCOMPARE(b.view.camera().pan, QPoint(0, 0));
        const double zoom = b.view.camera().zoom;
        QVERIFY(std::abs(zoom - 0.92 * 360 / 150) < 1e-9);

        b.press(c, Qt::MiddleButton);
        QCOMPARE(b.view.mode(), int(ReliefView::RotateMode));
        b.moveTo(c + QPoint(60, 0));
        QCOMPARE(b.view.mode(), int(ReliefView::RotatingMode));
        b.release(c + QPoint(60, 0));
        const Quaternion turned = b.view.rotation();
        QVERIFY(turned.y > 0.2 && std::abs(turned.x) < 0.02);
        b.drag({c, c + QPoint(0, 60)}, Qt::RightButton, Qt::ControlModifier);
        QVERIFY(b.view.rotation() != turned);

        const Camera before = b.view.camera();
        b.press(c, Qt::RightButton);
        b.moveTo(c + QPoint(9, 9));
        b.release(c + QPoint(9, 9));
        QCOMPARE(b.view.camera(), before);
        b.view.setMode(ReliefView::ZoomMode);
        b.drag({c, c + QPoint(0, 60)});
        QCOMPARE(b.view.camera().zoom, zoom + 0.2);
        QCOMPARE(b.view.mode(), int(ReliefView::ZoomMode));
    }

    void wheelZoomsSizesAndStrengthens()
    {
        SculptBench b(medal(200, 150));
        QSignalSpy sizes(&b.view, &ReliefView::toolSizeUpdated);
        QSignalSpy strengths(&b.view, &ReliefView::toolStrengthUpdated);
        b.tool.size = 0.95;
        b.wheel(b.centre(), {120, 0}, Qt::AltModifier | Qt::ShiftModifier);
        QCOMPARE(b.tool.size, 1.0);
        b.wheel(b.centre(), {0, -120}, Qt::AltModifier);
        QCOMPARE(b.tool.size, 0.99);
        QCOMPARE(sizes.last().first().toDouble(), 0.99);
        b.tool.strength = 0.05;
        b.wheel(b.centre(), {0, -120}, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(b.tool.strength, 0.0001);
        b.wheel(b.centre(), {0, 120}, Qt::ControlModifier);
        QCOMPARE(strengths.last().first().toDouble(), 0.0101);
        QCOMPARE(b.view.camera().zoom, 1.0);

        b.wheel(b.centre(), {0, 120});
        QCOMPARE(b.view.camera().zoom, 0.88);
        b.wheel(b.centre(), {0, 0});
        QCOMPARE(b.view.camera().zoom, 0.88);
        b.tool.size = 0.5;
        const double steps[] = {0.49, 0.5, 0.4, 0.5, 0.5, 0.5};
        const int ids[] = {0, 1, 2, 3, 4, -1};
        for (int i = 0; i < 6; ++i) {
            b.view.brushSizeStep(ids[i]);
            QCOMPARE(sizes.last().first().toDouble(), steps[i]);
        }
    }

    void gizmoTurnsTheModel()
    {
        SculptBench b(medal(200, 150));
        const QPoint cube(75, 75);
        const auto before = copyOf(b.relief->heights());
        b.view.setRelief(nullptr);
        b.press(cube);
        QCOMPARE(b.view.mode(), int(ReliefView::RotateMode));
        b.moveTo(cube + QPoint(15, 0));
        b.release(cube + QPoint(15, 0));
        QVERIFY(b.view.rotation().y > 0.1); // the gizmo's own ball is small
        b.view.setRelief(b.relief.get());

        for (int face = 1; face <= 6; ++face) {
            b.view.setRotation(
                multiplied(rotationAbout({0.6, 0.8, 0}, 25), presetOrientation(face)));
            b.doubleClick(cube);
            QCOMPARE(b.view.rotation(), presetOrientation(face));
        }
        QCOMPARE(b.undo.count(), 0);
        QCOMPARE(copyOf(b.relief->heights()), before);
        // Beside the cube, a double-click is two presses.
        b.view.setRotation({});
        b.doubleClick(b.centre());
        QCOMPARE(b.undo.count(), 2);
    }

    void strokesEqualTheEngine_data()
    {
        QTest::addColumn<int>("type");
        for (const ToolRow &row : toolTable())
            if (row.has(UsesFootprint))
                QTest::newRow(row.id) << int(row.type);
    }

    void strokesEqualTheEngine()
    {
        QFETCH(int, type);
        SculptBench b(medal(120, 90));
        b.tool.type = type;
        b.tool.size = 0.4;
        b.tool.strength = 0.6;
        b.relief->sampleHeight = 6.0F;
        b.view.setRotation(rotationAbout({1, 0, 0}, -30));
        const QPoint c = b.centre();
        const QList<QPoint> way = {c, c + QPoint(4, 2), c + QPoint(30, 15), c + QPoint(-25, 5)};
        QList<QPointF> points;
        for (const QPoint &at : way)
            points << flat(b.view.pick(at).point);
        const auto before = medal(120, 90);
        before->sampleHeight = 6.0F;

        QSignalSpy edited(&b.view, &ReliefView::reliefEdited);
        b.press(way.first());
        for (const QPoint &at : way.mid(1)) {
            b.moveTo(at);
            b.paint(); // what is drawn meanwhile must not lead the stroke astray
        }
        b.release(way.last());
        const auto expected = strokedHeadless(*before, b.tool, points);
        const GridLayer &painted = type == Tool::Mask ? b.relief->maskLayer() : b.relief->heights();
        const GridLayer &wanted = type == Tool::Mask ? expected->maskLayer() : expected->heights();
        QCOMPARE(copyOf(painted), copyOf(wanted));
        QVERIFY(copyOf(painted) !=
                copyOf(type == Tool::Mask ? before->maskLayer() : before->heights()));
        QCOMPARE(edited.count(), 1);
        QCOMPARE(b.undo.count(), 1);
    }

    void controlKeepsTheStrokeOnALine()
    {
        SculptBench b(medal(240, 180));
        b.tool.size = 0.1;
        const QPoint c = b.centre();
        b.press(c, Qt::LeftButton, Qt::ControlModifier);
        for (const QPoint &at : {QPoint(1, 1), QPoint(6, 2), QPoint(30, 12), QPoint(50, -9)})
            b.moveTo(c + at, Qt::ControlModifier);
        b.release(c + QPoint(50, -9), Qt::ControlModifier);
        const QRect touched = b.relief->strokeRegion.boundingRect();
        QVERIFY(touched.width() > 50);
        QVERIFY(touched.height() <= 8); // twice the radius of 3 and the middle row
        b.drag({c, c + QPoint(0, 30), c + QPoint(20, 60)}, Qt::LeftButton);
        QVERIFY(b.relief->strokeRegion.boundingRect().width() > 20);
    }

    void altInvertsTheTool()
    {
        SculptBench b(medal(240, 180));
        b.tool.strength = 1.0;
        const double before = heightSum(*b.relief);
        const QPoint c = b.centre();
        b.drag({c, c + QPoint(20, 0)}, Qt::LeftButton, Qt::AltModifier);
        QVERIFY(heightSum(*b.relief) < before);
        b.undo.undo();
        b.drag({c, c + QPoint(20, 0)});
        QVERIFY(heightSum(*b.relief) > before);
    }

    void penPressesLightlyAndErases()
    {
        SculptBench b(medal(240, 180));
        b.tool.strength = 1.0;
        const double before = heightSum(*b.relief);
        const auto stroke = [&](double pressure, QPointingDevice::PointerType end) {
            const QPointingDevice pen("pen", 1, QInputDevice::DeviceType::Stylus, end,
                                      QInputDevice::Capability::Pressure, 1, 1);
            const auto send = [&](QEvent::Type type, QPoint at, Qt::MouseButtons buttons) {
                QTabletEvent event(type, &pen, at, b.view.mapToGlobal(at), pressure, 0, 0, 0, 0, 0,
                                   {}, Qt::LeftButton, buttons);
                QApplication::sendEvent(&b.view, &event);
            };
            send(QEvent::TabletPress, b.centre(), Qt::LeftButton);
            send(QEvent::TabletMove, b.centre() + QPoint(30, 0), Qt::LeftButton);
            send(QEvent::TabletRelease, b.centre() + QPoint(30, 0), {});
            const double raised = heightSum(*b.relief) - before;
            if (b.undo.canUndo())
                b.undo.undo();
            return raised;
        };
        using Type = QPointingDevice::PointerType;
        const double full = stroke(1.0, Type::Pen);
        QVERIFY(full > 0.0);
        QVERIFY(std::abs(stroke(0.5, Type::Pen) / full - 0.5) < 0.05);
        QVERIFY(stroke(1.0, Type::Eraser) < 0.0);
        QVERIFY(!b.relief->invert);
        b.relief->invert = true; // the check box of the panel
        QVERIFY(stroke(1.0, Type::Pen) < 0.0);
        QVERIFY(stroke(1.0, Type::Eraser) > 0.0);
        QVERIFY(b.relief->invert);
        b.relief->invert = false;
        PointerOptions options;
        options.penSize = true;
        options.penStrength = false;
        setPointerOptions(options);
        const double small = stroke(0.5, Type::Pen);
        setPointerOptions({});
        QVERIFY(small > 0.0 && small < 0.5 * full);
    }

    void strokesLeaveAndReturn()
    {
        SculptBench b(medal(240, 180), {300, 220});
        const QPoint c = b.centre();
        b.press(c);
        b.moveTo({-200, 40});
        QVERIFY(b.engine.stroking());
        b.moveTo({-200, 400});
        b.moveTo(c + QPoint(0, 40));
        QVERIFY(b.engine.stroking());
        // Another button does not end it.
        QMouseEvent other(QEvent::MouseButtonPress, c, b.view.mapToGlobal(QPointF(c)),
                          Qt::RightButton, Qt::LeftButton | Qt::RightButton, Qt::ControlModifier);
        QApplication::sendEvent(&b.view, &other);
        QCOMPARE(b.view.mode(), int(ReliefView::SculptMode));
        QMouseEvent otherUp(QEvent::MouseButtonRelease, c, b.view.mapToGlobal(QPointF(c)),
                            Qt::RightButton, Qt::LeftButton, Qt::ControlModifier);
        QApplication::sendEvent(&b.view, &otherUp);
        QVERIFY(b.engine.stroking());
        b.release({-50, 40});
        QVERIFY(!b.engine.stroking());
        QCOMPARE(b.undo.count(), 1);
        QCOMPARE(b.view.mode(), int(ReliefView::NoMode));
    }

    void strokesBeginWhereTheyEnterTheRelief()
    {
        SculptBench b(medal(240, 180));
        b.tool.size = 0.1; // radius 3
        b.tool.keepTransparency = false;
        const QPoint c = b.centre();
        b.drag({c - QPoint(200, 0), c - QPoint(150, 0)});
        QCOMPARE(b.undo.count(), 0);
        b.drag({c - QPoint(200, 0), c - QPoint(100, 0), c - QPoint(60, 0)});
        QCOMPARE(b.undo.count(), 1);
        const QRect touched = b.relief->strokeRegion.boundingRect();
        QVERIFY(touched.left() <= 1 && touched.right() > 55 && touched.right() < 66);
        const auto before = copyOf(b.relief->heights());
        b.view.setEngine(nullptr);
        b.view.setReason("Not now.");
        QSignalSpy refused(&b.view, &ReliefView::editRefused);
        b.drag({c, c + QPoint(20, 20)});
        QCOMPARE(copyOf(b.relief->heights()), before);
        QCOMPARE(refused.size(), 1);
        QCOMPARE(refused.first().first().toString(), QString("Not now."));
    }

    void escapeTakesTheStrokeBack()
    {
        for (const int type : {int(Tool::Deposit), int(Tool::Mask)}) {
            SculptBench b(medal(240, 180));
            b.tool.type = type;
            const auto heights = copyOf(b.relief->heights());
            const auto mask = copyOf(b.relief->maskLayer());
            const QImage picture = b.paint();
            b.press(b.centre());
            b.moveTo(b.centre() + QPoint(30, 0));
            QTest::keyClick(&b.view, Qt::Key_Escape);
            b.moveTo(b.centre() + QPoint(50, 0));
            b.release({479, 359});
            QCOMPARE(copyOf(b.relief->heights()), heights);
            QCOMPARE(copyOf(b.relief->maskLayer()), mask);
            QCOMPARE(b.undo.count(), 0);
            b.moveTo({479, 359});
            QVERIFY(b.paint().copy(160, 0, 300, 340) == picture.copy(160, 0, 300, 340));
        }
    }

    void keysAndNewReliefsShowTheTop()
    {
        SculptBench b(medal(240, 180));
        const Quaternion skew = rotationAbout({0.6, 0.8, 0}, 40);
        b.view.zoomAll();
        const Camera top = b.view.camera();
        const auto other = medal(240, 180);
        b.view.setRotation(skew);
        b.view.setRelief(other.get(), true);
        QCOMPARE(b.view.camera(), top);
        b.view.setRotation(skew);
        b.view.zoomAll();
        QCOMPARE(b.view.rotation(), skew);
        b.view.zoomAll();
        QCOMPARE(b.view.camera(), top);
        for (const auto &[key, face] : {std::pair(Qt::Key_2, 4), {Qt::Key_3, 6}, {Qt::Key_4, 5}}) {
            QTest::keyClick(&b.view, key);
            QCOMPARE(b.view.rotation(), presetOrientation(face));
        }
        QTest::keyClick(&b.view, Qt::Key_Home);
        QCOMPARE(b.view.camera(), top);
        b.view.setRelief(b.relief.get());
    }

    void aLostReleaseEndsTheStroke()
    {
        SculptBench b(medal(240, 180));
        b.press(b.centre());
        b.press(b.centre() + QPoint(30, 0)); // no release in between
        b.release(b.centre() + QPoint(30, 0));
        QCOMPARE(b.undo.count(), 2);
        // The relief goes away in the middle of a stroke.
        b.press(b.centre());
        auto next = medal(100, 100);
        b.engine.attach(next.get(), &b.undo);
        b.view.setRelief(next.get());
        b.moveTo(b.centre() + QPoint(10, 0));
        b.release(b.centre() + QPoint(10, 0));
        QCOMPARE(copyOf(next->heights()), copyOf(medal(100, 100)->heights()));
        b.view.setRelief(nullptr);
        b.engine.attach(nullptr, nullptr);
    }

    void statusLineFollowsThePointer()
    {
        SculptBench b(medal(256, 256), {400, 300});
        QSignalSpy status(&b.view, &ReliefView::statusChanged);
        b.moveTo({200, 149});
        b.paint();
        QVERIFY(status.wait(1000));
        QVERIFY(status.last().first().toString().startsWith("Position: (1.0"));
        QCoreApplication::processEvents();
        QSignalSpy frames(&b.view, &GlCanvas::frameSwapped);
        QVERIFY(QMetaObject::invokeMethod(&b.view, "statusTimeout"));
        QCoreApplication::processEvents();
        QCOMPARE(frames.count(), 0);
        QCOMPARE(status.count(), 1);
        b.moveTo({5, 149}); // beside the relief
        QTRY_COMPARE(status.last().first().toString(), QString());
    }

    void cleanupTestCase() { KeptView<SculptWin>::drop(); }
};

QTEST_MAIN(SculptHandTest)
#include "tst_sculpthand.moc"
