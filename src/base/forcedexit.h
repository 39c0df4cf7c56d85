#pragma once

/// Asks the application to quit and, if the process is still running 1.5 seconds later (a modal
/// dialog or a nested event loop keeps it alive), writes that to the session log and ends it at
/// once with exit code 0. For the end of an export that the sister program waits for: save the
/// window's state and sync the settings before.
void quitAfterExport();
