#include "base/qevsettings.h"
#include "files/workspacefile.h"
#include "relief/grid/physicalsize.h"
#include "relief/grid/relief.h"
#include "relief/operations/operationtable.h"
#include "render/views/facetwin.h"
#include "render/views/flatwin.h"
#include "render/views/sculptwin.h"
#include "ribbonstage.h"
#include "ui/commandset.h"
#include "ui/controllers/editcontroller.h"
#include "ui/controllers/exportcontroller.h"
#include "ui/controllers/filecontroller.h"
#include "ui/controllers/importcontroller.h"
#include "ui/controllers/lookcontroller.h"
#include "ui/controllers/toolcontroller.h"
#include "ui/pages/exportpage.h"
#include "ui/pages/toolspage.h"
#include "ui/panels/importpanel.h"
#include "ui/panels/noticebar.h"
#include "ui/panels/toolpanel.h"
#include "ui/ribbon/numberfield.h"
#include "ui/ribbon/ribbonmainwindow.h"
#include "ui/windowparts.h"
#include "workbench/workbench.h"

#include <QtTest>
#include <QtWidgets>

using namespace marlowen;

/// The controllers of the window without the window.
class TestControllers : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void guardAsksOnceAndObeys_data();
    void guardAsksOnceAndObeys();
    void guardOfAnEndingProgramCannotBeCancelled();
    void savingToTheFileBeingOpenedLoadsWhatWasSaved();
    void fileThatChangedOnDiskIsNotReplacedUnasked();
    void pictureStartsAtCarvingDepth();
    void damagedFileCostsOneBox_data();
    void damagedFileCostsOneBox();
    void unknownFileOpensNothing();
    void exportedNameGetsItsEnding_data();
    void exportedNameGetsItsEnding();
    void pageSaysWhatIsWritten();
    void toolsKeepTheirOwnValues();
    void choosingAToolEndsTheStroke();
    void materialsAreRenamedClonedAndDeleted();
    void importSettingsStayForTheNextStart();

private:
    QString _path(const QString &name) const { return m_folder->filePath(name); }
    QString _dome() const { return _path(QStringLiteral("dome.scp")); }
    QString _plate() const { return _path(QStringLiteral("plate.PNG")); }
    void _open()
    {
        QVERIFY(m_files->openFile(_dome()));
        QVERIFY(m_bench->apply(operation("zScale", {{2.5}})));
    }
    double _scaleInFile() const { return loadWorkspace(_dome()).value()->zScale; }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<Workbench> m_bench;
    std::unique_ptr<QWidget> m_window;
    FileController *m_files = nullptr; ///< owned by the window
};

void TestControllers::init()
{
    QevSettings().clear();
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(saveWorkspace(*flat(), _dome()));
    QImage picture(80, 60, QImage::Format_RGB32);
    picture.fill(Qt::gray);
    QVERIFY(picture.save(_plate(), "PNG"));
    m_bench = std::make_unique<Workbench>();
    m_window = std::make_unique<QWidget>();
    m_window->show();
    m_files = new FileController(*m_bench, m_window.get());
}

void TestControllers::cleanup()
{
    m_window.reset();
    m_bench.reset();
}

void TestControllers::guardAsksOnceAndObeys_data()
{
    QTest::addColumn<int>("answer");
    QTest::addColumn<bool>("proceeds");
    QTest::addColumn<bool>("saved");
    QTest::newRow("Save") << int(QMessageBox::Save) << true << true;
    QTest::newRow("Discard") << int(QMessageBox::Discard) << true << false;
    QTest::newRow("Cancel") << int(QMessageBox::Cancel) << false << false;
}

/// The user cancels saving as well; only then the work is discarded.
void TestControllers::guardOfAnEndingProgramCannotBeCancelled()
{
    m_bench->take(flat());
    QVERIFY(m_bench->apply(operation("zScale", {{2.5}})));
    m_files->endForGood();
    PersonAtHand person;
    person.answers = {QMessageBox::Save, QMessageBox::Discard};
    QVERIFY(m_files->mayLoseWork());
    QCOMPARE(person.sentences.size(), 2);
}

void TestControllers::guardAsksOnceAndObeys()
{
    QFETCH(int, answer);
    QFETCH(bool, proceeds);
    QFETCH(bool, saved);
    _open();
    PersonAtHand person;
    person.answers = {QMessageBox::StandardButton(answer)};
    QCOMPARE(m_files->openFile(_plate()), proceeds);
    QCOMPARE(person.sentences, QStringList{QStringLiteral("The current model has been modified.")});
    QCOMPARE(_scaleInFile(), saved ? 2.5 : 1.0);
    QCOMPARE(m_bench->session().active(), proceeds);
    QCOMPARE(m_bench->isModified(), !proceeds);
}

