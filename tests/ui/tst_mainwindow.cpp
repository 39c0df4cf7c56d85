#include "windowstage.h"

#include "relief/grid/physicalsize.h"
#include "ui/collapsibledock.h"
#include "ui/panels/sculptpanels.h"
#include "ui/recentfilesmenu.h"
#include "ui/ribbon/numberfield.h"
#include "ui/ribbon/ribbongallery.h"

/// The window except for its commands: opened files, strokes, layout.
class TestMainWindow : public WindowStage
{
    Q_OBJECT

private slots:
    void init() { prepare(); }
    void cleanup() { dropAfterFailure(); }
    void cleanupTestCase() { m_window.reset(); }

    void pictureIsImportedAcceptedAndSculpted();
    void guardKeepsTheWorkWhenSavingFails();
    void droppedFileIsOpened();
    void missingRecentFile();
    void typedSizeResamplesAndComesBack();
    void closingDuringAStrokeKeepsItAndAsks();
    void undoDuringAStrokeEndsItFirst();
    void pagesBringTheirViewForward();
    void idleWindowDrawsNothing();
    void layoutOfALargerScreenFits();
    void layoutComesBack();
    void noControlOfTheToolDockIsCutOff();
    void importFileComesAfterTheLoopRuns();
    void handOverWritesTheMapAndEndsTheProcess();
};

