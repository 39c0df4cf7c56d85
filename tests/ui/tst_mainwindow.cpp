#include "base/qevsettings.h"
#include "files/workspacefile.h"
#include "personathand.h"
#include "relief/grid/physicalsize.h"
#include "relief/grid/relief.h"
#include "relief/operations/operationtable.h"
#include "relief/tools/tooltable.h"
#include "render/views/flatwin.h"
#include "render/views/sculptwin.h"
#include "ui/collapsibledock.h"
#include "ui/commandset.h"
#include "ui/mainwindow.h"
#include "ui/panels/sculptpanels.h"
#include "ui/panels/toolpanel.h"
#include "ui/recentfilesmenu.h"
#include "ui/ribbon/numberfield.h"
#include "ui/ribbon/office2013style.h"
#include "ui/ribbon/ribbonbackstage.h"
#include "ui/ribbon/ribbonbar.h"
#include "ui/ribbon/ribbonbutton.h"
#include "ui/ribbon/ribbonpage.h"
#include "ui/ribbon/sliderfield.h"

#include <QtTest>
#include <QtWidgets>

using namespace marlowen;

namespace {

constexpr int side = 96;

/// A dome on an empty ground, `side` x `side`.
std::unique_ptr<Relief> dome()
{
    auto relief = std::make_unique<Relief>(side, side);
    float *height = relief->heights().data();
    for (int row = 0; row < side; ++row) {
        for (int column = 0; column < side; ++column) {
            const double x = (column - side / 2) / (side * 0.45);
            const double y = (row - side / 2) / (side * 0.45);
            const double rest = 1.0 - x * x - y * y;
            *height++ = rest > 0.0 ? float(20.0 * std::sqrt(rest) + 1.0) : 0.0F;
        }
    }
    relief->referenceLayer().copyFrom(relief->heights());
    return relief;
}

QByteArray heightsOf(const Relief &relief)
{
    return QByteArray(reinterpret_cast<const char *>(relief.heights().constData()),
                      relief.cells() * qsizetype(sizeof(float)));
}

QByteArray maskOf(const Relief &relief)
{
    return QByteArray(reinterpret_cast<const char *>(relief.maskLayer().constData()),
                      relief.cells() * qsizetype(sizeof(float)));
}

} // namespace

class TestMainWindow : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void everyToolButtonChoosesItsTool();
    void everyCommandDoesWhatItSays();
    void keysChooseToolsButNotWhileTyping();
    void pictureIsImportedAcceptedAndSculpted();
    void commandsSayWhyTheyCannotAct();
    void guardKeepsTheWorkWhenSavingFails();
    void droppedFileIsOpened();
    void recentFileThatIsGone();
    void typedSizeResamplesAndComesBack();
    void closingDuringAStrokeKeepsItAndAsks();
    void undoDuringAStrokeEndsItFirst();
    void pagesBringTheirViewForward();
    void layoutOfALargerScreenFits();
    void layoutComesBack();
    void noControlOfTheToolDockIsCutOff();
    void idleWindowDrawsNothing();
    void importFileComesAfterTheLoopRuns();
    void handOverWritesTheMapAndEndsTheProcess();

private:
    void _show();
    void _openDome();
    void _click(const char *command);
    RibbonButton *_buttonOf(const QAction *action) const;
    void _stroke(ReliefView &view, QPoint from, QPoint to);
    void _modify();
    Relief &_relief() { return *m_window->workbench().relief(); }
    QString _path(const QString &name) const { return m_folder->filePath(name); }
    template <typename T>
    T *_child(const char *name) const
    {
        return m_window->findChild<T *>(QLatin1String(name));
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<MainWindow> m_window;
};

void TestMainWindow::initTestCase()
{
    QApplication::setStyle(new Office2013Style);
}

