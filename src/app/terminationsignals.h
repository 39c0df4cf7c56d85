#pragma once

namespace marlowen {

/// Makes SIGTERM, SIGINT and SIGHUP quit the application as closing its window does: unsaved work
/// is asked about, the layout is saved, the session log closed. A second signal, for example while
/// that question is open, ends the process at once with exit code 1. Call once, when the main
/// window exists: quitting has no effect on earlier dialogs, and a signal may simply end the start.
void quitOnTerminationSignals();

} // namespace marlowen
