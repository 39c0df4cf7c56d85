#include "base/qevsettings.h"
#include "relief/operations.h"
#include "relief/relief.h"
#include "relief/sculptengine.h"
#include "relief/sculptundo.h"
#include "relief/tool.h"
#include "render/flatwin.h"
#include "render/shader.h"

#include <QKeyEvent>
#include <QSignalSpy>
#include <QTest>

#include <cmath>

namespace {

/// A smooth hill with an empty border of five cells.
std::unique_ptr<Relief> hill(QSize size)
{
    auto relief = std::make_unique<Relief>(size.width(), size.height());
    float *heights = relief->heights().data();
    for (int row = 5; row < size.height() - 5; ++row)
        for (int column = 5; column < size.width() - 5; ++column)
            heights[relief->index(column, row)] =
                float(8.0 * std::exp(-std::hypot(column - size.width() / 2.0, row - 40.0) / 30.0));
    return relief;
}

std::vector<float> valuesOf(const GridLayer &layer)
{
    return {layer.constData(), layer.constData() + layer.size()};
}

int selectedCells(const Relief &relief)
{
    const std::vector<float> values = valuesOf(relief.selectionLayer());
    return int(std::count(values.begin(), values.end(), 1.0F));
}

/// The hill in a shown view, with engine and history, and the pointer's hand on it.
struct Stage
{
    std::unique_ptr<Relief> relief;
    SculptUndo undo;
    SculptEngine engine;
    ToolParams tool;
    ReliefChanges changes;
    FlatWin view;

    explicit Stage(int toolType = Tool::Deposit, QSize grid = {120, 90})
        : relief(hill(grid))
    {
        tool.type = toolType;
        tool.keepTransparency = false;
        engine.attach(relief.get(), &undo);
        view.setTool(&tool);
        view.setEngine(&engine);
        view.setChanges(&changes);
        view.resize(480, 360);
        view.show();
        if (!QTest::qWaitForWindowExposed(&view))
            qFatal("the view does not show");
        view.setRelief(relief.get(), true);
        settle();
    }
    ~Stage()
    {
        view.setRelief(nullptr);
        engine.attach(nullptr, nullptr);
    }

    void setTool(int type)
    {
        tool.type = type;
        view.refresh();
        settle();
    }
    QImage settle()
    {
        QCoreApplication::processEvents();
        return view.grabFramebuffer();
    }
    /// Where the grid position is on the widget.
    QPoint at(double column, double row) const
    {
        const Vector window = project(
            {column - relief->width() / 2.0, row - relief->height() / 2.0, 0.0}, view.matrices());
        return {qRound(window.x), qRound(view.height() - 1 - window.y)};
    }
    void press(QPoint p) { QTest::mousePress(&view, Qt::LeftButton, {}, p); }
    void moveTo(QPoint p) { QTest::mouseMove(&view, p); }
    void release(QPoint p) { QTest::mouseRelease(&view, Qt::LeftButton, {}, p); }
    void drag(QPoint from, QPoint to)
    {
        press(from);
        moveTo((from + to) / 2);
        moveTo(to);
        release(to);
    }
    void click(QPoint p) { QTest::mouseClick(&view, Qt::LeftButton, {}, p); }
    void key(Qt::Key key) { QTest::keyClick(&view, key); }
    QRgb pixel(QPoint p) { return settle().pixel(physical(p)); }
    QPoint physical(QPoint p) const { return (QPointF(p) * view.devicePixelRatioF()).toPoint(); }
};

bool close(QRgb a, QRgb b)
{
    return std::abs(qRed(a) - qRed(b)) <= 3 && std::abs(qGreen(a) - qGreen(b)) <= 3 &&
           std::abs(qBlue(a) - qBlue(b)) <= 3;
}

QRgb heightColour(double share, double offset = 0.0)
{
    const double turn = 2.0 * M_PI / 255.0 * (share * 255.0 + offset);
    return qRgb(0, int(127.5 + 127.5 * std::sin(turn + M_PI / 2)),
                int(127.5 + 127.5 * std::sin(turn + M_PI)));
}

} // namespace