void TestMainWindow::pictureIsImportedAcceptedAndSculpted()
{
    show();
    QVERIFY(!m_window->ribbonBar()->isPageVisible(WindowPages::Export));
    open("plate.PNG");
    QVERIFY(bench().session().active());
    QCOMPARE(child<SculptPanels>()->currentIndex(), 1);
    QVERIFY(!bench().isModified());
    const QPoint middle = m_window->sculptWin()->rect().center();
    const QByteArray opened = heights();
    stroke(*m_window->sculptWin(), middle, middle + QPoint(15, 0));
    QCOMPARE(heights(), opened);

    QPushButton *accept = nullptr;
    for (QPushButton *button : m_window->findChildren<QPushButton *>()) {
        if (button->text() == QLatin1String("Accept"))
            accept = button;
    }
    QVERIFY(accept);
    QTest::mouseClick(accept, Qt::LeftButton);
    QVERIFY(!bench().session().active());
    QVERIFY(bench().isModified());
    QVERIFY(m_window->ribbonBar()->isPageVisible(WindowPages::Export));
    QVERIFY(!m_window->ribbonBar()->isPageVisible(WindowPages::OrientScale));

    click("deposit_tool");
    stroke(*m_window->sculptWin(), middle, middle + QPoint(15, 0));
    const QByteArray sculpted = heights();
    QVERIFY(sculpted != opened);
    QTest::keyClick(m_window.get(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(heights(), opened);
    QTest::keyClick(m_window.get(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(heights(), sculpted);

    PersonAtHand person;
    person.answers = {QMessageBox::Discard};
    m_window->ribbonBar()->setCurrentPage(WindowPages::Export);
    QVERIFY(m_window->openFile(path("plate.PNG"), 0));
    QCOMPARE(m_window->ribbonBar()->currentPage(), int(WindowPages::SculptingTools));
    QCOMPARE(child<SculptPanels>()->currentIndex(), 1);
}

void TestMainWindow::guardKeepsTheWorkWhenSavingFails()
{
    openDome();
    modify();
    const double scale = relief().zScale;
    const QString file = path("dome.scp");
    QVERIFY(QFile::remove(file) && QFile::link(QStringLiteral("/dev/full"), file));
    PersonAtHand person;
    person.answers = {QMessageBox::Save, QMessageBox::Yes, QMessageBox::Ok};
    QVERIFY(!m_window->close());
    QCOMPARE(person.titles.value(2), QStringLiteral("Save Failed"));
    QCOMPARE(person.details.value(2), QStringLiteral("No space left on device.\n") + file);
    QVERIFY(m_window->isVisible() && bench().isModified());
    QCOMPARE(relief().zScale, scale);
}

void TestMainWindow::droppedFileIsOpened()
{
    openDome();
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path("plate.PNG"))});
    QDragEnterEvent enter(QPoint(400, 400), Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(m_window.get(), &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop(QPointF(400, 400), Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(m_window.get(), &drop);
    QTRY_VERIFY(bench().session().active());
}

void TestMainWindow::missingRecentFile()
{
    openDome();
    QVERIFY(m_window->openFile(path("plate.PNG"), 0));
    QVERIFY(QFile::remove(path("dome.scp")));
    m_window->toggleBackStage();
    auto *action = child<RecentFilesMenu>()->actions().at(1);
    QVERIFY(action->isVisible());
    QCOMPARE(action->text(), QStringLiteral("dome.scp"));
    PersonAtHand person;
    RibbonButton *button = buttonOf(action);
    QTRY_VERIFY(button->isVisible());
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(person.titles, QStringList{QStringLiteral("Open Failed")});
    QCOMPARE(bench().file(), path("plate.PNG"));
}

void TestMainWindow::typedSizeResamplesAndComesBack()
{
    openDome();
    m_window->ribbonBar()->setCurrentPage(WindowPages::Size);
    const QByteArray before = heights();
    auto *units = child<QComboBox>("units");
    QTest::keyClick(units, Qt::Key_End);
    auto *x = child<NumberField>("reliefSize0");
    QVERIFY(x->text().endsWith(QLatin1String("mm")));
    QCOMPARE(qRound(x->value() * 10), qRound(side / cellsPerInch * 254));
    x->setFocus();
    x->selectAll();
    QTest::keyClicks(x, QStringLiteral("25,4"));
    QTest::keyClick(x, Qt::Key_Return);
    QCOMPARE(relief().width(), 128);
    QCOMPARE(relief().height(), 128);
    QTRY_VERIFY(m_window->sculptWin()->hasFocus());
    x->setFocus();
    QTest::keyClicks(x, QStringLiteral("1"));
    QTest::keyClick(x, Qt::Key_Z, Qt::ControlModifier); // takes back what was typed
    QCOMPARE(relief().width(), 128);
    QTest::keyClick(x, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(relief().width(), side);
    QCOMPARE(heights(), before);
}

void TestMainWindow::closingDuringAStrokeKeepsItAndAsks()
{
    openDome();
    const QByteArray before = heights();
    const QPoint middle = m_window->sculptWin()->rect().center();
    QTest::mousePress(m_window->sculptWin(), Qt::LeftButton, {}, middle);
    QTest::mouseMove(m_window->sculptWin(), middle + QPoint(10, 0));
    QVERIFY(bench().engine().stroking());
    PersonAtHand person;
    person.answers = {QMessageBox::Cancel};
    QVERIFY(!m_window->close());
    QCOMPARE(person.sentences.size(), 1);
    QVERIFY(!bench().engine().stroking());
    const QByteArray stroked = heights();
    QVERIFY(stroked != before);
    QTest::mouseRelease(m_window->sculptWin(), Qt::LeftButton, {}, middle + QPoint(10, 0));
    QCOMPARE(heights(), stroked);
    m_window->undo();
    QCOMPARE(heights(), before);
}

void TestMainWindow::undoDuringAStrokeEndsItFirst()
{
    openDome();
    const QByteArray before = heights();
    const QPoint middle = m_window->sculptWin()->rect().center();
    QTest::mousePress(m_window->sculptWin(), Qt::LeftButton, {}, middle);
    m_window->undo();
    QCOMPARE(heights(), before);
    QTest::mouseMove(m_window->sculptWin(), middle + QPoint(10, 0));
    QTest::mouseRelease(m_window->sculptWin(), Qt::LeftButton, {}, middle + QPoint(10, 0));
    QCOMPARE(heights(), before);
    QVERIFY(bench().history().canRedo());
}

void TestMainWindow::pagesBringTheirViewForward()
{
    openDome();
    auto *splitter = child<QSplitter>("CentralSplitter");
    splitter->setSizes({800, 0});
    m_window->ribbonBar()->setCurrentPage(WindowPages::Size);
    QCOMPARE(splitter->sizes()[1], 0);
    m_window->ribbonBar()->setCurrentPage(WindowPages::Edit2D);
    QVERIFY(splitter->sizes()[1] > 100);
    splitter->setSizes({0, 800});
    m_window->ribbonBar()->setCurrentPage(WindowPages::SculptingTools);
    QVERIFY(splitter->sizes()[0] > 100);
    const QList<int> chosen = splitter->sizes();
    m_window->ribbonBar()->setCurrentPage(WindowPages::Edit2D);
    QCOMPARE(splitter->sizes(), chosen);
}

void TestMainWindow::layoutOfALargerScreenFits()
{
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    {
        QMainWindow far;
        far.setGeometry(screen.width() + 900, screen.height() + 500, 3000, 2000);
        QevSettings().setValue(QStringLiteral("geometry"), far.saveGeometry());
    }
    QevSettings().setValue(QStringLiteral("windowState"), QByteArray("nonsense"));
    m_window = std::make_unique<MainWindow>();
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    QTRY_VERIFY(screen.contains(m_window->geometry().center()));
    QVERIFY(m_window->width() <= screen.width());
    QVERIFY(m_window->height() <= screen.height());
    QVERIFY(screen.contains(m_window->geometry().topLeft()));
}

void TestMainWindow::layoutComesBack()
{
    makeWindow();
    show();
    auto *splitter = child<QSplitter>("CentralSplitter");
    open("dome.scp");
    splitter->setSizes({200, 500});
    const double share = double(splitter->sizes()[0]) / splitter->sizes()[1];
    m_window->resize(1060, 640);
    child<CollapsibleDock>("LibraryDock")->setCollapsed(true);
    m_window->chooseMaterial(QStringLiteral("gold"));
    QTRY_COMPARE(m_window->windowHandle()->size(), QSize(1060, 640));
    QVERIFY(m_window->close());
    QCOMPARE(QevSettings().value(QStringLiteral("material")).toString(), QStringLiteral("gold"));
    QevSettings().setValue(QStringLiteral("lightPosition"), 8); // of eight, counted from 0
    m_window = std::make_unique<MainWindow>();
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    QTRY_COMPARE(m_window->size(), QSize(1060, 640));
    auto *library = child<CollapsibleDock>("LibraryDock");
    QVERIFY(library->isCollapsed());
    QVERIFY(library->openWidth() > 100);
    open("dome.scp");
    splitter = child<QSplitter>("CentralSplitter");
    QTRY_VERIFY(std::abs(double(splitter->sizes()[0]) / splitter->sizes()[1] - share) < 0.1);
    QCOMPARE(child<QComboBox>("materials")->currentText(), QStringLiteral("gold"));
    QCOMPARE(child<RibbonGallery>("lightPos")->current(), 0);
    // A dock that is moved to the other side changes places with the one there.
    m_window->addDockWidget(Qt::RightDockWidgetArea, child<CollapsibleDock>("ToolDock"));
    QTRY_COMPARE(m_window->dockWidgetArea(library), Qt::LeftDockWidgetArea);
}

void TestMainWindow::noControlOfTheToolDockIsCutOff()
{
    makeWindow();
    m_window->resize(1024, 700);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    auto *panels = child<SculptPanels>();
    for (int tab = 0; tab < panels->count(); ++tab) {
        panels->setCurrentIndex(tab);
        auto *area = qobject_cast<QScrollArea *>(panels->currentWidget());
        if (!area)
            area = panels->currentWidget()->findChild<QScrollArea *>();
        QTRY_VERIFY(area && area->widget()->width() <= area->viewport()->width());
        const QRect seen(panels->mapToGlobal(QPoint()), panels->size());
        const QRect dock(child<QDockWidget>("ToolDock")->mapToGlobal(QPoint()),
                         child<QDockWidget>("ToolDock")->size());
        QVERIFY(dock.left() <= seen.left() && seen.right() <= dock.right());
    }
    auto *library = child<QDockWidget>("LibraryDock");
    auto *title = library->titleBarWidget()->findChild<QLabel *>();
    QCOMPARE(title->text(), QStringLiteral("Patterns & Alphas"));
    QVERIFY(title->width() >= title->fontMetrics().horizontalAdvance(title->text()));
    QTRY_VERIFY(m_window->centralWidget()->width() >= 0.55 * m_window->width());
}

void TestMainWindow::idleWindowDrawsNothing()
{
    openDome();
    QSignalSpy frames(m_window->sculptWin(), &GlCanvas::frameSwapped);
    const auto pictures = [this] {
        return m_window->sculptWin()->counters().pictures +
               m_window->flatWin()->counters().pictures;
    };
    // Longer than any timer of the views; other programs may hold up the first rest.
    const auto idle = [&] {
        const int before = pictures();
        return !frames.wait(400) && pictures() == before;
    };
    QTRY_VERIFY_WITH_TIMEOUT(idle(), 30000);
}

void TestMainWindow::importFileComesAfterTheLoopRuns()
{
    makeWindow();
    show();
    m_window->setImportFile(path("plate.PNG"));
    QVERIFY(!bench().relief());
    QTRY_VERIFY(bench().relief());
    QVERIFY(m_window->windowTitle().contains(QLatin1String("plate.PNG")));
}

/// The last one: it asks the application to quit.
void TestMainWindow::handOverWritesTheMapAndEndsTheProcess()
{
    openDome();
    int ended = 0;
    m_window->exports().forcedExit = [&ended] { ++ended; };
    const QString target = path("map.bin");
    m_window->setExportPath(target);
    modify();
    PersonAtHand person;
    click("sendToDrafteon");
    QCOMPARE(QFileInfo(target).size(), 16 + 4 * side * side);
    QVERIFY(QevSettings().contains(QStringLiteral("splitterState")));
    QCOMPARE(person.titles, QStringList());
    QTRY_COMPARE_WITH_TIMEOUT(ended, 1, 3000);
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
