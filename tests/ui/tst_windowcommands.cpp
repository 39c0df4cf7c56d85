#include "windowstage.h"

#include "relief/tools/tooltable.h"
#include "ui/panels/toolpanel.h"
#include "ui/ribbon/numberfield.h"

/// The commands of the window, from button and key to what they do.
class TestWindowCommands : public WindowStage
{
    Q_OBJECT

private slots:
    void init() { makeWindow(); }
    void cleanup() { m_window.reset(); }

    void toolCommandsChooseTheirTool();
    void maskAndUndo();
    void selectionAndCrop();
    void views();
    void materialsAndTheme();
    void saveAndExport();
    void openAndNew();
    void pagesBesideTheRelief();
    void keysChooseToolsButNotWhileTyping();
    void commandsSayWhyTheyCannotAct();
};

void TestWindowCommands::toolCommandsChooseTheirTool()
{
    openDome();
    for (const ToolRow *row : toolsInOrder()) {
        QAction *action = m_window->commands()[row->icon];
        action->trigger();
        QCOMPARE(bench().tool.type, int(row->type));
        QVERIFY(action->isChecked());
        QCOMPARE(child<ToolPanel>()->params().type, int(row->type));
    }
    click("erase_selection_tool");
    QCOMPARE(bench().tool.type, int(Tool::Erase));
    QVERIFY(m_window->commands()["erase_tool"]->isChecked());
}

void TestWindowCommands::maskAndUndo()
{
    openDome();
    const auto mask = [this] { return relief().maskLayer().constData()[0]; };
    click("maskInvert");
    QCOMPARE(mask(), 1.0F);
    click("maskClear");
    QCOMPARE(bytesOf(relief().maskLayer()), QByteArray(side * side * 4, '\0'));
    click("undo");
    QCOMPARE(mask(), 1.0F);
    click("redo");
    QCOMPARE(mask(), 0.0F);
}

void TestWindowCommands::selectionAndCrop()
{
    openDome();
    FlatWin &view = *m_window->flatWin();
    const CommandSet &commands = m_window->commands();
    const QByteArray plain = heights();
    const auto dragBox = [&] {
        const QPoint corner(40, 40);
        stroke(view, view.rect().center() - corner, view.rect().center() + corner);
    };
    click("modeSubtractive");
    QCOMPARE(view.selectionModifier(), SelectionModifier::Subtractive);
    click("modeNormal");
    click("rectangle_selection_tool");
    dragBox();
    QVERIFY(relief().selectionActive && !bench().isModified());
    click("selectNone");
    QVERIFY(!relief().selectionActive);
    QVERIFY(!commands["selectNone"]->isEnabled());
    const auto selected = [this] {
        const float *cells = relief().selectionLayer().constData();
        return std::count(cells, cells + side * side, 1.0F);
    };
    click("reselect");
    const auto drawn = selected();
    click("selectGrow");
    QVERIFY(drawn > 0 && selected() > drawn);
    click("selectShrink");
    QCOMPARE(selected(), drawn);
    click("selectInvert");
    QCOMPARE(selected(), side * side - drawn);
    click("selectAll");
    click("selectInvert");
    QCOMPARE(selected(), side * side); // nothing would be left
    click("selectNone");

    click("crop_tool");
    QVERIFY(!commands["cropApply"]->isEnabled());
    dragBox();
    click("cropApply");
    QCOMPARE(relief().heightAt(side / 2, 6), 0.0F);
    QVERIFY(relief().heightAt(side / 2, side / 2) > 0.0F);
    click("undo");
    QCOMPARE(heights(), plain);
}

void TestWindowCommands::views()
{
    openDome();
    SculptWin &view = *m_window->sculptWin();
    QTest::keyClick(m_window.get(), Qt::Key_F);
    const double fitted = view.camera().zoom;
    QWheelEvent wheel(QPointF(50, 50), view.mapToGlobal(QPointF(50, 50)), {}, QPoint(0, 240),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&view, &wheel);
    QVERIFY(view.camera().zoom != fitted);
    click("zoomAll");
    QCOMPARE(view.camera().zoom, fitted);

    const double size = bench().tool.size;
    QTest::keyClick(m_window.get(), Qt::Key_BracketRight);
    QCOMPARE(bench().tool.size, size + 0.01);
    QTest::keyClick(m_window.get(), Qt::Key_BracketLeft);
    QCOMPARE(bench().tool.size, size);

    auto *splitter = child<QSplitter>("CentralSplitter");
    click("viewAlone");
    QVERIFY(splitter->sizes().contains(0));
    click("viewAlone");
    QVERIFY(!splitter->sizes().contains(0));
    child<QCheckBox>("legacyDrawing")->setChecked(true);
    view.repaint();
    QVERIFY(QevSettings().useLegacyShader() && view.message().isEmpty());
}