void TestMainWindow::init()
{
    QevSettings().clear();
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(saveWorkspace(*dome(), _path(QStringLiteral("dome.scp"))));
    QImage picture(80, 60, QImage::Format_RGB32);
    picture.fill(Qt::black);
    QPainter(&picture).fillRect(20, 15, 40, 30, Qt::gray);
    QVERIFY(picture.save(_path(QStringLiteral("plate.PNG")), "PNG"));
    m_window = std::make_unique<MainWindow>();
}

void TestMainWindow::cleanup()
{
    m_window.reset();
}

void TestMainWindow::_show()
{
    m_window->resize(1300, 760);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    QTest::qWait(30);
}

void TestMainWindow::_openDome()
{
    _show();
    QVERIFY(m_window->openFile(_path(QStringLiteral("dome.scp")), 0));
    QTest::qWait(60);
}

RibbonButton *TestMainWindow::_buttonOf(const QAction *action) const
{
    for (RibbonButton *button : m_window->findChildren<RibbonButton *>()) {
        if (button->defaultAction() == action)
            return button;
    }
    return nullptr;
}

/// Goes to the page of the command's button and presses it.
void TestMainWindow::_click(const char *command)
{
    RibbonButton *button = _buttonOf(m_window->commands()[command]);
    QVERIFY2(button, command);
    for (int page = 0; page < m_window->ribbonBar()->pageCount(); ++page) {
        if (m_window->ribbonBar()->page(page)->isAncestorOf(button))
            m_window->ribbonBar()->setCurrentPage(page);
    }
    if (m_window->backstage()->isAncestorOf(button) && !m_window->backstage()->isVisible())
        m_window->toggleBackStage();
    QTRY_VERIFY2(button->isVisible(), command);
    QVERIFY2(button->isEnabled(), command);
    QTest::mouseClick(button, Qt::LeftButton);
}

void TestMainWindow::_stroke(ReliefView &view, QPoint from, QPoint to)
{
    QTest::mousePress(&view, Qt::LeftButton, {}, from);
    for (int step = 1; step <= 4; ++step)
        QTest::mouseMove(&view, from + (to - from) * step / 4);
    QTest::mouseRelease(&view, Qt::LeftButton, {}, to);
}

void TestMainWindow::_modify()
{
    QVERIFY(m_window->workbench().apply(operation("zScale", {{_relief().zScale + 0.5}})));
}

void TestMainWindow::everyToolButtonChoosesItsTool()
{
    _openDome();
    int walked = 0;
    for (const ToolRow &row : toolTable()) {
        if (row.type == Tool::None)
            continue;
        QAction *action = m_window->commands()[row.icon];
        _click(row.icon);
        QCOMPARE(m_window->workbench().tool.type, int(row.type));
        QVERIFY(action->isChecked());
        QVERIFY2(action->toolTip().startsWith(QLatin1String(row.label) + QLatin1String(" Tool")),
                 qPrintable(action->toolTip()));
        QVERIFY(!action->icon().isNull());
        QCOMPARE(m_window->findChild<ToolPanel *>()->params().type, int(row.type));
        ++walked;
    }
    QCOMPARE(walked, 20);
    _click("erase_selection_tool");
    QCOMPARE(m_window->workbench().tool.type, int(Tool::Erase));
    QVERIFY(m_window->commands()["erase_tool"]->isChecked());
}

