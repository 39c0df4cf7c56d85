#include "base/qevsettings.h"
#include "files/workspacefile.h"
#include "personathand.h"
#include "relief/grid/physicalsize.h"
#include "relief/grid/relief.h"
#include "relief/operations/operationtable.h"
#include "render/views/facetwin.h"
#include "render/views/flatwin.h"
#include "render/views/sculptwin.h"
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

namespace {

constexpr int side = 96;

std::unique_ptr<Relief> flat()
{
    auto relief = std::make_unique<Relief>(side, side);
    std::fill_n(relief->heights().data(), relief->cells(), 4.0F);
    return relief;
}

/// A ribbon with all pages, but neither views nor docks.
struct Ribbon
{
    Ribbon() { addWindowCommands(commands); }

    RibbonMainWindow window;
    CommandSet commands{&window};
    std::unique_ptr<ToolActions> tools;
    WindowPages pages{};
    void build()
    {
        tools = std::make_unique<ToolActions>(commands, nullptr);
        pages = buildRibbon(window, commands, *tools);
    }
};

} // namespace

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
    void sizesFollowTheLock_data();
    void sizesFollowTheLock();
    void sizeIsOneStep();
    void askedDepthHoldsAfterResampling();
    void tooLargeASizeIsRefused();
    void cropNeedsItsToolAndAnOutline();
    void toolRecordShowsEverywhere();
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

/// The person cancels saving, too; only then the work is given up.
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
    QCOMPARE(m_bench->importOpen(), proceeds);
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
    QTest::newRow("huge") << "c.scp"
                          << QByteArray::fromHex("50744d77000000017fffffff7fffffff") +
                                 QByteArray(24, '\0')
                          << "Load Failed";
    QTest::newRow("no picture") << "d.png" << QByteArray("not a picture") << "Open Failed";
    QTest::newRow("empty picture") << "e.JPG" << QByteArray() << "Open Failed";
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
    QSignalSpy said(m_files, &FileController::said);
    QVERIFY(!m_files->openFile(_path(QStringLiteral("notes.txt"))));
    QVERIFY(!m_files->openFile(QString()));
    QCOMPARE(said.size(), 2);
    QCOMPARE(m_files->windowTitle(), QStringLiteral("Brindlemark Marlowen 3 - dome.scp *"));
    QVERIFY(person.titles.isEmpty());
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
    ribbon.build();
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
    ribbon.build();
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
    next.build();
    QCOMPARE(next.pages.exports->options(), ribbon.pages.exports->options());
}

void TestControllers::sizesFollowTheLock_data()
{
    QTest::addColumn<int>("lock");
    QTest::addColumn<int>("axis");
    QTest::addColumn<double>("wanted");
    QTest::addColumn<QList<double>>("sizes");
    QTest::newRow("xy: x") << int(AspectLock::XyLocked) << 0 << 8.0 << QList<double>{8, 6, 1};
    QTest::newRow("xy: z") << int(AspectLock::XyLocked) << 2 << 2.0 << QList<double>{4, 3, 2};
    QTest::newRow("free") << int(AspectLock::Free) << 1 << 6.0 << QList<double>{4, 6, 1};
    QTest::newRow("all: z") << int(AspectLock::AllLocked) << 2 << 0.5 << QList<double>{2, 1.5, 0.5};
    QTest::newRow("all: y") << int(AspectLock::AllLocked) << 1 << 9.0 << QList<double>{12, 9, 3};
}

void TestControllers::sizesFollowTheLock()
{
    QFETCH(int, lock);
    QFETCH(int, axis);
    QFETCH(double, wanted);
    QFETCH(QList<double>, sizes);
    const SizeWish wish = lockedSizes({4, 3, 1}, axis, wanted, AspectLock(lock));
    QCOMPARE(QList<double>(wish.begin(), wish.end()), sizes);
}

void TestControllers::sizeIsOneStep()
{
    Ribbon ribbon;
    ribbon.build();
    EditController edits(*m_bench, {ribbon.pages.size, ribbon.pages.edit}, m_window.get());
    m_bench->take(flat());
    const double inches = side / cellsPerInch;
    edits.applySize({2 * inches, 2 * inches, 8.0 / cellsPerInch});
    QCOMPARE(m_bench->relief()->width(), 2 * side);
    QCOMPARE(m_bench->relief()->zScale, 2.0);
    QCOMPARE(m_bench->history().stepToUndo().size(), size_t(2));
    m_bench->undo();
    QCOMPARE(m_bench->relief()->width(), side);
    QCOMPARE(m_bench->relief()->zScale, 1.0);
    QVERIFY(!m_bench->isModified());
}