class TestFlatWin : public QObject
{
    Q_OBJECT

private slots:
    void rectanglesCombine();
    void ellipseIsDragged();
    void polygonClosesBy_data();
    void polygonClosesBy();
    void polygonTakesCornersBack();
    void otherToolForgetsTheShape();
    void cropBoxSurvivesAdjusting_data();
    void cropBoxSurvivesAdjusting();
    void cropKeys();
    void shapeKeysBeatShortcuts();
    void clicksGoThroughTheEngine();
    void strokesEqualTheEngine_data();
    void strokesEqualTheEngine();
    void sculptToolsDoNothingHere();
    void heightsShowInLevels_data();
    void heightsShowInLevels();
    void colourOffsetShifts();
    void flatReliefIsBlack();
    void strokeBeyondTheRangeIsColoured();
    void antsFollowTheSelection();
    void idleViewDoesNotPaint();
    void outlineLiesOnCellEdges();
    void panAndZoomOnly();
    void footprintOnlyForItsTools();
    void oddReliefsAndWindows();
};

void TestFlatWin::rectanglesCombine()
{
    Stage stage(Tool::Rectangle);
    QSignalSpy changed(&stage.view, &FlatWin::selectionChanged);
    stage.drag(stage.at(20.5, 60.5), stage.at(39.5, 41.5));
    QCOMPARE(selectedCells(*stage.relief), 20 * 20);
    QVERIFY(stage.relief->selectionActive);
    QCOMPARE(stage.relief->selectionLayer().constData()[stage.relief->index(20, 60)], 1.0F);

    stage.view.setSelectionModifier(SelectionModifier::Additive);
    stage.drag(stage.at(60.5, 60.5), stage.at(69.5, 60.6));
    QCOMPARE(selectedCells(*stage.relief), 400 + 10);
    stage.view.setSelectionModifier(SelectionModifier::Subtractive);
    stage.drag(stage.at(-30, -30), stage.at(29.5, 200));
    QCOMPARE(selectedCells(*stage.relief), 200 + 10);
    QCOMPARE(changed.count(), 3);

    stage.click(stage.at(80, 20));
    QCOMPARE(changed.count(), 3);
    stage.press(stage.at(80, 20));
    stage.moveTo(stage.at(100, 50));
    stage.key(Qt::Key_Escape);
    stage.release(stage.at(100, 50));
    QCOMPARE(changed.count(), 3);
}

void TestFlatWin::ellipseIsDragged()
{
    Stage stage(Tool::Elliptical);
    stage.drag(stage.at(30, 20), stage.at(70, 60));
    const double area = M_PI * 20 * 20;
    QVERIFY(std::abs(selectedCells(*stage.relief) - area) < 0.06 * area);
    const float *selection = stage.relief->selectionLayer().constData();
    QCOMPARE(selection[stage.relief->index(50, 40)], 1.0F);
    QCOMPARE(selection[stage.relief->index(31, 21)], 0.0F);
}

void TestFlatWin::polygonClosesBy_data()
{
    QTest::addColumn<int>("way");
    QTest::newRow("double-click") << 0;
    QTest::newRow("Enter") << 1;
    QTest::newRow("click on the first corner") << 2;
}

void TestFlatWin::polygonClosesBy()
{
    QFETCH(int, way);
    Stage stage(Tool::Polygon);
    QSignalSpy changed(&stage.view, &FlatWin::selectionChanged);
    stage.click(stage.at(20.5, 20.5));
    stage.click(stage.at(60.5, 20.5));
    stage.click(stage.at(60.5, 60.5));
    QCOMPARE(changed.count(), 0);
    if (way == 0)
        QTest::mouseDClick(&stage.view, Qt::LeftButton, {}, stage.at(60.5, 60.5));
    else if (way == 1)
        stage.key(Qt::Key_Return);
    else
        stage.click(stage.at(20.5, 20.5) + QPoint(3, -2));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(selectedCells(*stage.relief), 41 * 42 / 2);
    // The next click begins a new one.
    stage.click(stage.at(90, 70));
    QCOMPARE(changed.count(), 1);
}

