#pragma once

#include <functional>

namespace marlowen {

/// Arms a timer of 1.5 seconds on the application: a process that still runs then, held by a modal
/// dialog or a nested event loop, writes so to the session log and is ended by `end`. The sister
/// program waits for this process to end before it imports the file.
void armForcedExit(std::function<void()> end);

/// Ends the process at once with exit code 0.
void exitAtOnce();

} // namespace marlowen