void TestMainWindow::everyCommandDoesWhatItSays()
{
    _openDome();
    PersonAtHand person;
    const CommandSet &commands = m_window->commands();
    Workbench &bench = m_window->workbench();
    QSet<QString> walked;
    const auto click = [&](const char *id) {
        walked.insert(QLatin1String(id));
        _click(id);
    };
    const QByteArray plain = heightsOf(_relief());

    click("maskInvert");
    QCOMPARE(_relief().maskLayer().constData()[0], 1.0F);
    click("maskClear");
    QCOMPARE(maskOf(_relief()), QByteArray(side * side * 4, '\0'));
    click("undo");
    QCOMPARE(_relief().maskLayer().constData()[0], 1.0F);
    click("redo");
    QCOMPARE(_relief().maskLayer().constData()[0], 0.0F);

    click("modeAdditive");
    QCOMPARE(m_window->flatWin()->selectionModifier(), SelectionModifier::Additive);
    click("modeSubtractive");
    QCOMPARE(m_window->flatWin()->selectionModifier(), SelectionModifier::Subtractive);
    click("modeNormal");
    QCOMPARE(m_window->flatWin()->selectionModifier(), SelectionModifier::Normal);

    const QPoint middle = m_window->flatWin()->rect().center();
    _click("rectangle_selection_tool");
    _stroke(*m_window->flatWin(), middle - QPoint(12, 12), middle + QPoint(12, 12));
    QVERIFY(_relief().selectionActive);
    click("selectNone");
    QVERIFY(!_relief().selectionActive);
    QVERIFY(!commands["selectNone"]->isEnabled());

    _click("crop_tool");
    QVERIFY(!commands["cropApply"]->isEnabled());
    _stroke(*m_window->flatWin(), middle - QPoint(12, 12), middle + QPoint(12, 12));
    QVERIFY(commands["cropApply"]->isEnabled());
    click("cropApply");
    QCOMPARE(_relief().heightAt(side / 2, 6), 0.0F);
    QVERIFY(_relief().heightAt(side / 2, side / 2) > 0.0F);
    _click("undo");
    QCOMPARE(heightsOf(_relief()), plain);

    const double before = m_window->sculptWin()->camera().zoom;
    QTest::keyClick(m_window.get(), Qt::Key_F);
    const double fitted = m_window->sculptWin()->camera().zoom;
    QWheelEvent wheel(QPointF(50, 50), m_window->sculptWin()->mapToGlobal(QPointF(50, 50)), {},
                      QPoint(0, 240), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(m_window->sculptWin(), &wheel);
    QVERIFY(m_window->sculptWin()->camera().zoom != fitted);
    click("zoomAll");
    QCOMPARE(m_window->sculptWin()->camera().zoom, fitted);
    QVERIFY(before > 0);

    const double size = m_window->workbench().tool.size;
    walked << QStringLiteral("smaller") << QStringLiteral("larger");
    QTest::keyClick(m_window.get(), Qt::Key_BracketRight);
    QCOMPARE(m_window->workbench().tool.size, size + 0.01);
    QTest::keyClick(m_window.get(), Qt::Key_BracketLeft);
    QCOMPARE(m_window->workbench().tool.size, size);

    click("materialClone");
    QVERIFY(_child<QComboBox>("materials")->currentText().contains(QLatin1String("copy")));
    for (const char *id : {"materialAmbient", "materialDiffuse", "materialSpecular"}) {
        person.titles.clear();
        click(id);
        QCOMPARE(person.titles.size(), 1);
        QVERIFY(person.titles[0].contains(commands[id]->text()));
    }
    person.answers = {QMessageBox::Yes};
    click("materialDelete");
    QCOMPARE(_child<QComboBox>("materials")->currentText(), QStringLiteral("obsidian"));
    QVERIFY(!commands["materialDelete"]->isEnabled());

    click("theme");
    QVERIFY(QevSettings().darkTheme());
    QCOMPARE(commands["theme"]->text(), QStringLiteral("Light"));
    _click("theme");
    QVERIFY(!QevSettings().darkTheme());

    for (const char *start : {"unlock all", "lock all three", "lock only X and Y", "unlock all"}) {
        QVERIFY2(commands["aspectLock"]->toolTip().contains(QLatin1String(start)), start);
        click("aspectLock");
    }

    person.path = _path(QStringLiteral("out.stl"));
    click("exportStl");
    QVERIFY(QFileInfo(person.path).size() > 84);
    QCOMPARE(QevSettings().lastExportFolder(), QFileInfo(person.path).canonicalPath());

    person.path = _path(QStringLiteral("other"));
    person.sentences.clear();
    click("saveAs");
    QCOMPARE(person.sentences.join(QLatin1Char('|')), QString());
    QVERIFY(QFile::exists(_path(QStringLiteral("other.scp"))));
    QCOMPARE(m_window->windowTitle(), QStringLiteral("Brindlemark Marlowen 3 - other.scp"));
    _modify();
    QVERIFY(m_window->windowTitle().endsWith(QLatin1String(" *")));
    click("save");
    QVERIFY(!bench.isModified());
    const Result<std::unique_ptr<Relief>> read = loadWorkspace(_path(QStringLiteral("other.scp")));
    QVERIFY(read);
    QCOMPARE(heightsOf(*read.value()), heightsOf(_relief()));
    QCOMPARE(read.value()->zScale, _relief().zScale);

    person.path = _path(QStringLiteral("dome.scp"));
    click("open");
    QCOMPARE(bench.file(), person.path);
    m_window->openFile(_path(QStringLiteral("other.scp")), 0);
    click("openLast");
    QCOMPARE(bench.file(), _path(QStringLiteral("other.scp")));

    person.answers = {QMessageBox::Ok};
    click("new");
    QVERIFY(bench.file().isEmpty());
    QVERIFY(_relief().cells() > 4);

    click("startPage");
    QVERIFY(!m_window->sculptWin()->isVisible());
    for (QPushButton *button : m_window->findChildren<QPushButton *>()) {
        if (button->text() == QLatin1String("Back") && button->isVisible())
            button->click();
    }
    QVERIFY(m_window->sculptWin()->isVisible());

    person.titles.clear();
    click("about");
    QCOMPARE(person.titles.size(), 1);
    click("file");
    QVERIFY(m_window->backstage()->isVisible());
    QTest::keyClick(m_window->backstage(), Qt::Key_Escape);
    click("exit");
    QVERIFY(!m_window->isVisible());

    walked.insert(QStringLiteral("sendToDrafteon")); // has a test of its own
    for (const QAction *action : commands.all()) {
        if (!action->data().isValid() || action->objectName().startsWith(QLatin1String("mode")))
            QVERIFY2(walked.contains(action->objectName()), qPrintable(action->objectName()));
    }
}

void TestMainWindow::keysChooseToolsButNotWhileTyping()
{
    _openDome();
    QSet<QString> keys;
    for (const QAction *action : m_window->commands().all()) {
        for (const QKeySequence &key : action->shortcuts()) {
            QVERIFY2(!keys.contains(key.toString()), qPrintable(key.toString()));
            keys.insert(key.toString());
            QVERIFY2(action->toolTip().contains(key.toString(QKeySequence::NativeText)),
                     qPrintable(action->toolTip()));
        }
    }
    m_window->sculptWin()->setFocus();
    QTest::keyClick(m_window->sculptWin(), Qt::Key_C);
    QCOMPARE(m_window->workbench().tool.type, int(Tool::Clay));
    QTest::keyClick(m_window->sculptWin(), Qt::Key_R);
    QCOMPARE(m_window->workbench().tool.type, int(Tool::Remove));
    QVERIFY(_child<QCheckBox>("floor")->isEnabled());
    QVERIFY(!_child<QCheckBox>("ceiling")->isEnabled());
    m_window->ribbonBar()->setCurrentPage(WindowPages::Size);
    auto *field = _child<NumberField>("size0");
    field->setFocus();
    QTest::keyClicks(field, QStringLiteral("csd["));
    QCOMPARE(m_window->workbench().tool.type, int(Tool::Remove));
    auto *library = m_window->findChild<QListWidget *>();
    library->setFocus();
    QTest::keyClick(library, Qt::Key_D);
    m_window->toggleBackStage();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_D);
    QCOMPARE(m_window->workbench().tool.type, int(Tool::Remove));
}

