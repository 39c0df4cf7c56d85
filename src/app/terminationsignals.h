#pragma once

namespace marlowen {

/// Makes SIGTERM, SIGINT and SIGHUP quit the application as closing its window does: the layout is
/// saved, the session log closed. Call once, after the application object exists.
void quitOnTerminationSignals();

} // namespace marlowen
