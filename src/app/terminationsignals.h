#pragma once

#include <functional>

namespace marlowen {

/// Makes SIGTERM, SIGINT and SIGHUP quit the application as closing its window does: the layout is
/// saved, the session log closed. `leaveWork` is called first: when it returns true, unsaved work
/// is safe until the next start and everything ends at once; else the window asks about it. A
/// second signal, for example while that question is open, ends the process at once with exit
/// code 1. Call once, when the main window exists: quitting has no effect on earlier dialogs, and a
/// signal may simply end the start.
void quitOnTerminationSignals(std::function<bool()> leaveWork);

} // namespace marlowen
