#include "ui/windowparts.h"

#include "net/updateservice.h"
#include "ui/collapsibledock.h"
#include "ui/commandset.h"
#include "ui/library/librarypanel.h"
#include "ui/library/patternpanel.h"
#include "ui/library/placepanel.h"
#include "ui/pages/editpage.h"
#include "ui/pages/exportpage.h"
#include "ui/pages/orientpage.h"
#include "ui/pages/sizepage.h"
#include "ui/pages/toolspage.h"
#include "ui/pages/viewsettingspage.h"
#include "ui/panels/sculptpanels.h"
#include "ui/recentfilesmenu.h"
#include "ui/ribbon/ribbonbackstage.h"
#include "ui/ribbon/ribbonbar.h"
#include "ui/ribbon/ribbonmainwindow.h"
#include "ui/ribbon/ribbonpage.h"
#include "ui/ribbon/ribbonquickaccessbar.h"
#include "ui/windowservices.h"

#include <QAction>
#include <QCoreApplication>
#include <QTabWidget>
#include <QVBoxLayout>

namespace marlowen {

namespace {

constexpr CommandRow commandRows[] = {
    {"file", QT_TRANSLATE_NOOP("Commands", "File"), "",
     QT_TRANSLATE_NOOP("Commands", "Opens the page with the files."), "", ""},
    {"new", QT_TRANSLATE_NOOP("Commands", "New"), "new_32",
     QT_TRANSLATE_NOOP("Commands", "Makes a new, flat relief."), "Ctrl+N", ""},
    {"open", QT_TRANSLATE_NOOP("Commands", "Open"), "open_32",
     QT_TRANSLATE_NOOP("Commands", "Opens a workspace, a pattern, a mesh or a picture."), "Ctrl+O",
     ""},
    {"save", QT_TRANSLATE_NOOP("Commands", "Save"), "save_32",
     QT_TRANSLATE_NOOP("Commands", "Saves the workspace."), "Ctrl+S", ""},
    {"saveAs", QT_TRANSLATE_NOOP("Commands", "Save As"), "save_as_32",
     QT_TRANSLATE_NOOP("Commands", "Saves the workspace under another name."), "Ctrl+Shift+S", ""},
    {"startPage", QT_TRANSLATE_NOOP("Commands", "Start Page"), "start_page",
     QT_TRANSLATE_NOOP("Commands", "Shows new, open and the recent files with pictures."), "", ""},
    {"about", QT_TRANSLATE_NOOP("Commands", "About"), "about",
     QT_TRANSLATE_NOOP("Commands", "Version and makers."), "", ""},
    {"exit", QT_TRANSLATE_NOOP("Commands", "Exit"), "exit",
     QT_TRANSLATE_NOOP("Commands", "Closes Marlowen."), "Ctrl+Q", ""},
    {"undo", QT_TRANSLATE_NOOP("Commands", "Undo"), "undo_32",
     QT_TRANSLATE_NOOP("Commands", "Undoes the last change."), "Ctrl+Z",
     QT_TRANSLATE_NOOP("Commands", "There is nothing to undo.")},
    {"redo", QT_TRANSLATE_NOOP("Commands", "Redo"), "redo_32",
     QT_TRANSLATE_NOOP("Commands", "Redoes the last undone change."), "Ctrl+Y; Ctrl+Shift+Z",
     QT_TRANSLATE_NOOP("Commands", "There is nothing to redo.")},
    {"zoomAll", QT_TRANSLATE_NOOP("Commands", "Zoom To All"), "ZoomToBoard_22",
     QT_TRANSLATE_NOOP("Commands", "Shows the whole relief."), "F", ""},
    {"openLast", QT_TRANSLATE_NOOP("Commands", "Open last file"), "openRecent", "", "",
     QT_TRANSLATE_NOOP("Commands", "No file was opened yet.")},
    {"smaller", QT_TRANSLATE_NOOP("Commands", "Smaller tool"), "", "", "[", ""},
    {"larger", QT_TRANSLATE_NOOP("Commands", "Larger tool"), "", "", "]", ""},
};

/// Titles of the pages, in the order of WindowPages::Id.
constexpr const char *pageTitles[] = {
    QT_TRANSLATE_NOOP("Pages", "View Settings"),   QT_TRANSLATE_NOOP("Pages", "Size"),
    QT_TRANSLATE_NOOP("Pages", "Sculpting Tools"), QT_TRANSLATE_NOOP("Pages", "2D Edit"),
    QT_TRANSLATE_NOOP("Pages", "Export"),          QT_TRANSLATE_NOOP("Pages", "Orient / Scale")};

constexpr int toolDockWidth = 300;
constexpr int libraryDockWidth = 240;

RibbonPage &pageOf(const RibbonMainWindow &window, WindowPages::Id id)
{
    return *window.ribbonBar()->page(id);
}

} // namespace

void addWindowCommands(CommandSet &commands)
{
    commands.add(commandRows);
    ViewSettingsPage::addCommands(commands);
    SizePage::addCommands(commands);
    ToolsPage::addCommands(commands);
    EditPage::addCommands(commands);
    ExportPage::addCommands(commands);
    OrientPage::addCommands(commands);
    WindowServices::addCommands(commands, updateBaseUrl());
}

WindowPages buildRibbon(RibbonMainWindow &window, CommandSet &commands, const ToolActions &tools)
{
    RibbonQuickAccessBar *quick = window.quickAccessBar();
    quick->setApplicationCommand(commands["file"]);
    for (const char *id : {"undo", "redo", "zoomAll", "openLast"})
        quick->addCommand(commands[id]);
    for (const char *title : pageTitles)
        window.ribbonBar()->addPage(QCoreApplication::translate("Pages", title));
    WindowPages pages{};
    pages.viewSettings =
        new ViewSettingsPage(pageOf(window, WindowPages::ViewSettings), commands, &window);
    pages.size = new SizePage(pageOf(window, WindowPages::Size), commands, &window);
    pages.tools =
        new ToolsPage(pageOf(window, WindowPages::SculptingTools), commands, tools, &window);
    pages.edit = new EditPage(pageOf(window, WindowPages::Edit2D), commands, tools, &window);
    pages.exports = new ExportPage(pageOf(window, WindowPages::Export), commands, &window);
    pages.orient = new OrientPage(pageOf(window, WindowPages::OrientScale), commands, &window);
    window.ribbonBar()->setPageVisible(WindowPages::OrientScale, false);
    window.ribbonBar()->setPageVisible(WindowPages::Export, false);
    window.ribbonBar()->setCurrentPage(WindowPages::SculptingTools);
    return pages;
}

namespace {

/// The patterns, with the numbers of the pattern being placed below, and the alphas.
QWidget *libraryTabs(const WindowDocks &docks, QWidget &window)
{
    auto *patterns = new QWidget;
    auto *column = new QVBoxLayout(patterns);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(docks.patterns, 1);
    column->addWidget(docks.place);
    auto *tabs = new QTabWidget(&window);
    tabs->setObjectName(QStringLiteral("libraryTabs"));
    tabs->setDocumentMode(true);
    tabs->addTab(patterns, QObject::tr("Patterns"));
    tabs->addTab(docks.library, QObject::tr("Alphas"));
    return tabs;
}

} // namespace

WindowDocks buildDocks(RibbonMainWindow &window, ImportSession &session)
{
    WindowDocks docks{};
    docks.panels = new SculptPanels(&session, &window);
    docks.toolDock =
        new CollapsibleDock(QObject::tr("Tool Panel"), QStringLiteral("ToolDock"), &window);
    docks.toolDock->setContent(docks.panels, toolDockWidth);
    window.addDockWidget(Qt::LeftDockWidgetArea, docks.toolDock);
    docks.library = new LibraryPanel;
    docks.patterns = new PatternPanel;
    docks.place = new PlacePanel;
    docks.libraryDock = new CollapsibleDock(QObject::tr("Patterns & Alphas"),
                                            QStringLiteral("LibraryDock"), &window);
    docks.libraryDock->setContent(libraryTabs(docks, window), libraryDockWidth);
    window.addDockWidget(Qt::RightDockWidgetArea, docks.libraryDock);
    return docks;
}

RecentFilesMenu *buildFilePage(RibbonMainWindow &window, const CommandSet &commands)
{
    RibbonBackstage *page = window.backstage();
    for (const char *id : {"new", "open", "save", "saveAs"})
        page->addCommand(commands[id]);
    for (const char *id : WindowServices::fileCommands())
        page->addCommand(commands[id]);
    page->addStretch();
    for (const char *id : WindowServices::footCommands(updateBaseUrl()))
        page->addCommand(commands[id]);
    for (const char *id : {"startPage", "about", "exit"})
        page->addCommand(commands[id]);
    auto *recentFiles = new RecentFilesMenu(&window);
    page->setContent(recentFiles->makeList());
    for (QAction *action : recentFiles->actions())
        QObject::connect(action, &QAction::triggered, page, [page] { page->setOpen(false); });
    return recentFiles;
}

} // namespace marlowen