void TestControllers::savingToTheFileBeingOpenedLoadsWhatWasSaved()
{
    _open();
    PersonAtHand person;
    person.answers = {QMessageBox::Save};
    QVERIFY(m_files->openFile(_dome()));
    QCOMPARE(m_bench->relief()->zScale, 2.5);
}

void TestControllers::fileThatChangedOnDiskIsNotReplacedUnasked()
{
    _open();
    QFile file(_dome());
    QVERIFY(file.open(QIODevice::Append) && file.write("more") == 4);
    file.close();
    const qint64 size = QFileInfo(_dome()).size();
    PersonAtHand person;
    person.answers = {QMessageBox::No, QMessageBox::Yes};
    QVERIFY(!m_files->save());
    QCOMPARE(QFileInfo(_dome()).size(), size);
    QVERIFY(m_files->save());
    QVERIFY(m_files->save());
    QCOMPARE(person.titles.size(), 2);
}

void TestControllers::pictureStartsAtCarvingDepth()
{
    QVERIFY(m_files->openFile(_plate()));
    const Relief &relief = *m_bench->relief();
    const double tenth = std::min(relief.width(), relief.height()) / 10.0;
    QCOMPARE(m_bench->session().settings().depth, tenth);
    m_files->rememberDepth(25.0);
    QVERIFY(m_files->openFile(_plate()));
    QCOMPARE(m_bench->session().settings().depth, 25.0);
}

void TestControllers::damagedFileCostsOneBox_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("title");
    QTest::newRow("magic") << "a.scp" << QByteArray(200, 'x') << "Invalid File";
    QTest::newRow("short") << "b.SCP" << QByteArray::fromHex("50744d770000000100000010000000100000")
                           << "Load Failed";
    QTest::newRow("no picture") << "d.png" << QByteArray("not a picture") << "Open Failed";
}

void TestControllers::damagedFileCostsOneBox()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, title);
    QFile file(_path(name));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    file.close();
    _open();
    const Relief *before = m_bench->relief();
    const QStringList recent = QevSettings().recentFiles();
    PersonAtHand person;
    QVERIFY(!m_files->openFile(file.fileName()));
    QCOMPARE(person.titles, QStringList{title});
    QCOMPARE(m_bench->relief(), before);
    QVERIFY(m_bench->isModified());
    QVERIFY(m_bench->history().canUndo());
    QCOMPARE(QevSettings().recentFiles(), recent);
}

void TestControllers::unknownFileOpensNothing()
{
    _open();
    PersonAtHand person;
    QVERIFY(!m_files->openFile(_path(QStringLiteral("notes.txt"))));
    QVERIFY(!m_files->openFile(QString()));
    QCOMPARE(person.titles.count(QStringLiteral("Open Failed")), 2);
    QCOMPARE(m_files->windowTitle(), QStringLiteral("Brindlemark Marlowen 3 - dome.scp *"));
}

void TestControllers::exportedNameGetsItsEnding_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("written");
    QTest::newRow("bare") << QStringLiteral("bare") << QStringLiteral("bare.stl");
    QTest::newRow("capitals") << QStringLiteral("whole.STL") << QStringLiteral("whole.STL");
    QTest::newRow("no dot") << QStringLiteral("mystl") << QStringLiteral("mystl");
    QTest::newRow("suffix") << QStringLiteral("part.v2") << QStringLiteral("part.v2.stl");
}

void TestControllers::exportedNameGetsItsEnding()
{
    QFETCH(QString, typed);
    QFETCH(QString, written);
    _open();
    PersonAtHand person;
    person.path = _path(typed);
    Ribbon ribbon;
    ExportController(*m_bench, ribbon.pages.exports, m_window.get()).exportStl();
    const QStringList files = QDir(m_folder->path()).entryList(QDir::Files);
    QCOMPARE(files.size(), 3); // with dome and plate
    QVERIFY2(files.contains(written), qPrintable(files.join(QLatin1Char(' '))));
}

void TestControllers::pageSaysWhatIsWritten()
{
    _open();
    QVERIFY(m_bench->apply({QStringLiteral("Bowl"), [](Relief &relief, const EditRun &) {
                                for (int i = 0; i < relief.cells(); ++i)
                                    relief.heights().data()[i] = float(i % side) * float(i / side);
                                return Outcome();
                            }}));
    Ribbon ribbon;
    ExportController exports(*m_bench, ribbon.pages.exports, m_window.get());
    exports.setUnit(2);
    const auto choose = [&ribbon](const char *name, double value) {
        ribbon.window.findChild<NumberField *>(QLatin1String(name))->setValue(value);
    };
    choose("tolerance", 0.0127);
    ribbon.window.findChild<QCheckBox *>(QStringLiteral("solid"))->click();
    QCOMPARE(ribbon.window.findChild<QComboBox *>(QStringLiteral("quality"))->currentText(),
             QStringLiteral("Medium"));
    exports.setPageShown(true);
    const auto *count = ribbon.window.findChild<QLabel *>(QStringLiteral("facetCount"));
    const auto facets = [count] { return QLocale().toInt(count->text()); };
    QTRY_VERIFY(facets() > 0);
    PersonAtHand person;
    person.path = _path(QStringLiteral("bowl.stl"));
    exports.exportStl();
    QCOMPARE(QFileInfo(person.path).size(), 88 + 50 * facets());
    choose("facets", 20.0);
    QTRY_VERIFY(facets() > 0 && facets() <= 20);

    Ribbon next;
    QCOMPARE(next.pages.exports->options(), ribbon.pages.exports->options());
}