void TestFlatWin::polygonTakesCornersBack()
{
    Stage stage(Tool::Polygon);
    QSignalSpy changed(&stage.view, &FlatWin::selectionChanged);
    for (const QPointF corner : {QPointF(20, 20), {60, 20}, {60, 60}, {100, 80}})
        stage.click(stage.at(corner.x() + 0.5, corner.y() + 0.5));
    stage.key(Qt::Key_Backspace);
    stage.key(Qt::Key_Enter);
    QCOMPARE(selectedCells(*stage.relief), 41 * 42 / 2);

    stage.click(stage.at(20, 20));
    stage.click(stage.at(60, 20));
    stage.key(Qt::Key_Enter);
    QCOMPARE(changed.count(), 1);
    stage.click(stage.at(60, 60));
    stage.key(Qt::Key_Escape);
    stage.key(Qt::Key_Enter);
    QCOMPARE(changed.count(), 1);
}

void TestFlatWin::otherToolForgetsTheShape()
{
    Stage stage(Tool::Crop);
    QSignalSpy crop(&stage.view, &FlatWin::cropChanged);
    stage.drag(stage.at(20.5, 20.5), stage.at(60.5, 50.5));
    QCOMPARE(stage.view.cropBox(), QRect(20, 20, 41, 31));
    stage.setTool(Tool::Polygon);
    QVERIFY(stage.view.cropBox().isEmpty());
    QVERIFY(stage.view.cropOutline().isEmpty());
    QTRY_COMPARE(crop.count(), 2);
    QCOMPARE(crop.first().first(), QVariant(true));
    QCOMPARE(crop.last().first(), QVariant(false));

    // A resize of the relief takes the box away, too: it is no longer what was drawn.
    stage.setTool(Tool::Crop);
    stage.drag(stage.at(20.5, 20.5), stage.at(60.5, 50.5));
    QVERIFY(resize(*stage.relief, 60, 45, &stage.undo));
    stage.changes.notify();
    QVERIFY(stage.view.cropBox().isEmpty());
    stage.settle();
    QTRY_COMPARE(crop.count(), 4);
}

void TestFlatWin::cropBoxSurvivesAdjusting_data()
{
    QTest::addColumn<QSize>("grid");
    QTest::newRow("even") << QSize(120, 90);
    QTest::newRow("odd") << QSize(121, 91);
    QTest::newRow("mixed") << QSize(120, 91);
}

void TestFlatWin::cropBoxSurvivesAdjusting()
{
    QFETCH(QSize, grid);
    Stage stage(Tool::Crop, grid);
    std::fill_n(stage.relief->heights().data(), stage.relief->cells(), 1.0F);
    stage.drag(stage.at(70.5, 60.5), stage.at(30.5, 20.5));
    QCOMPARE(stage.view.cropBox(), QRect(30, 20, 41, 41));
    stage.drag(stage.at(30, 40), stage.at(10, 55));
    stage.drag(stage.at(71, 61), stage.at(81, 81));
    const QRect box(10, 20, 71, 61);
    QCOMPARE(stage.view.cropBox(), box);

    cropApply(*stage.relief, stage.view.cropOutline(), &stage.undo);
    for (int row = 0; row < grid.height(); ++row)
        for (int column = 0; column < grid.width(); ++column)
            QCOMPARE(stage.relief->heightAt(column, row), box.contains(column, row) ? 1.0F : 0.0F);
}

void TestFlatWin::cropKeys()
{
    Stage stage(Tool::Crop);
    QSignalSpy apply(&stage.view, &FlatWin::cropApplyRequested);
    stage.key(Qt::Key_Return);
    QCOMPARE(apply.count(), 0);
    stage.drag(stage.at(20.5, 20.5), stage.at(60.5, 50.5));
    stage.key(Qt::Key_Return);
    QTest::mouseDClick(&stage.view, Qt::LeftButton, {}, stage.at(40, 30));
    QCOMPARE(apply.count(), 2);
    QCOMPARE(stage.view.cropBox(), QRect(20, 20, 41, 31));
    stage.key(Qt::Key_Escape);
    QVERIFY(stage.view.cropBox().isEmpty());
}

void TestFlatWin::shapeKeysBeatShortcuts()
{
    Stage stage(Tool::Polygon);
    const auto takes = [&stage](Qt::Key key) {
        QKeyEvent event(QEvent::ShortcutOverride, key, Qt::NoModifier);
        event.ignore();
        QCoreApplication::sendEvent(&stage.view, &event);
        return event.isAccepted();
    };
    QVERIFY(!takes(Qt::Key_Escape) && !takes(Qt::Key_Backspace) && !takes(Qt::Key_Return));
    stage.click(stage.at(20, 20));
    QVERIFY(takes(Qt::Key_Escape) && takes(Qt::Key_Backspace) && !takes(Qt::Key_Return));
    stage.click(stage.at(60, 20));
    stage.click(stage.at(60, 60));
    QVERIFY(takes(Qt::Key_Return) && !takes(Qt::Key_D));
    stage.key(Qt::Key_Escape);
    QVERIFY(!takes(Qt::Key_Escape));
}

