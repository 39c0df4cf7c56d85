#include "flatstage.h"
#include "relief/operations/operations.h"

#include <QKeyEvent>
#include <QSignalSpy>

using namespace marlowen;

class TestFlatShapes : public QObject
{
    Q_OBJECT

private slots:
    void rectanglesCombine();
    void shiftAddsAndAltTakesAway();
    void polygonClosesBy_data();
    void polygonClosesBy();
    void polygonTakesCornersBack();
    void otherToolDiscardsTheShape();
    void cropBoxSurvivesAdjusting_data();
    void cropBoxSurvivesAdjusting();
    void cropKeys();
    void shapeKeysPrecedeShortcuts();
    void cleanupTestCase() { KeptView<FlatWin>::drop(); }
};

void TestFlatShapes::rectanglesCombine()
{
    Stage stage(Tool::Rectangle);
    QSignalSpy changed(&stage.view, &FlatWin::shapeDrawn);
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

void TestFlatShapes::shiftAddsAndAltTakesAway()
{
    Stage stage(Tool::Rectangle);
    const auto dragWith = [&](Qt::KeyboardModifier key, QPoint from, QPoint to) {
        QTest::mousePress(&stage.view, Qt::LeftButton, key, from);
        stage.moveTo(to);
        QTest::mouseRelease(&stage.view, Qt::LeftButton, {}, to);
    };
    stage.drag(stage.at(20.5, 60.5), stage.at(39.5, 41.5));
    dragWith(Qt::ShiftModifier, stage.at(80.5, 20.5), stage.at(89.5, 20.6));
    QCOMPARE(selectedCells(*stage.relief), 400 + 10);
    dragWith(Qt::AltModifier, stage.at(80.5, 20.5), stage.at(84.5, 20.6));
    QCOMPARE(selectedCells(*stage.relief), 400 + 5);
    stage.drag(stage.at(80.5, 20.5), stage.at(84.5, 20.6));
    QCOMPARE(selectedCells(*stage.relief), 5);
}

void TestFlatShapes::polygonClosesBy_data()
{
    QTest::addColumn<int>("way");
    QTest::newRow("double-click") << 0;
    QTest::newRow("Enter") << 1;
    QTest::newRow("click on the first corner") << 2;
}

void TestFlatShapes::polygonClosesBy()
{
    QFETCH(int, way);
    Stage stage(Tool::Polygon);
    QSignalSpy changed(&stage.view, &FlatWin::shapeDrawn);
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

void TestFlatShapes::polygonTakesCornersBack()
{
    Stage stage(Tool::Polygon);
    QSignalSpy changed(&stage.view, &FlatWin::shapeDrawn);
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

void TestFlatShapes::otherToolDiscardsTheShape()
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

void TestFlatShapes::cropBoxSurvivesAdjusting_data()
{
    QTest::addColumn<QSize>("grid");
    QTest::newRow("even") << QSize(120, 90);
    QTest::newRow("odd") << QSize(121, 91);
    QTest::newRow("mixed") << QSize(120, 91);
}

void TestFlatShapes::cropBoxSurvivesAdjusting()
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

void TestFlatShapes::cropKeys()
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

void TestFlatShapes::shapeKeysPrecedeShortcuts()
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

QTEST_MAIN(TestFlatShapes)
#include "tst_flatshapes.moc"
