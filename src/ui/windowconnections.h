#pragma once

#include "ui/windowparts.h"

namespace marlowen {

class MainWindow;

/// Who calls whom: the commands, the ribbon's pages and the docks call the window's slots, one to
/// one.
void connectCommands(MainWindow &window, const ToolActions &tools, const RecentFilesMenu &recent);
void connectPages(MainWindow &window, const WindowPages &pages);
void connectDocks(MainWindow &window, const WindowDocks &docks);

} // namespace marlowen
