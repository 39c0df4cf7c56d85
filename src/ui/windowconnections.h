#pragma once

#include "ui/windowparts.h"

namespace marlowen {

class CenterArea;
class ExportController;
class MainWindow;
class ModelController;
class PlaceController;
class ToolController;
class WindowServices;
class Workbench;
class WorkDisplay;

/// The objects whose signals the window follows.
struct WindowWork
{
    Workbench &bench;
    CenterArea &center;
    PatternPanel &patterns;
    RecentFilesMenu &recentFiles;
    ExportController &exports;
    ToolController &tool;
    PlaceController &place;
    ModelController &models;
    WindowServices &services;
    WorkDisplay &display;
};

/// Who calls whom: the commands, the ribbon's pages, the docks, the views and the controllers call
/// the window's slots, one to one.
void connectCommands(MainWindow &window, const ToolActions &tools, const RecentFilesMenu &recent);
void connectPages(MainWindow &window, const WindowPages &pages);
void connectDocks(MainWindow &window, const WindowDocks &docks);
void connectViews(MainWindow &window, CenterArea &center);
void connectWork(MainWindow &window, const WindowWork &work);

} // namespace marlowen