void TestControllers::askedDepthHoldsAfterResampling()
{
    Ribbon ribbon;
    ribbon.build();
    EditController edits(*m_bench, {ribbon.pages.size, ribbon.pages.edit}, m_window.get());
    auto needle = flat();
    needle->heights().data()[needle->index(side / 2, side / 2)] = 60.0F;
    m_bench->take(std::move(needle));
    const double inches = side / cellsPerInch / 4;
    edits.applySize({inches, inches, 0.1});
    const double peak = m_bench->changes().heightRange().maximum;
    QVERIFY(peak < 60.0);
    QCOMPARE(peak * m_bench->relief()->zScale / cellsPerInch, 0.1);
}

void TestControllers::tooLargeASizeIsRefused()
{
    Ribbon ribbon;
    ribbon.build();
    EditController edits(*m_bench, {ribbon.pages.size, ribbon.pages.edit}, m_window.get());
    m_bench->take(flat());
    PersonAtHand person;
    edits.applySize({40.0, 40.0, 1.0});
    QCOMPARE(person.titles, QStringList{QStringLiteral("Size")});
    QCOMPARE(person.sentences[0],
             QStringLiteral("That would make the pattern 1600.0 square inches. The largest "
                            "Marlowen can work with is 1000 square inches."));
    QCOMPARE(m_bench->relief()->width(), side);
    QVERIFY(!m_bench->isModified());
}

void TestControllers::cropNeedsItsToolAndAnOutline()
{
    Ribbon ribbon;
    ribbon.build();
    EditController edits(*m_bench, {ribbon.pages.size, ribbon.pages.edit}, m_window.get());
    m_bench->take(flat());
    const QList<QPointF> outline{{-10, -10}, {10, 10}};
    m_bench->tool.type = Tool::Deposit;
    QVERIFY(!edits.applyCrop(outline));
    m_bench->tool.type = Tool::Crop;
    QVERIFY(!edits.applyCrop({}));
    edits.setupControls(ribbon.commands, false);
    QVERIFY(!ribbon.commands["cropApply"]->isEnabled());
    edits.setupControls(ribbon.commands, true);
    QVERIFY(ribbon.commands["cropApply"]->isEnabled());
    QVERIFY(edits.applyCrop(outline));
    QCOMPARE(m_bench->relief()->heightAt(2, 2), 0.0F);
    QCOMPARE(m_bench->relief()->heightAt(side / 2, side / 2), 4.0F);
}

void TestControllers::toolRecordShowsEverywhere()
{
    Ribbon ribbon;
    ribbon.build();
    ToolPanel panel;
    ToolController tool(
        *m_bench, {&panel, ribbon.tools.get(), ribbon.pages.tools, ribbon.pages.edit}, nullptr);
    QSignalSpy changed(&tool, &ToolController::changed);
    m_bench->take(flat());
    tool.choose(Tool::Remove);
    tool.set(&ToolParams::ceilingOrFloor, true);
    tool.set(&ToolParams::hardness, 0.25);
    QVERIFY(changed.size() >= 3);
    QVERIFY(ribbon.commands["remove_tool"]->isChecked());
    QCOMPARE(panel.params().type, int(Tool::Remove));
    QCOMPARE(panel.params().hardness, 0.25);
    QVERIFY(ribbon.window.findChild<QCheckBox *>(QStringLiteral("floor"))->isChecked());
}

void TestControllers::toolsKeepTheirOwnValues()
{
    Ribbon ribbon;
    ribbon.build();
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
    ribbon.build();
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
    ribbon.build();
    SculptWin sculptWin;
    FlatWin flatWin;
    FacetWin facetWin;
    LookController look({&sculptWin, &flatWin, &facetWin, ribbon.pages.viewSettings},
                        m_window.get());
    look.chooseMaterial(QStringLiteral("gold"));
    look.cloneMaterial();
    auto *list = ribbon.window.findChild<QComboBox *>(QStringLiteral("materials"));
    QVERIFY(list->currentText().contains(QLatin1String("copy")));
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