void TestMainWindow::pictureIsImportedAcceptedAndSculpted()
{
    _show();
    QVERIFY(!m_window->ribbonBar()->isPageVisible(WindowPages::Export));
    QVERIFY(m_window->openFile(_path(QStringLiteral("plate.PNG")), 0));
    QTest::qWait(60);
    QVERIFY(m_window->workbench().importOpen());
    QCOMPARE(m_window->findChild<SculptPanels *>()->currentIndex(), 1);
    QVERIFY(!m_window->workbench().isModified());
    const QPoint middle = m_window->sculptWin()->rect().center();
    const QByteArray opened = heightsOf(_relief());
    _stroke(*m_window->sculptWin(), middle, middle + QPoint(15, 0));
    QCOMPARE(heightsOf(_relief()), opened);

    QPushButton *accept = nullptr;
    for (QPushButton *button : m_window->findChildren<QPushButton *>()) {
        if (button->text() == QLatin1String("Accept"))
            accept = button;
    }
    QVERIFY(accept);
    QTest::mouseClick(accept, Qt::LeftButton);
    QVERIFY(!m_window->workbench().importOpen());
    QVERIFY(m_window->workbench().isModified());
    QVERIFY(m_window->ribbonBar()->isPageVisible(WindowPages::Export));
    QVERIFY(!m_window->ribbonBar()->isPageVisible(WindowPages::OrientScale));

    _click("deposit_tool");
    _stroke(*m_window->sculptWin(), middle, middle + QPoint(15, 0));
    const QByteArray sculpted = heightsOf(_relief());
    QVERIFY(sculpted != opened);
    QTest::keyClick(m_window.get(), Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(heightsOf(_relief()), opened);
    QTest::keyClick(m_window.get(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(heightsOf(_relief()), sculpted);

    PersonAtHand person;
    person.answers = {QMessageBox::Discard};
    m_window->ribbonBar()->setCurrentPage(WindowPages::Export);
    QVERIFY(m_window->openFile(_path(QStringLiteral("plate.PNG")), 0));
    QCOMPARE(m_window->ribbonBar()->currentPage(), int(WindowPages::SculptingTools));
}

void TestMainWindow::commandsSayWhyTheyCannotAct()
{
    for (const QAction *action : m_window->commands().all()) {
        if (action->isEnabled())
            continue;
        const QStringList lines = action->toolTip().split(QLatin1Char('\n'));
        QVERIFY2(lines.size() >= 2 && lines.last().endsWith(QLatin1Char('.')),
                 qPrintable(action->objectName() + QLatin1Char(':') + action->toolTip()));
    }
    QVERIFY(!m_window->commands()["save"]->isEnabled());
    QVERIFY(!m_window->commands()["sendToDrafteon"]->isVisible());
}

void TestMainWindow::guardKeepsTheWorkWhenSavingFails()
{
    _openDome();
    _modify();
    const double scale = _relief().zScale;
    const QString path = _path(QStringLiteral("dome.scp"));
    QVERIFY(QFile::remove(path) && QFile::link(QStringLiteral("/dev/full"), path));
    PersonAtHand person;
    person.answers = {QMessageBox::Save, QMessageBox::Yes, QMessageBox::Ok};
    QVERIFY(!m_window->close());
    QCOMPARE(person.titles.value(2), QStringLiteral("Save Failed"));
    QVERIFY(m_window->isVisible() && m_window->workbench().isModified());
    QCOMPARE(_relief().zScale, scale);
}

void TestMainWindow::droppedFileIsOpened()
{
    _openDome();
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(_path(QStringLiteral("plate.PNG")))});
    QDragEnterEvent enter(QPoint(400, 400), Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(m_window.get(), &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop(QPointF(400, 400), Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(m_window.get(), &drop);
    QTRY_VERIFY(m_window->workbench().importOpen());
}

void TestMainWindow::recentFileThatIsGone()
{
    _openDome();
    QVERIFY(m_window->openFile(_path(QStringLiteral("plate.PNG")), 0));
    QVERIFY(QFile::remove(_path(QStringLiteral("dome.scp"))));
    m_window->toggleBackStage();
    auto *action = _child<RecentFilesMenu>("")->actions().at(1);
    QVERIFY(action->isVisible());
    QCOMPARE(action->text(), QStringLiteral("dome.scp"));
    PersonAtHand person;
    RibbonButton *button = _buttonOf(action);
    QTRY_VERIFY(button->isVisible());
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(person.titles, QStringList{QStringLiteral("Open Failed")});
    QCOMPARE(m_window->workbench().file(), _path(QStringLiteral("plate.PNG")));
}

void TestMainWindow::typedSizeResamplesAndComesBack()
{
    _openDome();
    m_window->ribbonBar()->setCurrentPage(WindowPages::Size);
    const QByteArray heights = heightsOf(_relief());
    auto *units = _child<QComboBox>("units");
    QTest::keyClick(units, Qt::Key_End);
    auto *x = _child<NumberField>("size0");
    QVERIFY(x->text().endsWith(QLatin1String("mm")));
    QCOMPARE(qRound(x->value() * 10), qRound(side / cellsPerInch * 254));
    x->setFocus();
    x->selectAll();
    QTest::keyClicks(x, QStringLiteral("25,4"));
    QTest::keyClick(x, Qt::Key_Return);
    QCOMPARE(_relief().width(), 128);
    QCOMPARE(_relief().height(), 128);
    QTRY_VERIFY(m_window->sculptWin()->hasFocus());
    x->setFocus();
    QTest::keyClick(x, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(_relief().width(), side);
    QCOMPARE(heightsOf(_relief()), heights);
}

void TestMainWindow::closingDuringAStrokeKeepsItAndAsks()
{
    _openDome();
    const QByteArray before = heightsOf(_relief());
    const QPoint middle = m_window->sculptWin()->rect().center();
    QTest::mousePress(m_window->sculptWin(), Qt::LeftButton, {}, middle);
    QTest::mouseMove(m_window->sculptWin(), middle + QPoint(10, 0));
    QVERIFY(m_window->workbench().engine().stroking());
    PersonAtHand person;
    person.answers = {QMessageBox::Cancel};
    QVERIFY(!m_window->close());
    QCOMPARE(person.sentences.size(), 1);
    QVERIFY(!m_window->workbench().engine().stroking());
    const QByteArray stroked = heightsOf(_relief());
    QVERIFY(stroked != before);
    QTest::mouseRelease(m_window->sculptWin(), Qt::LeftButton, {}, middle + QPoint(10, 0));
    QCOMPARE(heightsOf(_relief()), stroked);
    m_window->undo();
    QCOMPARE(heightsOf(_relief()), before);
}

void TestMainWindow::undoDuringAStrokeEndsItFirst()
{
    _openDome();
    const QByteArray before = heightsOf(_relief());
    const QPoint middle = m_window->sculptWin()->rect().center();
    QTest::mousePress(m_window->sculptWin(), Qt::LeftButton, {}, middle);
    m_window->undo();
    QCOMPARE(heightsOf(_relief()), before);
    QTest::mouseMove(m_window->sculptWin(), middle + QPoint(10, 0));
    QTest::mouseRelease(m_window->sculptWin(), Qt::LeftButton, {}, middle + QPoint(10, 0));
    QCOMPARE(heightsOf(_relief()), before);
    QVERIFY(m_window->workbench().history().canRedo());
}

void TestMainWindow::pagesBringTheirViewForward()
{
    _openDome();
    auto *splitter = _child<QSplitter>("CentralSplitter");
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
    _show();
    auto *splitter = _child<QSplitter>("CentralSplitter");
    m_window->openFile(_path(QStringLiteral("dome.scp")), 0);
    QTest::qWait(30);
    splitter->setSizes({200, 500});
    const double share = double(splitter->sizes()[0]) / splitter->sizes()[1];
    m_window->resize(1100, 640);
    m_window->setLightPos(5);
    m_window->findChild<CollapsibleDock *>(QStringLiteral("LibraryDock"))->setCollapsed(true);
    m_window->chooseMaterial(QStringLiteral("gold"));
    QTest::qWait(50);
    QVERIFY(m_window->close());
    QCOMPARE(QevSettings().value(QStringLiteral("material")).toString(), QStringLiteral("gold"));
    m_window = std::make_unique<MainWindow>();
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    QTRY_COMPARE(m_window->size(), QSize(1100, 640));
    auto *library = m_window->findChild<CollapsibleDock *>(QStringLiteral("LibraryDock"));
    QVERIFY(library->isCollapsed());
    QVERIFY(library->openWidth() > 100);
    m_window->openFile(_path(QStringLiteral("dome.scp")), 0);
    QTest::qWait(50);
    splitter = _child<QSplitter>("CentralSplitter");
    QVERIFY(std::abs(double(splitter->sizes()[0]) / splitter->sizes()[1] - share) < 0.1);
    QCOMPARE(_child<QComboBox>("materials")->currentText(), QStringLiteral("gold"));
}

void TestMainWindow::noControlOfTheToolDockIsCutOff()
{
    m_window->resize(1100, 640);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    QTest::qWait(60);
    auto *panels = m_window->findChild<SculptPanels *>();
    for (int tab = 0; tab < panels->count(); ++tab) {
        panels->setCurrentIndex(tab);
        QTest::qWait(20);
        auto *area = qobject_cast<QScrollArea *>(panels->currentWidget());
        QVERIFY(area && area->widget()->width() <= area->viewport()->width());
        const QRect seen(panels->mapToGlobal(QPoint()), panels->size());
        const QRect dock(_child<QDockWidget>("ToolDock")->mapToGlobal(QPoint()),
                         _child<QDockWidget>("ToolDock")->size());
        QVERIFY(dock.left() <= seen.left() && seen.right() <= dock.right());
    }
    auto *library = _child<QDockWidget>("LibraryDock");
    auto *title = library->titleBarWidget()->findChild<QLabel *>();
    QCOMPARE(title->text(), QStringLiteral("Patterns & Alphas"));
    QVERIFY(title->width() >= title->fontMetrics().horizontalAdvance(title->text()));
}

void TestMainWindow::idleWindowDrawsNothing()
{
    _openDome();
    QSignalSpy frames(m_window->sculptWin(), &QOpenGLWidget::frameSwapped);
    const auto pictures = [this] {
        return m_window->sculptWin()->counters().pictures +
               m_window->flatWin()->counters().pictures;
    };
    int before = -1;
    // Longer than any timer of the views.
    const auto idle = [&] {
        frames.clear();
        before = pictures();
        QTest::qWait(400);
        return frames.isEmpty();
    };
    QTRY_VERIFY(idle());
    QCOMPARE(pictures(), before);
}

void TestMainWindow::importFileComesAfterTheLoopRuns()
{
    _show();
    m_window->setImportFile(_path(QStringLiteral("plate.PNG")));
    QVERIFY(!m_window->workbench().relief());
    QTRY_VERIFY(m_window->workbench().relief());
    QVERIFY(m_window->windowTitle().contains(QLatin1String("plate.PNG")));
}

/// The last one: it asks the application to quit.
void TestMainWindow::handOverWritesTheMapAndEndsTheProcess()
{
    _openDome();
    int ended = 0;
    m_window->exports().forcedExit = [&ended] { ++ended; };
    const QString target = _path(QStringLiteral("map.bin"));
    m_window->setExportPath(target);
    _modify();
    PersonAtHand person;
    _click("sendToDrafteon");
    QCOMPARE(QFileInfo(target).size(), 16 + 4 * side * side);
    QVERIFY(QevSettings().contains(QStringLiteral("splitterState")));
    QCOMPARE(person.titles, QStringList());
    QTRY_COMPARE_WITH_TIMEOUT(ended, 1, 3000);
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
