#include "ui/commandset.h"
#include "ui/library/patternstore.h"
#include "windowstage.h"

/// Placing a pattern of the library as a person does it.
class TestPlacing : public WindowStage
{
    Q_OBJECT

private slots:
    void init() { prepare(); }
    void cleanup() { m_window.reset(); }

    void patternIsPlacedOrLeft()
    {
        openDome();
        m_window->resize(1024, 700);
        Progress quiet;
        QVERIFY(addReliefPattern(relief(), {QStringLiteral("Knob"), patternFolder()}, quiet));
        auto *list = child<QListView>("patterns");
        child<QLineEdit>("patternSearch")->setText(QStringLiteral("Knob"));
        QTRY_COMPARE(list->model()->rowCount(), 1);
        const QByteArray before = heights();
        const auto *library = child<QDockWidget>("LibraryDock");
        QTRY_COMPARE(m_window->width(), 1024);
        const int width = library->width();
        FlatWin *view = m_window->flatWin();
        const auto begin = [&] {
            const QPoint at = list->visualRect(list->model()->index(0, 0)).center();
            QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
            QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
            QTRY_VERIFY(heights() != before);
            QVERIFY(!m_window->commands()["save"]->isEnabled());
        };
        begin();
        QCoreApplication::processEvents();
        QCOMPARE(library->width(), width);
        const QByteArray placed = heights();
        const QPoint middle = view->rect().center();
        QTest::mousePress(view, Qt::LeftButton, {}, middle);
        QTest::mouseMove(view, middle + QPoint(20, 5));
        QTRY_VERIFY(heights() != placed);
        QTest::mouseRelease(view, Qt::LeftButton, {}, middle + QPoint(20, 5));
        QTRY_VERIFY(child<QDoubleSpinBox>("placeX")->value() > side / 2.0 / 128.0);
        QTest::keyClick(view, Qt::Key_Escape);
        QCOMPARE(heights(), before);
        QCOMPARE(bench().history().count(), 0);
        begin();
        child<QPushButton>("placeApply")->click();
        QVERIFY(heights() != before);
        QCOMPARE(bench().history().count(), 1);
        m_window->undo();
        QCOMPARE(heights(), before);
        QVERIFY(m_window->commands()["save"]->isEnabled());
    }
};

QTEST_MAIN(TestPlacing)
#include "tst_placing.moc"
