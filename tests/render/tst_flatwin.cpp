#include "base/qevsettings.h"
#include "flatstage.h"
#include "relief/operations/operations.h"
#include "render/engines/shader.h"

#include <QSignalSpy>

using namespace marlowen;

namespace {

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
    void focusShowsOnlyWhenAKeyBroughtIt(); // first: a window just shown is the active one
    void clicksGoThroughTheEngine();
    void sculptToolsDoNothingHere();
    void heightsShowInLevels_data();
    void heightsShowInLevels();
    void strokeBeyondTheRangeIsColoured();
    void antsFollowTheSelection();
    void outlineLiesOnCellEdges();
    void footprintOnlyForItsTools();
    void maskIsShown();
    void fitsAgainInAnotherSizeUntilZoomed();
    void oddReliefsAndWindows();
    void cleanupTestCase() { KeptView<FlatWin>::drop(); }
};

void TestFlatWin::focusShowsOnlyWhenAKeyBroughtIt()
{
    Stage stage;
    QVERIFY(QTest::qWaitForWindowActive(&stage.view));
    const auto focused = [&stage](Qt::FocusReason reason) {
        stage.view.clearFocus();
        stage.view.setFocus(reason);
        return stage.view.hasFocus() ? stage.settle() : QImage();
    };
    stage.view.clearFocus();
    const QImage without = stage.settle();
    QCOMPARE(focused(Qt::MouseFocusReason), without);
    const QImage byKey = focused(Qt::TabFocusReason);
    QVERIFY(!byKey.isNull() && byKey != without);
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
    Stage stage;
    stage.kept.useUp();
    QevSettings().setUseLegacyShader(legacy);
    stage.view.renewEngine();
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
    selectNone(*stage.relief);
    stage.changes.notify();
    stage.settle();
    QVERIFY(!stage.view.outlinePresent());
    QVERIFY(!stage.view.antsRunning());
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

void TestFlatWin::maskIsShown()
{
    Stage stage(Tool::None);
    const QRgb plain = stage.pixel(stage.at(60, 40));
    for (int row = 30; row < 50; ++row)
        std::fill_n(stage.relief->maskLayer().data() + stage.relief->index(50, row), 20, 1.0F);
    stage.relief->appearanceChanged = true;
    stage.changes.notify();
    const QRgb masked = stage.pixel(stage.at(60, 40));
    QVERIFY(masked != plain && qRed(masked) > 20 && qBlue(masked) > qRed(masked));
}

void TestFlatWin::fitsAgainInAnotherSizeUntilZoomed()
{
    Stage stage;
    const QSize size = stage.view.size();
    stage.view.fit();
    const auto zoom = [&stage] {
        stage.settle();
        return stage.view.camera().zoom;
    };
    const double first = zoom();
    stage.view.resize(size / 2);
    QVERIFY(std::abs(zoom() / first - 0.5) < 0.01);
    QVERIFY(resize(*stage.relief, 60, 45, nullptr));
    stage.changes.notify();
    QVERIFY(std::abs(zoom() / first - 1.0) < 0.02);
    const QPointF middle = stage.view.rect().center();
    QWheelEvent wheel(middle, stage.view.mapToGlobal(middle), {}, QPoint(0, 120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&stage.view, &wheel);
    const double chosen = zoom();
    stage.view.resize(size);
    QCOMPARE(zoom(), chosen);
}

void TestFlatWin::oddReliefsAndWindows()
{
    Stage stage(Tool::Rectangle);
    stage.view.setRelief(nullptr);
    stage.drag({100, 100}, {200, 200});
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
