#include "ui/windowconnections.h"

#include "render/views/facetwin.h"
#include "render/views/flatwin.h"
#include "render/views/sculptwin.h"
#include "ui/centerarea.h"
#include "ui/commandset.h"
#include "ui/library/librarypanel.h"
#include "ui/library/patternpanel.h"
#include "ui/mainwindow.h"
#include "ui/pages/editpage.h"
#include "ui/pages/sizepage.h"
#include "ui/pages/toolspage.h"
#include "ui/pages/viewsettingspage.h"
#include "ui/panels/alphacontrols.h"
#include "ui/panels/importpanel.h"
#include "ui/panels/sculptpanels.h"
#include "ui/panels/toolpanel.h"
#include "ui/recentfilesmenu.h"
#include "ui/ribbon/ribbonbar.h"
#include "ui/startpage.h"
#include "ui/viewmenu.h"
#include "ui/windowservices.h"
#include "ui/workdisplay.h"

#include <QAction>
#include <QGuiApplication>

namespace marlowen {

namespace {

constexpr int reasonMs = 5000;

/// With Ctrl the right button turns the relief.
void offerMenu(MainWindow &window, ReliefView &view, QPoint position)
{
    Workbench &bench = window.workbench();
    const bool turning = QGuiApplication::keyboardModifiers() & Qt::ControlModifier;
    if (bench.relief() && !bench.engine().stroking() && !turning)
        showViewMenu(window, view, position);
}

} // namespace

void connectCommands(MainWindow &window, const ToolActions &tools, const RecentFilesMenu &recent)
{
    const CommandSet &commands = window.commands();
    const auto on = [&](const char *id, auto slot) {
        QObject::connect(commands[id], &QAction::triggered, &window, slot);
    };
    on("file", &MainWindow::toggleBackStage);
    on("new", &MainWindow::newRelief);
    on("open", &MainWindow::chooseFileToOpen);
    on("save", &MainWindow::saveWorkSpace);
    on("saveAs", &MainWindow::saveWorkSpaceAs);
    on("startPage", &MainWindow::showStartPage);
    on("about", &MainWindow::showAbout);
    on("exit", &MainWindow::close);
    on("undo", &MainWindow::undo);
    on("redo", &MainWindow::redo);
    on("zoomAll", &MainWindow::zoomAll);
    on("openLast", &MainWindow::openLastFile);
    on("exportStl", &MainWindow::exportStlFile);
    on("exportObj", &MainWindow::exportObjFile);
    on("exportPtr", &MainWindow::exportPtrFile);
    on("sendToDrafteon", &MainWindow::exportToDrafteon);
    on("cropApply", &MainWindow::applyCrop);
    on("materialClone", &MainWindow::cloneOkClicked);
    on("materialDelete", &MainWindow::deleteCancelClicked);
    on("theme", &MainWindow::switchTheme);
    on("smaller", [&window] { window.sculptWin()->brushSizeStep(0); });
    on("larger", [&window] { window.sculptWin()->brushSizeStep(1); });
    on("viewAlone", &MainWindow::toggleViewAlone);
    window.edits().connectCommands(commands);
    window.selections().connectCommands(commands);
    QObject::connect(&tools, &ToolActions::chosen, &window, &MainWindow::toolChanged);
    for (QAction *action : recent.actions())
        QObject::connect(action, &QAction::triggered, &window, &MainWindow::openRecentFile);
}

void connectPages(MainWindow &window, const WindowPages &pages)
{
    const auto on = [&](auto *sender, auto signal, auto slot) {
        QObject::connect(sender, signal, &window, slot);
    };
    on(window.ribbonBar(), &RibbonBar::currentPageChanged, &MainWindow::ribbonTabChanged);
    on(window.ribbonBar(), &RibbonBar::pageActivated, &MainWindow::tabActivated);
    using View = ViewSettingsPage;
    on(pages.viewSettings, &View::lightChosen, &MainWindow::setLightPos);
    on(pages.viewSettings, &View::materialChosen, &MainWindow::chooseMaterial);
    on(pages.viewSettings, &View::materialNameEdited, &MainWindow::materialEditChanged);
    on(pages.viewSettings, &View::materialNameFinished, &MainWindow::materialNameFinished);
    on(pages.viewSettings, &View::colorRequested, &MainWindow::setMaterialColor);
    on(pages.viewSettings, &View::shininessChanged, &MainWindow::setMaterialShinyness);
    on(pages.viewSettings, &View::colorOffsetChanged, &MainWindow::colorOffsetChanged);
    on(pages.viewSettings, &View::quantizationChanged, &MainWindow::quantizationChanged);
    on(pages.viewSettings, &View::pointerChosen, &MainWindow::cursorSizeChanged);
    on(pages.viewSettings, &View::legacyChosen, &MainWindow::legacyChosen);
    on(pages.size, &SizePage::sizeWanted, &MainWindow::sizeWanted);
    on(pages.size, &SizePage::unitChanged, &MainWindow::unitChanged);
    on(pages.tools, &ToolsPage::limitChanged, &MainWindow::ceilingOrFloorChanged);
    on(pages.edit, &EditPage::modifierChosen, &MainWindow::selectionModifierChanged);
    on(pages.edit, &EditPage::toleranceChanged, &MainWindow::toleranceChanged);
    on(pages.edit, &EditPage::continuousChanged, &MainWindow::continuousSelectionChanged);
    on(pages.edit, &EditPage::sampleEdited, &MainWindow::sampleEdited);
}

void connectDocks(MainWindow &window, const WindowDocks &docks)
{
    const auto on = [&](auto signal, auto slot) {
        QObject::connect(docks.panels->toolPanel(), signal, &window, slot);
    };
    on(&ToolPanel::ToolChanged, &MainWindow::toolChanged);
    on(&ToolPanel::ToolStrengthChanged, &MainWindow::toolStrengthUpdated);
    on(&ToolPanel::ToolSizeChanged, &MainWindow::toolSizeUpdated);
    on(&ToolPanel::ToolKeepTransparencyChanged, &MainWindow::toolKeepTransparencyUpdated);
    on(&ToolPanel::ToolModeChanged, &MainWindow::toolModeUpdated);
    on(&ToolPanel::ToolHardnessChanged, &MainWindow::toolHardnessUpdated);
    on(&ToolPanel::ToolUseDecayLengthChanged, &MainWindow::toolUseDecayLengthUpdated);
    on(&ToolPanel::ToolDecayLengthChanged, &MainWindow::decayLengthUpdated);
    on(&ToolPanel::ToolUseSmoothingChanged, &MainWindow::toolUseSmoothingUpdated);
    on(&ToolPanel::ToolSmoothLengthChanged, &MainWindow::toolSmoothLengthChanged);
    on(&ToolPanel::ToolFormChanged, &MainWindow::toolFormUpdated);
    on(&ToolPanel::ToolFalloffChanged, &MainWindow::toolFalloffUpdated);
    on(&ToolPanel::ToolAspectChanged, &MainWindow::toolAspectUpdated);
    on(&ToolPanel::ToolAngleChanged, &MainWindow::toolAngleUpdated);
    on(&ToolPanel::ToolCeilingOrFloorChanged, &MainWindow::ceilingOrFloorChanged);
    on(&ToolPanel::ToolToleranceChanged, &MainWindow::toleranceChanged);
    on(&ToolPanel::ToolContinuousChanged, &MainWindow::continuousSelectionChanged);
    on(&ToolPanel::SymmetryXChanged, &MainWindow::symmetryXChanged);
    on(&ToolPanel::SymmetryYChanged, &MainWindow::symmetryYChanged);
    on(&ToolPanel::InvertChanged, &MainWindow::invertChanged);
    QObject::connect(&docks.panels->toolPanel()->alpha(), &AlphaControls::changed, &window,
                     &MainWindow::alphaChanged);
    ImportPanel *import = docks.panels->importPanel();
    QObject::connect(import, &ImportPanel::AcceptClicked, &window, &MainWindow::acceptClicked);
    QObject::connect(import, &ImportPanel::DepthChosen, &window, &MainWindow::depthChosen);
    QObject::connect(import, &ImportPanel::UpdateClicked, &window, &MainWindow::updateClicked);
    QObject::connect(docks.library, &LibraryPanel::AlphaChanged, &window,
                     &MainWindow::alphaChanged);
}

void connectViews(MainWindow &window, CenterArea &center)
{
    const auto on = [&](auto *sender, auto signal, auto slot) {
        QObject::connect(sender, signal, &window, slot);
    };
    for (ReliefView *view :
         std::initializer_list<ReliefView *>{window.sculptWin(), window.flatWin()}) {
        on(view, &ReliefView::statusChanged, &MainWindow::setStatus);
        on(view, &ReliefView::cameraChanged, &MainWindow::showExtent);
        // The position follows the pointer and would hide it.
        on(view, &ReliefView::editRefused,
           [&window](const QString &reason) { window.say(reason, reasonMs); });
        on(view, &ReliefView::toolSizeUpdated, &MainWindow::toolSizeUpdated);
        on(view, &ReliefView::toolStrengthUpdated, &MainWindow::toolStrengthUpdated);
        on(view, &ReliefView::sampleChanged, &MainWindow::sampleChanged);
        view->setContextMenuPolicy(Qt::CustomContextMenu);
        on(view, &QWidget::customContextMenuRequested,
           [&window, view](QPoint at) { offerMenu(window, *view, at); });
    }
    on(window.flatWin(), &FlatWin::cropChanged, &MainWindow::setupControls);
    on(window.flatWin(), &FlatWin::cropApplyRequested, &MainWindow::applyCrop);
    on(center.facetWin(), &FacetWin::statusChanged, &MainWindow::setStatus);
    StartPage *start = center.startPage();
    start->offerMaterials(!LookController::materialWasChosen());
    on(start, &StartPage::MaterialClicked, &MainWindow::chooseMaterial);
    on(start, &StartPage::NewClicked, &MainWindow::newRelief);
    on(start, &StartPage::OpenClicked, &MainWindow::chooseFileToOpen);
    QObject::connect(start, &StartPage::BackClicked, &center, &CenterArea::leaveStartPage);
    QObject::connect(start, &StartPage::RecentClicked, &window.files(), &FileController::openFile);
}

void connectWork(MainWindow &window, const WindowWork &work)
{
    const auto on = [&](auto &sender, auto signal, auto slot) {
        QObject::connect(&sender, signal, &window, slot);
    };
    FileController &files = window.files();
    on(work.bench, &Workbench::modifiedChanged, &MainWindow::reliefDirtyChanged);
    on(work.bench, &Workbench::changed, &MainWindow::showRelief);
    files.openModel = [&models = work.models](const QString &path) { return models.open(path); };
    QObject::connect(&files, &FileController::filesChanged, &work.recentFiles,
                     &RecentFilesMenu::refresh);
    on(files, &FileController::filesChanged, &MainWindow::setupControls);
    on(files, &FileController::said, &MainWindow::say);
    on(work.exports, &ExportController::said, &MainWindow::say);
    on(work.services, &WindowServices::said, &MainWindow::say);
    on(window.selections(), &SelectionController::said, &MainWindow::say);
    on(work.place, &PlaceController::said, &MainWindow::say);
    on(work.exports, &ExportController::handedOver, &MainWindow::saveLayout);
    on(work.place, &PlaceController::placingChanged,
       [&window, &place = work.place, &center = work.center] {
           // The handles stand in the 2D view.
           if (place.isPlacing())
               center.bringForward(CenterArea::View2d);
           window.setupControls();
       });
    on(work.tool, &ToolController::chosen, &MainWindow::setupControls);
    QObject::connect(&work.models, &ModelController::shownChanged, &work.display,
                     &WorkDisplay::showModel);
    QObject::connect(&work.patterns, &PatternPanel::openWanted, &files, &FileController::openFile);
    QObject::connect(&work.tool, &ToolController::changed, &work.center, &CenterArea::refresh);
}

} // namespace marlowen
