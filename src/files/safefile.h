#pragma once

#include "base/result.h"

#include <QString>

#include <functional>

class QFile;
class QIODevice;

namespace marlowen {

/// The failures that file commands show.
Failure openFailed(const QString &detail = {}); ///< "Open Failed" / "Error! File Open Failed"
Failure loadFailed(const QString &detail = {}); ///< "Load Failed" / "Error! File I/O Error"
Failure saveFailed(const QString &detail = {}); ///< "Save Failed" / "Error! File I/O Error"

/// Opens the file for reading. Only regular files are read: a named pipe would block the program
/// until somebody writes to it, a device may never end. Fails with `failure`, its detail the
/// reason.
Outcome openRegularFile(QFile &file, Failure failure);

/// Writes a file completely or not at all: `write` fills a temporary file in the target's folder,
/// which replaces the target only when everything has reached the disk. `write` returns false to
/// give up (a bad stream, a cancelled computation). A target other than a regular file (a device, a
/// pipe) is written directly. Fails with `unopened` when the target cannot be opened and with
/// saveFailed() later.
Outcome writeSafely(const QString &path, const std::function<bool(QIODevice &)> &write,
                    const Failure &unopened = saveFailed());

/// Waits until the name of a new or renamed file is on the disk; best effort, as not every file
/// system supports it.
void syncName(const QString &path);

} // namespace marlowen
