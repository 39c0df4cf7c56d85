#include "ui/windowparts.h"

#include "ui/collapsibledock.h"
#include "ui/commandset.h"
#include "ui/library/librarypanel.h"
#include "ui/pages/editpage.h"
#include "ui/pages/exportpage.h"
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

#include <QAction>

namespace marlowen {

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

/// Titles of the pages, in the order of WindowPages::Id.
constexpr const char *pageTitles[] = {"View Settings", "Size",   "Sculpting Tools",
                                      "2D Edit",       "Export", "Orient / Scale"};

constexpr int toolDockWidth = 300;
constexpr int libraryDockWidth = 220;

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
    exportPage::addCommands(commands);
}

WindowPages buildRibbon(RibbonMainWindow &window, CommandSet &commands, const ToolActions &tools)
{
    RibbonQuickAccessBar *quick = window.quickAccessBar();
    quick->setApplicationCommand(commands["file"]);
    for (const char *id : {"undo", "redo", "zoomAll", "openLast"})
        quick->addCommand(commands[id]);
    for (const char *title : pageTitles)
        window.ribbonBar()->addPage(QObject::tr(title));
    WindowPages pages{};
    pages.viewSettings =
        new ViewSettingsPage(pageOf(window, WindowPages::ViewSettings), commands, &window);
    pages.size = new SizePage(pageOf(window, WindowPages::Size), commands, &window);
    pages.tools =
        new ToolsPage(pageOf(window, WindowPages::SculptingTools), commands, tools, &window);
    pages.edit = new EditPage(pageOf(window, WindowPages::Edit2D), commands, tools, &window);
    exportPage::build(pageOf(window, WindowPages::Export), commands);
    window.ribbonBar()->setPageVisible(WindowPages::OrientScale, false);
    window.ribbonBar()->setPageVisible(WindowPages::Export, false);
    window.ribbonBar()->setCurrentPage(WindowPages::SculptingTools);
    return pages;
}

WindowDocks buildDocks(RibbonMainWindow &window, ImportSession &session)
{
    WindowDocks docks{};
    docks.panels = new SculptPanels(&session, &window);
    docks.toolDock =
        new CollapsibleDock(QObject::tr("Tool Panel"), QStringLiteral("ToolDock"), &window);
    docks.toolDock->setContent(docks.panels, toolDockWidth);
    window.addDockWidget(Qt::LeftDockWidgetArea, docks.toolDock);
    docks.library = new LibraryPanel(&window);
    docks.libraryDock = new CollapsibleDock(QObject::tr("Patterns & Alphas"),
                                            QStringLiteral("LibraryDock"), &window);
    docks.libraryDock->setContent(docks.library, libraryDockWidth);
    window.addDockWidget(Qt::RightDockWidgetArea, docks.libraryDock);
    return docks;
}

RecentFilesMenu *buildFilePage(RibbonMainWindow &window, const CommandSet &commands)
{
    RibbonBackstage *page = window.backstage();
    for (const char *id : {"new", "open", "save", "saveAs"})
        page->addCommand(commands[id]);
    page->addStretch();
    for (const char *id : {"about", "exit"})
        page->addCommand(commands[id]);
    auto *recentFiles = new RecentFilesMenu(&window);
    page->setContent(recentFiles->makeList());
    for (QAction *action : recentFiles->actions())
        QObject::connect(action, &QAction::triggered, page, [page] { page->setOpen(false); });
    return recentFiles;
}

} // namespace marlowen
