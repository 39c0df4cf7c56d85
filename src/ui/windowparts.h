#pragma once

#include <QList>

class QAction;

namespace marlowen {

class CollapsibleDock;
class CommandSet;
class EditPage;
class ExportPage;
class ImportSession;
class LibraryPanel;
class OrientPage;
class PatternPanel;
class PlacePanel;
class RecentFilesMenu;
class RibbonMainWindow;
class SculptPanels;
class SizePage;
class ToolActions;
class ToolsPage;
class ViewSettingsPage;

/// The widgets of the window, made by the functions below; the window owns them.
struct WindowPages
{
    /// The ribbon's pages, in their order.
    enum Id { ViewSettings, Size, SculptingTools, Edit2D, Export, OrientScale };

    ViewSettingsPage *viewSettings;
    SizePage *size;
    ToolsPage *tools;
    EditPage *edit;
    OrientPage *orient;
    ExportPage *exports;
};

struct WindowDocks
{
    SculptPanels *panels;
    LibraryPanel *library;
    PatternPanel *patterns;
    PlacePanel *place;
    CollapsibleDock *toolDock;
    CollapsibleDock *libraryDock;
};

/// Every command of the window.
void addWindowCommands(CommandSet &commands);

WindowPages buildRibbon(RibbonMainWindow &window, CommandSet &commands, const ToolActions &tools);
WindowDocks buildDocks(RibbonMainWindow &window, ImportSession &session);
/// The file page; its recent files close it when one is chosen.
RecentFilesMenu *buildFilePage(RibbonMainWindow &window, const CommandSet &commands);

} // namespace marlowen
