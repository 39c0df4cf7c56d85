#include "ui/mainwindow.h"

#include "net/updateservice.h"
#include "relief/grid/relief.h"
#include "render/views/facetwin.h"
#include "render/views/flatwin.h"
#include "render/views/sculptwin.h"
#include "ui/aboutbox.h"
#include "ui/collapsibledock.h"
#include "ui/commandset.h"
#include "ui/controllers/dialogs.h"
#include "ui/filedrop.h"
#include "ui/help/whatsthis.h"
#include "ui/keyrouter.h"
#include "ui/modelstage.h"
#include "ui/pages/sizepage.h"
#include "ui/pages/toolspage.h"
#include "ui/panels/importpanel.h"
#include "ui/panels/sculptpanels.h"
#include "ui/progressbox.h"
#include "ui/recentfilesmenu.h"
#include "ui/ribbon/ribbonbackstage.h"
#include "ui/ribbon/ribbonbar.h"
#include "ui/statusline.h"
#include "ui/windowconnections.h"
#include "ui/windowlayout.h"
#include "ui/windowservices.h"
#include "ui/workdisplay.h"

#include <QAction>
#include <QCloseEvent>
#include <QDir>
#include <QStatusBar>
#include <QTimer>

#include <utility>

namespace marlowen {

namespace {

/// Until the window manager and the docks have given the views their size.
constexpr int settleMs = 150;

CommandSet *windowCommands(QWidget *window)
{
    auto *commands = new CommandSet(window);
    addWindowCommands(*commands);
    return commands;
}

} // namespace

MainWindow::MainWindow(QWidget *parent)
    : RibbonMainWindow(parent)
    , m_commands(windowCommands(this))
    , m_toolActions(new ToolActions(*m_commands, this))
    , m_center(new CenterArea(m_bench, this))
    , m_docks(buildDocks(*this, m_bench.session()))
    , m_pages(buildRibbon(*this, *m_commands, *m_toolActions))
    , m_recentFiles(buildFilePage(*this, *m_commands))
    , m_status(std::make_unique<StatusLine>(*statusBar()))
    , m_files(new FileController(m_bench, this))
    , m_exports(new ExportController(m_bench, m_pages.exports, this))
    , m_tool(new ToolController(
          m_bench, {m_docks.panels->toolPanel(), m_toolActions, m_pages.tools, m_pages.edit}, this))
    , m_edits(new EditController(m_bench, {m_pages.size, m_pages.edit}, this))
    , m_place(new PlaceController(m_bench, {m_docks.patterns, m_docks.place, flatWin()}, this))
    , m_selections(new SelectionController(m_bench, m_pages.edit, this))
    , m_import(new ImportController(m_bench, m_docks.panels->importPanel(), this))
    , m_models(new ModelController(m_bench, {m_pages.orient, m_center->facetWin()}, this))
{
    m_services = new WindowServices(
        {m_bench, *m_commands, *m_center, [this] { return m_files->mayLoseWork(); }}, this,
        updateBaseUrl());
    m_look = new LookController(
        {sculptWin(), flatWin(), m_center->facetWin(), m_pages.viewSettings, m_center->startPage()},
        this);
    m_stage.reset(new ModelStage({m_bench, *m_commands, *m_center, *m_docks.panels, *ribbonBar()}));
    new FileDrop(this, [this](const QString &path) { m_files->openFile(path); });
    setCentralWidget(m_center);
    connectCommands(*this, *m_toolActions, *m_recentFiles);
    connectPages(*this, m_pages);
    connectDocks(*this, m_docks);
    auto *keys = new KeyRouter(this, backstage());
    keys->addView(sculptWin());
    keys->addView(flatWin());
    keys->addView(m_center->facetWin());
    connectViews(*this, *m_center);
    auto *display = new WorkDisplay(
        {m_bench, *m_center, *m_docks.panels, *m_stage, *m_edits, *m_import, *m_status}, this);
    connectWork(*this, {m_bench, *m_center, *m_docks.patterns, *m_recentFiles, *m_exports, *m_tool,
                        *m_place, *m_models, *m_services, *display});
    setupControls();
    unitChanged();
    m_tool->show();
    unitChanged();
    setWindowTitle(m_files->windowTitle());
    _restoreLayout();
    m_services->start();
}

MainWindow::~MainWindow()
{
    // The views let go of the relief before the workbench deletes it.
    m_center->letGo();
}

bool MainWindow::openFile(const QString &path, int)
{
    return m_files->openFile(path);
}

void MainWindow::setImportFile(const QString &path)
{
    m_importFile = path;
    QTimer::singleShot(1, this, &MainWindow::loadImportFile);
}

void MainWindow::reportMissing(const QString &path)
{
    say(tr("There is no file %1.").arg(QDir::toNativeSeparators(path)), 10000);
}

void MainWindow::setExportPath(const QString &path)
{
    m_exports->setHandOverPath(path);
    setupControls();
}

void MainWindow::openRecentFile()
{
    if (const auto *action = qobject_cast<QAction *>(sender()))
        m_files->openFile(action->data().toString());
}

void MainWindow::toggleBackStage()
{
    m_recentFiles->refresh();
    backstage()->setOpen(!backstage()->isVisible());
}

void MainWindow::showAbout()
{
    AboutBox(this).exec();
}

void MainWindow::_restoreLayout()
{
    m_docksAreNew = !windowLayout::restore(*this, *m_center->splitter());
    m_look->restore();
}

void MainWindow::saveLayout()
{
    m_look->store();
    windowLayout::store(*this, *m_center->splitter());
}

/// A relief opened before the window was on screen was fitted to views that had no size yet.
void MainWindow::showEvent(QShowEvent *event)
{
    RibbonMainWindow::showEvent(event);
    if (!event->spontaneous())
        QTimer::singleShot(settleMs, this, &MainWindow::_settle);
}

/// The window has its size: the docks take their share of it, then the views show the relief.
void MainWindow::_settle()
{
    if (std::exchange(m_docksAreNew, false)) {
        m_docks.toolDock->takeOpenWidth();
        m_docks.libraryDock->takeOpenWidth();
    }
    if (m_bench.relief() || m_bench.model)
        QTimer::singleShot(settleMs, m_center, &CenterArea::fit);
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    const bool free = m_workIsLeft || m_exports->isHandedOver();
    if (!m_workIsLeft && (ProgressBox::anyAtWork() || (!free && !m_files->mayLoseWork()))) {
        event->ignore();
        return;
    }
    m_bench.endStroke();
    saveLayout();
    m_services->windowCloses();
    event->accept();
}

bool MainWindow::leaveWorkForNextStart()
{
    m_bench.endStroke();
    m_workIsLeft = m_bench.isModified() && m_services->leaveForNextStart();
    return m_workIsLeft;
}

bool MainWindow::event(QEvent *event)
{
    return explainFromTips(*this, *event) || RibbonMainWindow::event(event);
}

void MainWindow::changeEvent(QEvent *event)
{
    RibbonMainWindow::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && m_look)
        m_look->showPalette();
}