void TestFlatWin::clicksGoThroughTheEngine()
{
    Stage stage(Tool::Sample);
    QSignalSpy sample(&stage.view, &FlatWin::sampleChanged);
    stage.click(stage.at(60.5, 40.5));
    const auto picked = double(stage.relief->heightAt(60, 40));
    QVERIFY(picked > 7.0);
    QCOMPARE(sample.count(), 1);
    QCOMPARE(sample.first().first().toDouble(), picked);

    QSignalSpy changed(&stage.view, &FlatWin::selectionChanged);
    stage.setTool(Tool::Magic);
    stage.tool.tolerance = 0.05;
    stage.relief->rangeMinimum = 0.0;
    stage.relief->rangeMaximum = 8.0;
    stage.click(stage.at(2.5, 2.5));
    const int border = 120 * 90 - 110 * 80;
    const int cells = selectedCells(*stage.relief);
    QVERIFY(cells >= border && cells < 120 * 90 / 2);
    QCOMPARE(changed.count(), 1);
    QVERIFY(!stage.settle().isNull() && stage.view.outlinePresent());

    stage.setTool(Tool::Fill);
    QSignalSpy edited(&stage.view, &FlatWin::reliefEdited);
    stage.click(stage.at(60, 40));
    QCOMPARE(double(stage.relief->heightAt(0, 0)), picked);
    QCOMPARE(edited.count(), 1);
    QCOMPARE(stage.undo.count(), 1);
    stage.undo.undo();
    QCOMPARE(stage.relief->heightAt(0, 0), 0.0F);
}

void TestFlatWin::strokesEqualTheEngine_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("height brush") << int(Tool::HeightBrush);
    QTest::newRow("erase") << int(Tool::Erase);
}

void TestFlatWin::strokesEqualTheEngine()
{
    QFETCH(int, type);
    Stage stage(type);
    stage.relief->sampleHeight = 5.0F;
    const QPoint way[] = {stage.at(30, 30), stage.at(45, 50), stage.at(80, 55)};
    std::vector<QPointF> points;
    for (const QPoint &p : way)
        points.push_back({stage.view.pick(p).point.x, stage.view.pick(p).point.y});
    stage.press(way[0]);
    stage.moveTo(way[1]);
    stage.release(way[2]);

    const auto expected = hill({120, 90});
    expected->sampleHeight = 5.0F;
    SculptUndo undo;
    SculptEngine engine;
    engine.attach(expected.get(), &undo);
    engine.beginStroke(stage.tool, points[0]);
    engine.addStrokePoint(points[1]);
    engine.flush();
    engine.endStroke(points[2]);
    QCOMPARE(valuesOf(stage.relief->heights()), valuesOf(expected->heights()));
    QVERIFY(valuesOf(stage.relief->heights()) != valuesOf(hill({120, 90})->heights()));
    QCOMPARE(stage.undo.count(), 1);
}

void TestFlatWin::sculptToolsDoNothingHere()
{
    for (int type : {Tool::Smooth, Tool::Deposit, Tool::Mask, Tool::Move, Tool::None}) {
        Stage stage(type);
        stage.drag(stage.at(50, 40), stage.at(70, 40));
        QCOMPARE(valuesOf(stage.relief->heights()), valuesOf(hill({120, 90})->heights()));
        QCOMPARE(stage.undo.count(), 0);
        QVERIFY(!stage.relief->tool());
    }
}

void TestFlatWin::heightsShowInLevels_data()
{
    QTest::addColumn<bool>("legacy");
    QTest::newRow("buffers") << false;
    QTest::newRow("legacy") << true;
}

