#pragma once

#include <QStringList>

namespace marlowen {

/// Runs one command ("convert", "info", "run", "thumbnail", "--help", "--version"; the program's
/// own name is not among the arguments) and returns the exit status: 0 done, 1 the work failed, 2
/// the command line is wrong. A failure prints one line on standard error.
int runCommandLine(const QStringList &arguments);

} // namespace marlowen
