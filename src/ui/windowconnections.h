#pragma once

#include "ui/windowparts.h"

namespace marlowen {

class CenterArea;
class MainWindow;

/// Who calls whom: the commands, the ribbon's pages, the docks and the views call the window's
/// slots, one to one.
void connectCommands(MainWindow &window, const ToolActions &tools, const RecentFilesMenu &recent);
void connectPages(MainWindow &window, const WindowPages &pages);
void connectDocks(MainWindow &window, const WindowDocks &docks);
void connectViews(MainWindow &window, CenterArea &center);

} // namespace marlowen
