#include "base/qevsettings.h"
#include "relief/alphabrush.h"
#include "relief/operations.h"
#include "relief/tool.h"
#include "relief/tooltable.h"
#include "render/gizmo.h"
#include "render/shader.h"
#include "sculptbench.h"

#include <QDir>
#include <QProcess>
#include <QSignalSpy>

#include <cstring>
#include <limits>

namespace {

/// Bytes and passes so far, to see what an action cost.
struct Work
{
    ReliefView::Counters counters;
    quint64 vertexBytes;
    quint64 indexBytes;

    explicit Work(const ReliefView &view)
        : counters(view.counters())
        , vertexBytes(view.shader()->uploadedVertexBytes())
        , indexBytes(view.shader()->uploadedIndexBytes())
    {
    }
};

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

/// Share of pixels that differ by more than a few grey levels.
double difference(const QImage &a, const QImage &b)
{
    int differing = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            if (std::abs(qGray(a.pixel(x, y)) - qGray(b.pixel(x, y))) > 6)
                ++differing;
    return differing / double(a.width() * a.height());
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

/// A view whose first drawing engines fail.
class FailingWin : public SculptWin
{
public:
    explicit FailingWin(int failures)
        : m_failures(failures)
    {
    }

protected:
    std::unique_ptr<Shader> createShader(bool legacy) override
    {
        if (m_failures-- > 0)
            throw "Shader compile failed...aborting!";
        return SculptWin::createShader(legacy);
    }

private:
    int m_failures;
};

} // namespace

class SculptWinTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // Pictures for the eye are left where the developer asks for them.
        m_pictures = qEnvironmentVariable("MARLOWEN_TEST_PICTURES");
    }

    void unchangedPaintsCostNothing()
    {
        SculptBench b(medal(200, 150));
        const QImage first = b.paint();
        const Work before(b.view);
        QCOMPARE(b.paint(), first);
        b.moveTo(b.centre() + QPoint(20, 10));
        const QImage hovered = b.paint();
        b.moveTo(b.centre() - QPoint(20, 10));
        b.paint();
        b.view.refresh();
        b.paint();
        const Work after(b.view);
        QCOMPARE(after.counters.pictures, before.counters.pictures);
        QCOMPARE(after.counters.fullRebuilds, 1);
        QCOMPARE(after.counters.partialRefreshes, 0);
        QCOMPARE(after.vertexBytes, before.vertexBytes);
        QVERIFY(after.counters.depthReads <= before.counters.depthReads + 1);
        QCOMPARE(b.view.gizmoPictures(), 1);
        const QPoint pointer = b.centre() + QPoint(20, 10);
        QVERIFY(b.colorAt(hovered, pointer).red() > b.colorAt(first, pointer).red() + 30);
    }

    void dabsRefreshTheirRectangle()
    {
        SculptBench b(medal(300, 200));
        b.tool.size = 0.3; // radius 10.8
        b.tool.strength = 1.0;
        const QPoint at = b.centre() + QPoint(40, -30);
        b.moveTo(at);
        b.paint();
        const Work before(b.view);
        b.press(at);
        b.paint();
        const Work after(b.view);
        QCOMPARE(after.counters.fullRebuilds, before.counters.fullRebuilds);
        QCOMPARE(after.counters.partialRefreshes, before.counters.partialRefreshes + 1);
        const qint64 vertices =
            after.counters.refreshedVertices - before.counters.refreshedVertices;
        QVERIFY(vertices > 22 * 22 && vertices <= 26 * 26);
        QCOMPARE(after.vertexBytes - before.vertexBytes, quint64(vertices) * 28);
        QCOMPARE(after.indexBytes, before.indexBytes);
        b.release(at);
        const QImage refreshed = b.paint();
        b.view.setRelief(b.relief.get());
        QCOMPARE(b.paint(), refreshed);
    }

    void cameraMovesUploadNothing()
    {
        SculptBench b(medal(200, 150));
        const Work before(b.view);
        b.drag({b.centre(), b.centre() + QPoint(30, 20)}, Qt::MiddleButton);
        b.paint();
        b.drag({b.centre(), b.centre() + QPoint(30, 20)}, Qt::MiddleButton, Qt::ShiftModifier);
        b.paint();
        b.wheel(b.centre(), {0, 120});
        b.paint();
        const Work after(b.view);
        QCOMPARE(after.vertexBytes, before.vertexBytes);
        QCOMPARE(after.indexBytes, before.indexBytes);
        QVERIFY(after.counters.pictures >= before.counters.pictures + 3);
    }

    void detailFollowsTheZoom()
    {
        SculptBench b(medal(1200, 900), {300, 225});
        b.view.zoomAll();
        b.paint();
        QCOMPARE(b.view.drawRegion(), b.relief->rect());
        QCOMPARE(b.view.lodStep(), 4);
        for (int i = 0; i < 14; ++i)
            b.wheel(b.centre(), {0, -120});
        b.paint();
        QCOMPARE(b.view.lodStep(), 1);
        QVERIFY(b.view.drawRegion().width() < 600);
        const Work before(b.view);
        // A pan within the margin needs nothing new, a long one new vertices.
        b.drag({b.centre(), b.centre() + QPoint(10, 0)}, Qt::MiddleButton, Qt::ShiftModifier);
        b.paint();
        QCOMPARE(Work(b.view).vertexBytes, before.vertexBytes);
        b.drag({b.centre(), b.centre() + QPoint(120, 0)}, Qt::MiddleButton, Qt::ShiftModifier);
        b.paint();
        QVERIFY(Work(b.view).vertexBytes > before.vertexBytes);
    }

    void wholeReliefChanges()
    {
        SculptBench b(medal(200, 150));
        const QImage first = b.paint();
        setZScale(*b.relief, 2.0, &b.undo);
        b.view.changes()->notify();
        const QImage taller = b.paint();
        QVERIFY(difference(first, taller) > 0.02);
        b.undo.undo();
        QCOMPARE(b.paint(), first);
        QVERIFY(::resize(*b.relief, 100, 300, &b.undo));
        b.paint();
        QCOMPARE(b.view.drawRegion(), QRect(0, 0, 100, 300));
        QCOMPARE(b.view.shader()->size, 300);
    }

    void picksFindTheCell()
    {
        auto relief = std::make_unique<Relief>(200, 100);
        std::fill_n(relief->heights().data(), relief->cells(), 1.0F);
        // A tower in an early column of an early row; row 0 lies at the bottom of the picture.
        for (int y = 10; y < 30; ++y)
            for (int x = 20; x < 40; ++x)
                relief->heights().data()[relief->index(x, y)] = 30.0F;
        SculptBench b(std::move(relief), {400, 300});
        const auto at = [&](int column, int row) {
            return b.view.pick(QPoint(200 + column - 100, 150 - 1 - (row - 50)));
        };
        QVERIFY(std::abs(at(30, 20).point.z - 30) < 0.1);
        QVERIFY(std::abs(at(30, 20).point.x - (30 - 100)) <= 1.0);
        QVERIFY(std::abs(at(30, 20).point.y - (20 - 50)) <= 1.0);
        QVERIFY(std::abs(at(30, 80).point.z - 1) < 0.1);
        QVERIFY(at(30, 80).hit);
        QVERIFY(!at(30, 130).hit);
        QVERIFY(!b.view.pick({-5, 20}).hit && !b.view.pick({5000, 5000}).hit);
        // From the side the tower's wall is what the pointer meets.
        b.view.setRotation(rotationAbout({1, 0, 0}, -80));
        const auto side = b.view.pick(QPoint(200 + 30 - 100, 150 - 18));
        QVERIFY(side.hit);
        QVERIFY(side.point.z > 5 && side.point.z < 29);
    }

    void pointerMovesTheCamera()
    {
        SculptBench b(medal(200, 150));
        const QPoint c = b.centre();
        b.drag({c, c + QPoint(25, 40)}, Qt::MiddleButton, Qt::ShiftModifier);
        QCOMPARE(b.view.camera().pan, QPoint(25, 40));
        QCOMPARE(b.view.mode(), int(ReliefView::NoMode));
        b.view.zoomAll();
        QCOMPARE(b.view.camera().pan, QPoint(0, 0));
        QCOMPARE(b.view.camera().zoom, 2.0);

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
        QCOMPARE(b.view.camera().zoom, 2.2);
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
        SculptBench b(medal(240, 180));
        b.tool.type = type;
        b.tool.size = 0.4;
        b.tool.strength = 0.6;
        b.relief->sampleHeight = 12.0F;
        b.view.setRotation(rotationAbout({1, 0, 0}, -30));
        const QPoint c = b.centre();
        const QList<QPoint> way = {c, c + QPoint(7, 3), c + QPoint(60, 30), c + QPoint(-50, 10)};
        QList<QPointF> points;
        for (const QPoint &at : way)
            points << flat(b.view.pick(at).point);
        const auto before = medal(240, 180);
        before->sampleHeight = 12.0F;

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
        keep(b.paint(), QString("stroke-%1").arg(toolRow(type)->id));
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

    void pressesOffTheReliefDoNothing()
    {
        SculptBench b(medal(240, 180));
        const auto before = copyOf(b.relief->heights());
        b.drag({{470, 350}, b.centre(), b.centre() + QPoint(20, 20)});
        QCOMPARE(copyOf(b.relief->heights()), before);
        QCOMPARE(b.undo.count(), 0);
        b.view.setEngine(nullptr);
        b.drag({b.centre(), b.centre() + QPoint(20, 20)});
        QCOMPARE(copyOf(b.relief->heights()), before);
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

    void clicksThatAreNoStrokes()
    {
        SculptBench b(medal(240, 180));
        QSignalSpy edited(&b.view, &ReliefView::reliefEdited);
        QSignalSpy samples(&b.view, &ReliefView::sampleChanged);
        b.tool.type = Tool::Sample;
        b.drag({b.centre(), b.centre() + QPoint(3, 3)});
        QCOMPARE(samples.count(), 1);
        QVERIFY(samples.first().first().toDouble() > 40.0);
        b.tool.type = Tool::Fill; // without a selection
        b.drag({b.centre(), b.centre()});
        b.tool.type = Tool::None;
        b.drag({b.centre(), b.centre()});
        QCOMPARE(edited.count(), 0);
        QCOMPARE(b.undo.count(), 0);
    }

    void statusLineFollowsThePointer()
    {
        SculptBench b(medal(256, 256), {400, 300});
        QSignalSpy status(&b.view, &ReliefView::statusChanged);
        b.moveTo({200, 149});
        b.paint();
        QVERIFY(status.wait(1000));
        QVERIFY(status.last().first().toString().startsWith("Position: (1.0"));
        QSignalSpy frames(&b.view, &QOpenGLWidget::frameSwapped);
        QTest::qWait(350);
        QCOMPARE(frames.count(), 0);
        QCOMPARE(status.count(), 1);
    }

    void viewsShareTheChanges()
    {
        SculptBench b(medal(240, 180));
        ReliefChanges changes;
        SculptWin other;
        other.setChanges(&changes);
        b.view.setChanges(&changes);
        b.view.setRelief(b.relief.get());
        other.setRelief(b.relief.get());
        other.resize(480, 360);
        other.show();
        QVERIFY(QTest::qWaitForWindowExposed(&other));
        other.grabFramebuffer();
        b.paint();
        b.tool.strength = 1.0;
        b.drag({b.centre(), b.centre() + QPoint(50, 20)});
        b.view.setRelief(b.relief.get());
        const QImage expected = b.paint();
        const Work before(other);
        QCOMPARE(
            other.grabFramebuffer().convertToFormat(QImage::Format_RGB32).copy(200, 0, 280, 360),
            expected.copy(200, 0, 280, 360));
        QCOMPARE(Work(other).indexBytes, before.indexBytes);
    }

    void movesToAnotherWindow()
    {
        auto b = std::make_unique<SculptBench>(medal(240, 180));
        b->view.setRotation(rotationAbout({1, 0, 0}, -30));
        const QImage before = b->paint();
        QWidget frame;
        frame.resize(700, 600);
        frame.show();
        QVERIFY(QTest::qWaitForWindowExposed(&frame));
        b->view.setParent(&frame);
        b->view.show();
        QTRY_VERIFY(b->view.isValid());
        QCOMPARE(b->paint(), before);
        b->drag({b->centre(), b->centre() + QPoint(20, 0)});
        QCOMPARE(b->undo.count(), 1);
        b->view.setParent(nullptr);
    }

    void alphaFootprint()
    {
        SculptBench b(medal(240, 180));
        b.tool.size = 0.8;
        b.moveTo(b.centre());
        const QImage round = b.paint();
        std::vector<float> half(64 * 64, 0.0F);
        std::fill_n(half.begin(), half.size() / 2, 1.0F); // its first rows: low y, low in the view
        AlphaBrush::instance().setImage(half.data(), 64);
        b.view.refresh();
        const QImage image = b.paint();
        AlphaBrush::instance().setImage(nullptr, 0);
        QVERIFY(image != round);
        const QPoint low = b.centre() + QPoint(15, 12);
        const QPoint high = b.centre() + QPoint(15, -12);
        const auto redness = [&](QPoint at) {
            return b.colorAt(image, at).red() - b.colorAt(image, at).blue();
        };
        QVERIFY(redness(low) > 80);
        QVERIFY(redness(high) < 40);
        keep(image, "alpha");
    }

    void oddReliefsAndSizes_data()
    {
        QTest::addColumn<QSize>("relief");
        QTest::addColumn<QSize>("widget");
        QTest::newRow("1 x 1") << QSize(1, 1) << QSize(300, 200);
        QTest::newRow("2 x 2") << QSize(2, 2) << QSize(300, 200);
        QTest::newRow("1 x 4000") << QSize(1, 4000) << QSize(300, 200);
        QTest::newRow("4000 x 1") << QSize(4000, 1) << QSize(300, 200);
        QTest::newRow("one pixel") << QSize(200, 150) << QSize(1, 1);
        QTest::newRow("one column of pixels") << QSize(200, 150) << QSize(1, 300);
    }

    void oddReliefsAndSizes()
    {
        QFETCH(QSize, relief);
        QFETCH(QSize, widget);
        SculptBench b(std::make_unique<Relief>(relief.width(), relief.height()), widget);
        b.tool.keepTransparency = false;
        b.view.zoomAll();
        b.drag({b.centre(), b.centre() + QPoint(5, 5)});
        b.drag({b.centre(), b.centre() + QPoint(40, 5)}, Qt::MiddleButton);
        b.wheel({0, 0}, {0, 5000});
        b.doubleClick({0, 0});
        b.view.resize(0, 0);
        b.paint();
        b.moveTo({0, 0});
        b.view.resize(widget);
        b.paint();
        b.view.setRelief(nullptr);
        b.drag({b.centre(), b.centre() + QPoint(5, 5)});
        b.paint();
        QVERIFY(b.view.message().isEmpty());
    }

    void nonsenseInMaterialAndLight()
    {
        SculptBench b(medal(200, 150));
        const QImage sane = b.paint();
        Material odd;
        odd.shinyness = std::numeric_limits<double>::quiet_NaN();
        b.view.setMaterial(odd);
        b.view.setLightPos(-77);
        b.paint();
        odd.ambient = odd.diffuse = odd.specular = QColor::fromRgbF(1, 1, 1, 1);
        odd.shinyness = -1e300;
        b.view.setMaterial(odd);
        b.view.setLightPos(1 << 30);
        b.paint();
        b.view.setMaterial(materialNamed(presetMaterials(), defaultMaterialName));
        b.view.setLightPos(0);
        QCOMPARE(b.paint(), sane);
    }

    void lightComesFromTheChosenSide()
    {
        SculptBench b(medal(240, 180));
        b.view.setMaterial(materialNamed(presetMaterials(), "Tan"));
        b.moveTo({1, 359});
        const auto brightness = [&b](const QImage &image, QPoint at) {
            return qGray(b.colorAt(image, at).rgb());
        };
        const QPoint c = b.centre();
        b.view.setLightPos(3);
        const QImage left = b.paint();
        QVERIFY(brightness(left, c - QPoint(50, 0)) > brightness(left, c + QPoint(50, 0)) + 20);
        b.view.setLightPos(1);
        const QImage top = b.paint();
        QVERIFY(brightness(top, c - QPoint(0, 38)) > brightness(top, c + QPoint(0, 38)) + 20);
        // The backdrop shows through the floor.
        const QColor floor = b.colorAt(left, c + QPoint(-110, -80));
        b.view.setBackdrop(QColor(200, 0, 0));
        const QColor redFloor = b.colorAt(b.paint(), c + QPoint(-110, -80));
        QVERIFY(redFloor.red() > floor.red() + 50);
        QVERIFY(redFloor.green() > 20);
    }

    void failingEngines()
    {
        const auto relief = medal(200, 150);
        FailingWin fallback(1);
        FailingWin failing(2);
        for (FailingWin *view : {&fallback, &failing}) {
            view->resize(300, 200);
            view->setRelief(relief.get());
            view->show();
            QVERIFY(QTest::qWaitForWindowExposed(view));
        }
        QVERIFY(fallback.message().isEmpty());
        QVERIFY(fallback.shader());
        QCOMPARE(fallback.shader()->uploadedVertexBytes(), quint64(0)); // the legacy engine
        fallback.grabFramebuffer();
        QCOMPARE(fallback.counters().pictures, 1);
        const QImage sentence = failing.grabFramebuffer();
        QVERIFY(failing.message().contains("graphics driver"));
        keep(sentence, "failing");
        QVERIFY(!failing.pick({150, 100}).hit);
        QMouseEvent press(QEvent::MouseButtonPress, QPointF(150, 100), QPointF(150, 100),
                          Qt::LeftButton, Qt::LeftButton, {});
        QApplication::sendEvent(&failing, &press);
    }

    void legacyEngineGivesTheSamePicture()
    {
        SculptBench buffers(medal(240, 180));
        QevSettings().setUseLegacyShader(true);
        SculptBench legacy(medal(240, 180));
        QevSettings().setUseLegacyShader(false);
        QCOMPARE(legacy.view.shader()->uploadedVertexBytes(), quint64(0));
        QVERIFY(difference(buffers.paint(), legacy.paint()) < 0.002);
        for (SculptBench *b : {&buffers, &legacy}) {
            b->tool.strength = 1.0;
            b->drag({b->centre(), b->centre() + QPoint(30, 10)});
        }
        QVERIFY(difference(buffers.paint(), legacy.paint()) < 0.002);
    }

    void deviceRatios_data()
    {
        QTest::addColumn<QString>("ratio");
        QTest::newRow("1.5") << "1.5";
        QTest::newRow("2") << "2";
    }

    // The ratio is fixed when a program starts: run the picks and strokes in a second one.
    void deviceRatios()
    {
        QFETCH(QString, ratio);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("QT_SCALE_FACTOR", ratio);
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(QCoreApplication::applicationFilePath(),
                      {"picksFindTheCell", "controlKeepsTheStrokeOnALine",
                       "lightComesFromTheChosenSide", "unchangedPaintsCostNothing"});
        QVERIFY(process.waitForFinished(60000));
        QVERIFY2(process.exitCode() == 0, process.readAllStandardOutput());
    }

    void pictures()
    {
        if (m_pictures.isEmpty())
            QSKIP("MARLOWEN_TEST_PICTURES names no folder");
        SculptBench b(medal(800, 600), {1200, 800});
        b.tool.size = 0.8;
        b.moveTo({700, 400});
        keep(b.paint(), "front");
        b.drag({{600, 400}, {660, 300}}, Qt::MiddleButton);
        b.moveTo({700, 400});
        keep(b.paint(), "turned");
        b.view.setMaterial(materialNamed(presetMaterials(), "gold"));
        for (int i = 0; i < 8; ++i) {
            b.view.setLightPos(i);
            keep(b.paint(), QString("light-%1").arg(i));
        }
    }

private:
    void keep(const QImage &image, const QString &name) const
    {
        if (!m_pictures.isEmpty())
            QVERIFY(image.save(QDir(m_pictures).filePath(name + ".png")));
    }

    QString m_pictures;
};

QTEST_MAIN(SculptWinTest)
#include "tst_sculptwin.moc"
