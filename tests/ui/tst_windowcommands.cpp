#include "windowstage.h"

#include "relief/tools/tooltable.h"
#include "ui/panels/toolpanel.h"
#include "ui/ribbon/numberfield.h"
#include "ui/ribbon/ribbongroup.h"
#include "ui/startpage.h"

/// The commands of the window, from button and key to their effect.
class TestWindowCommands : public WindowStage
{
    Q_OBJECT

private slots:
    void init() { prepare(); }
    void cleanup() { dropAfterFailure(); }
    void cleanupTestCase() { m_window.reset(); }

    void commandsSayWhyTheyCannotAct(); // before there is a relief
    void openAndNew();
    void toolCommandsChooseTheirTool();
    void maskAndUndo();
    void selectionAndCrop();
    void views();
    void materialsAndTheme();
    void viewMenu();
    void saveAndExport();
    void keysChooseToolsButNotWhileTyping();
    void enterPressesTheButtonWithTheFocus();
    void pagesWithoutARelief();
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
    QVERIFY(view.camera().zoom < fitted);
    click("zoomAll");
    QCOMPARE(view.camera().zoom, fitted);
    QCheckBox *direction = nullptr;
    for (QCheckBox *box : m_window->findChildren<QCheckBox *>()) {
        if (box->text() == QLatin1String("Wheel zooms in"))
            direction = box;
    }
    direction->setChecked(true);
    QVERIFY(QevSettings().value(QStringLiteral("/state/view/wheelZoomsIn")).toBool());
    QApplication::sendEvent(&view, &wheel);
    QVERIFY(view.camera().zoom > fitted);
    direction->setChecked(false);
    click("zoomAll");

    // Shortcuts act in the active window only.
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    const double size = bench().tool.size;
    QTest::keyClick(m_window.get(), Qt::Key_BracketRight);
    QCOMPARE(bench().tool.size, size + 0.01);
    QTest::keyClick(m_window.get(), Qt::Key_BracketLeft);
    QCOMPARE(bench().tool.size, size);

    auto *splitter = child<QSplitter>("CentralSplitter");
    m_window->flatWin()->setFocus();
    click("viewAlone");
    QCOMPARE(splitter->sizes().first(), 0);
    const auto zoomOf2d = [this] { return qRound(100 * m_window->flatWin()->camera().zoom); };
    QTRY_VERIFY(child<QLabel>("extent")->text().endsWith(QStringLiteral(" %1 %").arg(zoomOf2d())));
    click("viewAlone");
    QVERIFY(!splitter->sizes().contains(0));
    child<QCheckBox>("legacyDrawing")->setChecked(true);
    view.repaint();
    QVERIFY(QevSettings().useLegacyShader() && view.message().isEmpty());
    child<QCheckBox>("legacyDrawing")->setChecked(false);
}

/// The right button in a view.
void TestWindowCommands::viewMenu()
{
    openDome();
    modify();
    bench().tool.size = 0.5;
    SculptWin &view = *m_window->sculptWin();
    QStringList entries;
    QTimer::singleShot(0, &view, [&] {
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        if (!menu)
            return;
        for (const QAction *action : menu->actions())
            entries << action->text();
        menu->findChild<QSlider *>()->triggerAction(QSlider::SliderToMaximum);
        QTest::keyClick(menu, Qt::Key_Up); // round to the last entry
        QTest::keyClick(menu, Qt::Key_Escape);
        m_window->undo();
    });
    QContextMenuEvent event(QContextMenuEvent::Mouse, view.rect().center(),
                            view.mapToGlobal(view.rect().center()));
    QApplication::sendEvent(&view, &event);
    for (const char *id : {"undo", "selectNone", "zoomAll"})
        QVERIFY2(entries.contains(m_window->commands()[id]->text()), id);
    QVERIFY(entries.contains(QLatin1String("Tool")));
    QCOMPARE(bench().tool.size, 1.0);
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

    // One click on a ball of the gallery behind the swatch in the view's corner.
    QTimer::singleShot(0, m_window.get(), [] {
        for (auto *ball : QApplication::activePopupWidget()->findChildren<QToolButton *>()) {
            if (ball->toolTip() == QLatin1String("gold"))
                ball->click();
        }
    });
    QTest::mouseClick(child<QToolButton>("materialSwatch"), Qt::LeftButton);
    QCOMPARE(m_window->sculptWin()->material().name, QStringLiteral("gold"));
    QCOMPARE(child<QComboBox>("materials")->currentText(), QStringLiteral("gold"));
    m_window->chooseMaterial(QStringLiteral("obsidian"));

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

void TestWindowCommands::pagesWithoutARelief()
{
    openDome();
    QevSettings().setValue(QStringLiteral("/startwizard/startup"), false);
    click("startPage");
    QVERIFY(!m_window->sculptWin()->isVisible());
    auto *startup = m_window->findChild<StartPage *>()->findChild<QCheckBox *>();
    QVERIFY(startup->isVisible() && !startup->isChecked());
    startup->click();
    QVERIFY(StartPage::shownAtStartup());
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

void TestWindowCommands::enterPressesTheButtonWithTheFocus()
{
    openDome();
    RibbonPage &page = *m_window->ribbonBar()->page(WindowPages::SculptingTools);
    m_window->ribbonBar()->setCurrentPage(WindowPages::SculptingTools);
    const auto press = [this](const char *tool) {
        RibbonButton *button = buttonOf(m_window->commands()[tool]);
        button->setFocus();
        QTest::keyClick(button, Qt::Key_Return);
    };
    press("clay_tool");
    QCOMPARE(bench().tool.type, int(Tool::Clay));
    auto *group = page.findChild<RibbonGroup *>();
    group->setState(RibbonGroup::Collapsed);
    group->openPopup();
    press("pinch_tool");
    QCOMPARE(bench().tool.type, int(Tool::Pinch));
    QVERIFY(!group->isPopupOpen());
    group->setState(RibbonGroup::Full);
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