void TestFlatWin::heightsShowInLevels()
{
    QFETCH(bool, legacy);
    QevSettings().setUseLegacyShader(legacy);
    Stage stage;
    QevSettings().setUseLegacyShader(false);
    float *heights = stage.relief->heights().data();
    for (int row = 0; row < 90; ++row)
        for (int column = 0; column < 120; ++column)
            heights[stage.relief->index(column, row)] = float(column / 12);
    stage.relief->heightsChanged = true;
    stage.changes.notify();
    stage.view.quantizationChanged(3.0);
    // Heights 0..9 in three levels: 0 | 1..3 | 4..6 | 7..9. The floor is not a level.
    for (const auto &[column, level] : {std::pair(20, 1), {40, 1}, {65, 2}, {78, 2}, {100, 3}})
        QVERIFY2(close(stage.pixel(stage.at(column, 45)), heightColour(level / 3.0)),
                 qPrintable(QString::number(column)));
    stage.view.quantizationChanged(9.0);
    QVERIFY(close(stage.pixel(stage.at(65, 45)), heightColour(5.0 / 9.0)));
    stage.view.quantizationChanged(std::nan(""));
    stage.view.quantizationChanged(-4.0);
    QCOMPARE(stage.view.quantization(), 2.0);
}

void TestFlatWin::colourOffsetShifts()
{
    Stage stage;
    for (int cell = 58; cell < 63; ++cell)
        std::fill_n(stage.relief->heights().data() + stage.relief->index(58, cell - 20), 5, 8.0F);
    stage.relief->heightsChanged = true;
    stage.changes.notify();
    const QPoint top = stage.at(60, 40);
    QVERIFY(close(stage.pixel(top), heightColour(1.0)));
    const int rebuilds = stage.view.counters().fullRebuilds;
    stage.view.colorOffsetChanged(80.0);
    QVERIFY(close(stage.pixel(top), heightColour(1.0, 80.0)));
    stage.view.colorOffsetChanged(std::nan(""));
    QCOMPARE(stage.view.colorOffset(), 80.0);
    QCOMPARE(stage.view.counters().fullRebuilds, rebuilds);
}

void TestFlatWin::flatReliefIsBlack()
{
    Stage stage;
    std::fill_n(stage.relief->heights().data(), stage.relief->cells(), 3.0F);
    stage.relief->heightsChanged = true;
    stage.changes.notify();
    QCOMPARE(stage.pixel(stage.at(60, 40)), qRgb(0, 0, 0));
}

// Painting higher than everything else stretches the colours, at the end of the stroke.
void TestFlatWin::strokeBeyondTheRangeIsColoured()
{
    Stage stage(Tool::HeightBrush);
    std::fill_n(stage.relief->heights().data(), stage.relief->cells(), 3.0F);
    stage.relief->heightsChanged = true;
    stage.relief->sampleHeight = 6.0F;
    stage.changes.notify();
    stage.settle();
    stage.drag(stage.at(30, 45), stage.at(50, 45));
    stage.settle();
    stage.moveTo(stage.at(110, 5));
    QVERIFY(close(stage.pixel(stage.at(40, 45)), heightColour(1.0)));
    QVERIFY(close(stage.pixel(stage.at(80, 45)), heightColour(0.0)));
    const int rebuilds = stage.view.counters().fullRebuilds;
    stage.settle();
    QCOMPARE(stage.view.counters().fullRebuilds, rebuilds);
}

void TestFlatWin::antsFollowTheSelection()
{
    Stage stage(Tool::Rectangle);
    QVERIFY(!stage.view.antsRunning());
    stage.drag(stage.at(20.5, 60.5), stage.at(39.5, 41.5));
    stage.settle();
    QVERIFY(stage.view.outlinePresent());
    QVERIFY(stage.view.antsRunning());
    const int phase = stage.view.antsPhase();
    const int pictures = stage.view.counters().pictures;
    QTRY_VERIFY(stage.view.antsPhase() != phase);
    QCOMPARE(stage.view.counters().pictures, pictures);

    stage.view.hide();
    QVERIFY(!stage.view.antsRunning());
    stage.view.show();
    QTRY_VERIFY(stage.view.antsRunning());
    stage.view.selectNone();
    stage.settle();
    QVERIFY(!stage.relief->selectionActive);
    QVERIFY(!stage.view.outlinePresent());
    QVERIFY(!stage.view.antsRunning());
}

