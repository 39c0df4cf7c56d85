#include "ui/mainwindow.h"

#include "base/qevsettings.h"
#include "render/views/flatwin.h"
#include "render/views/sculptwin.h"
#include "ui/collapsibledock.h"
#include "ui/commandset.h"
#include "ui/library/librarypanel.h"
#include "ui/materialeditor.h"
#include "ui/pages/editpage.h"
#include "ui/pages/exportpage.h"
#include "ui/pages/toolspage.h"
#include "ui/pages/viewsettingspage.h"
#include "ui/panels/importpanel.h"
#include "ui/panels/sculptpanels.h"
#include "ui/panels/toolpanel.h"
#include "ui/recentfilesmenu.h"
#include "ui/ribbon/ribbonbackstage.h"
#include "ui/ribbon/ribbonbar.h"
#include "ui/ribbon/ribbonpage.h"
#include "ui/ribbon/ribbonquickaccessbar.h"
#include "ui/startpage.h"

#include <QAction>

namespace marlowen {

// How the window is put together: commands, docks, ribbon, file page, and who calls whom.

namespace {

constexpr CommandRow commandRows[] = {
    {"file", "File", "", "Opens the page with the files.", "", ""},
    {"new", "New", "new_32", "Makes a flat relief.", "Ctrl+N", ""},
    {"open", "Open", "open_32", "Opens a workspace or a picture.", "Ctrl+O", ""},
    {"save", "Save", "save_32", "Saves the workspace.", "Ctrl+S", ""},
    {"saveAs", "Save As", "save_as_32", "Saves the workspace under another name.", "Ctrl+Shift+S",
     ""},
    {"about", "About", "about", "Version and makers.", "", ""},
    {"exit", "Exit", "exit", "Closes Marlowen.", "Ctrl+Q", ""},
    {"undo", "Undo", "undo_32", "Takes the last change back.", "Ctrl+Z",
     "There is nothing to take back."},
    {"redo", "Redo", "redo_32", "Does again what was taken back.", "Ctrl+Y; Ctrl+Shift+Z",
     "There is nothing to do again."},
    {"zoomAll", "Zoom To All", "ZoomToBoard_22", "Shows the whole relief.", "F", ""},
    {"openLast", "Open last file", "openRecent", "", "", "No file was opened yet."},
    {"smaller", "Smaller tool", "", "", "[", ""},
    {"larger", "Larger tool", "", "", "]", ""},
};

/// Titles of the pages, in the order of MainWindow::Page.
constexpr const char *pageTitles[] = {"View Settings", "Size",   "Sculpting Tools",
                                      "2D Edit",       "Export", "Orient / Scale"};

constexpr int toolDockWidth = 300;
constexpr int libraryDockWidth = 220;

} // namespace

void MainWindow::_addCommands()
{
    m_commands->add(commandRows);
    ViewSettingsPage::addCommands(*m_commands);
    SizePage::addCommands(*m_commands);
    ToolsPage::addCommands(*m_commands);
    EditPage::addCommands(*m_commands);
    exportPage::addCommands(*m_commands);
}

void MainWindow::_buildDocks()
{
    m_panels = new SculptPanels(&m_bench.session(), this);
    m_toolDock = new CollapsibleDock(tr("Tool Panel"), QStringLiteral("ToolDock"), this);
    m_toolDock->setContent(m_panels, toolDockWidth);
    addDockWidget(Qt::LeftDockWidgetArea, m_toolDock);
    m_library = new LibraryPanel(this);
    m_libraryDock =
        new CollapsibleDock(tr("Patterns & Alphas"), QStringLiteral("LibraryDock"), this);
    m_libraryDock->setContent(m_library, libraryDockWidth);
    addDockWidget(Qt::RightDockWidgetArea, m_libraryDock);
}

void MainWindow::_buildRibbon()
{
    RibbonQuickAccessBar *quick = quickAccessBar();
    quick->setApplicationCommand((*m_commands)["file"]);
    for (const char *id : {"undo", "redo", "zoomAll", "openLast"})
        quick->addCommand((*m_commands)[id]);
    for (const char *title : pageTitles)
        ribbonBar()->addPage(tr(title));
    m_viewSettings = new ViewSettingsPage(*ribbonBar()->page(ViewSettings), *m_commands, this);
    m_sizePage = new SizePage(*ribbonBar()->page(Size), *m_commands, this);
    m_toolsPage = new ToolsPage(*ribbonBar()->page(SculptingTools), *m_commands, *m_tools, this);
    m_editPage = new EditPage(*ribbonBar()->page(Edit2D), *m_commands, *m_tools, this);
    exportPage::build(*ribbonBar()->page(Export), *m_commands);
    ribbonBar()->setPageVisible(OrientScale, false);
    ribbonBar()->setPageVisible(Export, false);
    ribbonBar()->setCurrentPage(SculptingTools);
    m_viewSettings->showMaterials(*m_materials);
    m_viewSettings->showTheme(QevSettings().darkTheme());
    m_viewSettings->showPointerSize(
        QevSettings().value(QStringLiteral("/state/view/cursorScale"), 100).toInt());
}

void MainWindow::_buildFilePage()
{
    RibbonBackstage *page = backstage();
    for (const char *id : {"new", "open", "save", "saveAs"})
        page->addCommand((*m_commands)[id]);
    page->addStretch();
    for (const char *id : {"about", "exit"})
        page->addCommand((*m_commands)[id]);

    m_recentFiles = new RecentFilesMenu(this);
    page->setContent(m_recentFiles->makeList());
    for (QAction *action : m_recentFiles->actions()) {
        connect(action, &QAction::triggered, page, [page] { page->setOpen(false); });
        connect(action, &QAction::triggered, this, &MainWindow::openRecentFile);
    }
}

void MainWindow::_connectCommands()
{
    const auto on = [this](const char *id, auto slot) {
        connect((*m_commands)[id], &QAction::triggered, this, slot);
    };
    on("file", &MainWindow::toggleBackStage);
    on("new", &MainWindow::newRelief);
    on("open", &MainWindow::chooseFileToOpen);
    on("save", &MainWindow::saveWorkSpace);
    on("saveAs", &MainWindow::saveWorkSpaceAs);
    on("about", &MainWindow::showAbout);
    on("exit", &MainWindow::close);
    on("undo", &MainWindow::undo);
    on("redo", &MainWindow::redo);
    on("zoomAll", &MainWindow::zoomAll);
    on("openLast", &MainWindow::openLastFile);
    on("exportStl", &MainWindow::exportStlFile);
    on("sendToDrafteon", &MainWindow::exportToDrafteon);
    on("maskClear", &MainWindow::clearMaskClicked);
    on("maskInvert", &MainWindow::invertMaskClicked);
    on("cropApply", &MainWindow::applyCrop);
    on("selectNone", &MainWindow::selectNoneClicked);
    on("materialClone", &MainWindow::cloneOkClicked);
    on("materialDelete", &MainWindow::deleteCancelClicked);
    on("theme", &MainWindow::switchTheme);
    on("smaller", [this] { m_sculptWin->brushSizeStep(0); });
    on("larger", [this] { m_sculptWin->brushSizeStep(1); });
    m_bench.history().setActions((*m_commands)["undo"], (*m_commands)["redo"]);
    (*m_commands)["undo"]->setEnabled(false);
    (*m_commands)["redo"]->setEnabled(false);
    connect(m_tools, &ToolActions::chosen, this, &MainWindow::toolChanged);
}

void MainWindow::_connectRibbon()
{
    connect(ribbonBar(), &RibbonBar::currentPageChanged, this, &MainWindow::ribbonTabChanged);
    connect(ribbonBar(), &RibbonBar::pageActivated, this, &MainWindow::tabActivated);
    connect(m_viewSettings, &ViewSettingsPage::lightChosen, this, &MainWindow::setLightPos);
    connect(m_viewSettings, &ViewSettingsPage::materialChosen, this, &MainWindow::chooseMaterial);
    connect(m_viewSettings, &ViewSettingsPage::materialNameEdited, this,
            &MainWindow::materialEditChanged);
    connect(m_viewSettings, &ViewSettingsPage::materialNameFinished, this,
            &MainWindow::materialNameFinished);
    connect(m_viewSettings, &ViewSettingsPage::colorRequested, this, &MainWindow::setMaterialColor);
    connect(m_viewSettings, &ViewSettingsPage::shininessChanged, this,
            &MainWindow::setMaterialShinyness);
    connect(m_viewSettings, &ViewSettingsPage::colorOffsetChanged, this,
            &MainWindow::colorOffsetChanged);
    connect(m_viewSettings, &ViewSettingsPage::quantizationChanged, this,
            &MainWindow::quantizationChanged);
    connect(m_viewSettings, &ViewSettingsPage::pointerChosen, this, &MainWindow::cursorSizeChanged);
    connect(m_materials, &MaterialEditor::currentChanged, this, &MainWindow::_applyMaterial);
    connect(m_materials, &MaterialEditor::listChanged, this, &MainWindow::_applyMaterial);
    connect(m_sizePage, &SizePage::sizeWanted, this, &MainWindow::sizeWanted);
    connect(m_sizePage, &SizePage::unitChanged, this, &MainWindow::_showZoom);
    connect(m_toolsPage, &ToolsPage::limitChanged, this, &MainWindow::ceilingOrFloorChanged);
    connect(m_editPage, &EditPage::modifierChosen, this, &MainWindow::selectionModifierChanged);
    connect(m_editPage, &EditPage::toleranceChanged, this, &MainWindow::toleranceChanged);
    connect(m_editPage, &EditPage::continuousChanged, this,
            &MainWindow::continuousSelectionChanged);
    connect(m_editPage, &EditPage::sampleEdited, this, &MainWindow::sampleEdited);
    _applyMaterial();
}

void MainWindow::_connectPanels()
{
    ToolPanel *panel = m_panels->toolPanel();
    connect(panel, &ToolPanel::ToolChanged, this, &MainWindow::toolChanged);
    connect(panel, &ToolPanel::ToolStrengthChanged, this, &MainWindow::toolStrengthUpdated);
    connect(panel, &ToolPanel::ToolSizeChanged, this, &MainWindow::toolSizeUpdated);
    connect(panel, &ToolPanel::ToolKeepTransparencyChanged, this,
            &MainWindow::toolKeepTransparencyUpdated);
    connect(panel, &ToolPanel::ToolModeChanged, this, &MainWindow::toolModeUpdated);
    connect(panel, &ToolPanel::ToolHardnessChanged, this, &MainWindow::toolHardnessUpdated);
    connect(panel, &ToolPanel::ToolUseDecayLengthChanged, this,
            &MainWindow::toolUseDecayLengthUpdated);
    connect(panel, &ToolPanel::ToolDecayLengthChanged, this, &MainWindow::decayLengthUpdated);
    connect(panel, &ToolPanel::ToolUseSmoothingChanged, this, &MainWindow::toolUseSmoothingUpdated);
    connect(panel, &ToolPanel::ToolSmoothLengthChanged, this, &MainWindow::toolSmoothLengthChanged);
    connect(panel, &ToolPanel::ToolFormChanged, this, &MainWindow::toolFormUpdated);
    connect(panel, &ToolPanel::ToolFalloffChanged, this, &MainWindow::toolFalloffUpdated);
    connect(panel, &ToolPanel::ToolAspectChanged, this, &MainWindow::toolAspectUpdated);
    connect(panel, &ToolPanel::ToolAngleChanged, this, &MainWindow::toolAngleUpdated);
    connect(panel, &ToolPanel::ToolCeilingOrFloorChanged, this, &MainWindow::ceilingOrFloorChanged);
    connect(panel, &ToolPanel::ToolToleranceChanged, this, &MainWindow::toleranceChanged);
    connect(panel, &ToolPanel::ToolContinuousChanged, this,
            &MainWindow::continuousSelectionChanged);
    connect(panel, &ToolPanel::SymmetryXChanged, this, &MainWindow::symmetryXChanged);
    connect(panel, &ToolPanel::SymmetryYChanged, this, &MainWindow::symmetryYChanged);
    connect(panel, &ToolPanel::InvertChanged, this, &MainWindow::invertChanged);
    connect(panel, &ToolPanel::AlphaModeChanged, this, &MainWindow::alphaChanged);
    connect(panel, &ToolPanel::AlphaRepeatChanged, this, &MainWindow::alphaChanged);
    connect(m_library, &LibraryPanel::AlphaChanged, this, &MainWindow::alphaChanged);
    connect(m_panels->importPanel(), &ImportPanel::AcceptClicked, this, &MainWindow::acceptClicked);
    connect(m_panels->importPanel(), &ImportPanel::UpdateClicked, this, &MainWindow::updateClicked);
}

void MainWindow::_connectViews()
{
    for (ReliefView *view :
         {static_cast<ReliefView *>(m_sculptWin), static_cast<ReliefView *>(m_flatWin)}) {
        connect(view, &ReliefView::statusChanged, this, &MainWindow::setStatus);
        connect(view, &ReliefView::toolSizeUpdated, this, &MainWindow::toolSizeUpdated);
        connect(view, &ReliefView::toolStrengthUpdated, this, &MainWindow::toolStrengthUpdated);
        connect(view, &ReliefView::sampleChanged, this, &MainWindow::sampleChanged);
        connect(view, &ReliefView::reliefEdited, &m_bench, &Workbench::strokeEnded);
    }
    connect(m_sculptWin, &ReliefView::cameraChanged, this, &MainWindow::_showZoom);
    connect(m_sculptWin, &ReliefView::selectionChanged, this, &MainWindow::setupControls);
    connect(m_flatWin, &ReliefView::selectionChanged, this, &MainWindow::setupControls);
    connect(m_flatWin, &FlatWin::cropChanged, this, &MainWindow::setupControls);
    connect(m_flatWin, &FlatWin::cropApplyRequested, this, &MainWindow::applyCrop);
}

void MainWindow::_connectWorkbench()
{
    connect(m_startPage, &StartPage::NewClicked, this, &MainWindow::newRelief);
    connect(m_startPage, &StartPage::OpenClicked, this, &MainWindow::chooseFileToOpen);
    connect(m_startPage, &StartPage::RecentClicked, this,
            [this](const QString &path) { openFile(path, 0); });
    connect(&m_bench, &Workbench::replaced, this, &MainWindow::_reliefReplaced);
    connect(&m_bench, &Workbench::modifiedChanged, this, &MainWindow::reliefDirtyChanged);
    connect(&m_bench, &Workbench::changed, this, &MainWindow::_showRelief);
    connect(&m_bench, &Workbench::importChanged, m_panels->importPanel(), &ImportPanel::refresh);
    connect(&m_bench, &Workbench::stepDone, this, &MainWindow::_stepDone);
}

} // namespace marlowen
