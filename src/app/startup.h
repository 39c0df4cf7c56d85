#pragma once

namespace marlowen {

/// The life of the desktop program from the process's arguments to its exit code: the event loop's
/// result; -1 without OpenGL 2.1; 1 after a fatal error during start-up.
int runMarlowen(int argc, char **argv);

} // namespace marlowen