void TestFlatWin::idleViewDoesNotPaint()
{
    Stage stage(Tool::Rectangle);
    QTest::qWait(150);
    QSignalSpy frames(&stage.view, &QOpenGLWidget::aboutToCompose);
    QTest::qWait(500);
    QCOMPARE(frames.count(), 0);
}

// The outline of the two halves of a checked selection, seen in the pixels: black or white along
// the edges of the cells, untouched inside.
void TestFlatWin::outlineLiesOnCellEdges()
{
    Stage stage(Tool::Rectangle);
    const QImage before = stage.settle();
    stage.drag(stage.at(20.5, 20.5), stage.at(59.5, 49.5));
    stage.view.setSelectionModifier(SelectionModifier::Subtractive);
    stage.drag(stage.at(30.5, 30.5), stage.at(39.5, 39.5));
    stage.setTool(Tool::None);
    const QImage image = stage.settle();
    const auto isDash = [&](QPoint p) {
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx) {
                const QRgb pixel = image.pixel(stage.physical(p) + QPoint(dx, dy));
                if (pixel == qRgb(255, 255, 255) || pixel == qRgb(0, 0, 0))
                    return true;
            }
        return false;
    };
    for (const QPointF edge : {QPointF(20, 35), {60, 35}, {45, 20}, {45, 50}, {30, 35}, {40, 35}})
        QVERIFY2(isDash(stage.at(edge.x(), edge.y())),
                 qPrintable(QString("%1 %2").arg(edge.x()).arg(edge.y())));
    QVERIFY(!isDash(stage.at(50, 45)));
    const QPoint hole = stage.physical(stage.at(35, 35));
    QCOMPARE(image.pixel(hole), before.pixel(hole));
}

void TestFlatWin::panAndZoomOnly()
{
    Stage stage(Tool::Rectangle);
    const Camera before = stage.view.camera();
    for (const auto modifier : {Qt::NoModifier, Qt::ShiftModifier}) {
        const QPoint pan = stage.view.camera().pan;
        QTest::mousePress(&stage.view, Qt::MiddleButton, modifier, {200, 200});
        QTest::mouseMove(&stage.view, {230, 190});
        QTest::mouseRelease(&stage.view, Qt::MiddleButton, modifier, {230, 190});
        QCOMPARE(stage.view.camera().pan, pan + QPoint(30, -10));
    }
    QTest::mousePress(&stage.view, Qt::RightButton, Qt::ControlModifier, {200, 200});
    QTest::mouseMove(&stage.view, {260, 190});
    QTest::mouseRelease(&stage.view, Qt::RightButton, Qt::ControlModifier, {260, 190});
    QCOMPARE(stage.view.camera().rotation, before.rotation);
    QCOMPARE(stage.view.camera().pan, before.pan + QPoint(60, -20));
    QVERIFY(!stage.relief->selectionActive);

    // Shapes follow the camera.
    stage.drag(stage.at(20.5, 60.5), stage.at(39.5, 41.5));
    QCOMPARE(selectedCells(*stage.relief), 20 * 20);
}

void TestFlatWin::footprintOnlyForItsTools()
{
    Stage stage(Tool::None);
    const QPoint point = stage.at(60, 40);
    stage.moveTo(point + QPoint(1, 1));
    stage.moveTo(point);
    const QImage plain = stage.settle();
    stage.setTool(Tool::Deposit);
    QCOMPARE(stage.settle(), plain);
    stage.setTool(Tool::HeightBrush);
    QVERIFY(stage.settle() != plain);
}

void TestFlatWin::oddReliefsAndWindows()
{
    Stage stage(Tool::Rectangle);
    stage.view.setRelief(nullptr);
    stage.drag({100, 100}, {200, 200});
    stage.view.selectNone();
    stage.settle();
    for (const QSize size : {QSize(1, 1), QSize(1, 400), QSize(400, 1), QSize(2, 2)}) {
        Relief relief(size.width(), size.height());
        stage.engine.attach(&relief, nullptr);
        stage.view.setRelief(&relief, true);
        stage.settle();
        stage.drag({100, 100}, {400, 300});
        stage.settle();
        stage.view.resize(1, 1);
        stage.settle();
        stage.view.resize(480, 360);
        stage.settle();
        stage.view.setRelief(nullptr);
        stage.engine.attach(nullptr, nullptr);
    }
}

QTEST_MAIN(TestFlatWin)
#include "tst_flatwin.moc"