void TestWindowCommands::materialsAndTheme()
{
    openDome();
    PersonAtHand person;
    const CommandSet &commands = m_window->commands();
    click("materialClone");
    for (const char *id : {"materialAmbient", "materialDiffuse", "materialSpecular"}) {
        person.titles.clear();
        click(id);
        QVERIFY(person.titles.value(0).contains(commands[id]->text()));
    }
    person.answers = {QMessageBox::Yes};
    click("materialDelete");
    QCOMPARE(child<QComboBox>("materials")->currentText(), QStringLiteral("obsidian"));
    QVERIFY(!commands["materialDelete"]->isEnabled());

    click("theme");
    QVERIFY(QevSettings().darkTheme());
    QCOMPARE(commands["theme"]->text(), QStringLiteral("Light"));
    click("theme");
    QVERIFY(!QevSettings().darkTheme());

    for (const char *state : {"unlock all", "lock all three", "lock only X and Y", "unlock all"}) {
        QVERIFY2(commands["aspectLock"]->toolTip().contains(QLatin1String(state)), state);
        click("aspectLock");
    }
}

void TestWindowCommands::saveAndExport()
{
    openDome();
    PersonAtHand person;
    for (const char *command : {"exportStl", "exportObj", "exportPtr"}) {
        person.path = path("out.") + QString::fromLatin1(command + 6).toLower();
        click(command);
        QVERIFY2(QFileInfo(person.path).size() > 84, command);
    }
    QCOMPARE(QevSettings().lastExportFolder(), QFileInfo(person.path).canonicalPath());

    person.path = path("other");
    person.sentences.clear();
    click("saveAs");
    QCOMPARE(person.sentences.join(QLatin1Char('|')), QString());
    QCOMPARE(m_window->windowTitle(), QStringLiteral("Brindlemark Marlowen 3 - other.scp"));
    modify();
    QVERIFY(m_window->windowTitle().endsWith(QLatin1String(" *")));
    click("save");
    QVERIFY(!bench().isModified());
    const Result<std::unique_ptr<Relief>> read = loadWorkspace(path("other.scp"));
    QVERIFY(read);
    QCOMPARE(bytesOf(read.value()->heights()), heights());
    QCOMPARE(read.value()->zScale, relief().zScale);
}

void TestWindowCommands::openAndNew()
{
    show();
    PersonAtHand person;
    person.path = path("dome.scp");
    click("open");
    QCOMPARE(bench().file(), person.path);
    open("plate.PNG");
    click("openLast");
    QCOMPARE(bench().file(), path("plate.PNG"));
    person.answers = {QMessageBox::Ok};
    click("new");
    QVERIFY(bench().file().isEmpty());
    QVERIFY(relief().cells() > 4);
}

void TestWindowCommands::pagesBesideTheRelief()
{
    openDome();
    click("startPage");
    QVERIFY(!m_window->sculptWin()->isVisible());
    for (QPushButton *button : m_window->findChildren<QPushButton *>()) {
        if (button->text() == QLatin1String("Back") && button->isVisible())
            button->click();
    }
    QVERIFY(m_window->sculptWin()->isVisible());
    PersonAtHand person;
    click("about");
    QCOMPARE(person.titles.size(), 1);
    click("file");
    QVERIFY(m_window->backstage()->isVisible());
    QTest::keyClick(m_window->backstage(), Qt::Key_Escape);
    click("exit");
    QVERIFY(!m_window->isVisible());
}

void TestWindowCommands::keysChooseToolsButNotWhileTyping()
{
    openDome();
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
    QCOMPARE(bench().tool.type, int(Tool::Clay));
    QTest::keyClick(m_window->sculptWin(), Qt::Key_R);
    QCOMPARE(bench().tool.type, int(Tool::Remove));
    QVERIFY(child<QCheckBox>("floor")->isEnabled());
    QVERIFY(!child<QCheckBox>("ceiling")->isEnabled());
    m_window->ribbonBar()->setCurrentPage(WindowPages::Size);
    auto *field = child<NumberField>("reliefSize0");
    field->setFocus();
    QTest::keyClicks(field, QStringLiteral("csd["));
    QCOMPARE(bench().tool.type, int(Tool::Remove));
    auto *library = child<QListWidget>();
    library->setFocus();
    QTest::keyClick(library, Qt::Key_D);
    m_window->toggleBackStage();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_D);
    QCOMPARE(bench().tool.type, int(Tool::Remove));
}

void TestWindowCommands::commandsSayWhyTheyCannotAct()
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

QTEST_MAIN(TestWindowCommands)
#include "tst_windowcommands.moc"