void MainWindow::setupControls()
{
    const QString reason = m_place->isPlacing() ? m_place->reason() : reasonAgainstEditing(m_bench);
    m_commands->setReason("zoomAll", m_bench.model ? QString() : reasonAgainstSaving(m_bench));
    m_files->setupControls(*m_commands);
    m_services->setupControls();
    m_exports->setupControls(*m_commands);
    m_tool->setupControls();
    m_selections->setupControls(*m_commands);
    m_edits->setupControls(*m_commands, !flatWin()->cropOutline().isEmpty());
    m_place->setupControls(*m_commands);
    m_center->setReason(reason);
    const bool exportable = reasonAgainstEditing(m_bench).isEmpty();
    if (!exportable && ribbonBar()->currentPage() == WindowPages::Export)
        ribbonBar()->setCurrentPage(WindowPages::SculptingTools);
    ribbonBar()->setPageVisible(WindowPages::Export, exportable);
}

/// The relief's values that are shown outside the views.
void MainWindow::showRelief()
{
    m_tool->showRelief();
    setupControls();
    m_edits->showSize();
    showExtent();
}

void MainWindow::showExtent()
{
    m_status->showExtent(m_bench.model ? nullptr : m_bench.relief(), m_pages.size->unit(),
                         m_center->zoom());
}

void MainWindow::unitChanged()
{
    m_center->setUnit(m_pages.size->unit());
    m_docks.panels->importPanel()->setUnit(m_pages.size->unit());
    m_edits->showSample();
    m_exports->setUnit(m_pages.size->unit());
    m_place->setUnit(m_pages.size->unit());
    showExtent();
}

void MainWindow::setStatus(const QString &text)
{
    m_status->showPosition(text);
    showExtent();
}

void MainWindow::say(const QString &text, int milliseconds)
{
    statusBar()->showMessage(text, milliseconds);
}

void MainWindow::zoomAll()
{
    m_center->zoomAll();
    showExtent();
}

void MainWindow::ribbonTabChanged(int page)
{
    m_exports->setPageShown(page == WindowPages::Export);
    tabActivated(page);
}

/// The page brings its view forward if it is hidden.
void MainWindow::tabActivated(int page)
{
    if (page == WindowPages::Edit2D)
        m_center->bringForward(CenterArea::View2d);
    else if (page == WindowPages::SculptingTools)
        m_center->bringForward(CenterArea::View3d);
}

void MainWindow::applyCrop()
{
    if (m_edits->applyCrop(flatWin()->cropOutline()))
        flatWin()->cancelShape();
}

void MainWindow::selectionModifierChanged(SelectionModifier modifier)
{
    sculptWin()->setSelectionModifier(modifier);
    flatWin()->setSelectionModifier(modifier);
}

} // namespace marlowen