void TestControllers::toolsKeepTheirOwnValues()
{
    Ribbon ribbon;
    ToolPanel panel;
    ToolController tool(
        *m_bench, {&panel, ribbon.tools.get(), ribbon.pages.tools, ribbon.pages.edit}, nullptr);
    tool.setFlag(&Relief::symmetryX, true);
    m_bench->take(flat());
    QVERIFY(m_bench->relief()->symmetryX);
    m_bench->take(flat());
    QVERIFY(m_bench->relief()->symmetryX && !m_bench->relief()->symmetryY);
    tool.choose(Tool::Remove);
    tool.set(&ToolParams::ceilingOrFloor, true);
    tool.set(&ToolParams::size, 0.9);
    tool.choose(Tool::Smooth);
    QCOMPARE(panel.params().size, ToolParams{}.size);
    QVERIFY(!panel.params().ceilingOrFloor);
    tool.choose(Tool::Remove);
    QCOMPARE(panel.params().size, 0.9);
    QVERIFY(panel.params().ceilingOrFloor);
}

void TestControllers::choosingAToolEndsTheStroke()
{
    Ribbon ribbon;
    ToolPanel panel;
    ToolController tool(
        *m_bench, {&panel, ribbon.tools.get(), ribbon.pages.tools, ribbon.pages.edit}, nullptr);
    m_bench->take(flat());
    m_bench->engine().beginStroke(m_bench->tool, {0.0, 0.0});
    tool.choose(Tool::Clay);
    QVERIFY(!m_bench->engine().stroking());
    QCOMPARE(m_bench->history().count(), 1);
}

void TestControllers::materialsAreRenamedClonedAndDeleted()
{
    Ribbon ribbon;
    SculptWin sculptWin;
    FlatWin flatWin;
    FacetWin facetWin;
    LookController look({&sculptWin, &flatWin, &facetWin, ribbon.pages.viewSettings},
                        m_window.get());
    look.chooseMaterial(QStringLiteral("gold"));
    look.cloneMaterial();
    auto *list = ribbon.window.findChild<QComboBox *>(QStringLiteral("materials"));
    QVERIFY(list->currentText().contains(QLatin1String("copy")));
    const auto *name = ribbon.window.findChild<QLineEdit *>(QStringLiteral("materialName"));
    QCOMPARE(name->selectedText(), list->currentText()); // to be typed over
    look.editName(QStringLiteral("  mine "));
    look.finishName();
    QCOMPARE(list->currentText(), QStringLiteral("mine"));
    PersonAtHand person;
    look.editName(QStringLiteral("gold"));
    look.finishName();
    QCOMPARE(person.titles.size(), 1);
    QCOMPARE(list->currentText(), QStringLiteral("mine"));
    person.answers = {QMessageBox::No, QMessageBox::Yes};
    look.deleteMaterial();
    QCOMPARE(list->currentText(), QStringLiteral("mine"));
    look.deleteMaterial();
    QVERIFY(list->findText(QStringLiteral("mine")) < 0);
    look.chooseMaterial(QStringLiteral("gold"));
    look.store();
    QCOMPARE(QevSettings().value(QStringLiteral("material")).toString(), QStringLiteral("gold"));
}

void TestControllers::importSettingsStayForTheNextStart()
{
    for (const bool firstStart : {true, false}) {
        Workbench bench;
        ImportPanel panel(&bench.session());
        ImportController controller(bench, &panel, m_window.get());
        connect(&bench, &Workbench::importChanged, &panel, &ImportPanel::refresh);
        FileController files(bench, m_window.get());
        QVERIFY(files.openFile(_plate()));
        controller.opened();
        ImportSettings settings = bench.session().settings();
        QCOMPARE(settings.smoothing, firstStart ? 0.0 : 1.5);
        auto *notice = panel.findChild<NoticeBar *>();
        QCOMPARE(notice->isVisibleTo(&panel), firstStart);
        settings.smoothing = 1.5;
        bench.session().change(settings);
        emit notice->dismissed();
        QVERIFY(!notice->isVisibleTo(&panel));
    }
}

QTEST_MAIN(TestControllers)
#include "tst_controllers.moc"
