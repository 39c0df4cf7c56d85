#pragma once

#include "base/result.h"
#include "relief/grid/relief.h"

#include <QString>

#include <memory>

namespace marlowen {

/// The workspace file (".scp"): magic 0x50744D77, version 1, then the relief as reliefstream.h
/// writes it; 40 + 16 * width * height bytes, big-endian.

/// Writes a temporary file and renames it; fails with "Save Failed" / "Error! File I/O Error"; an
/// existing file then stays unchanged.
Outcome saveWorkspace(const Relief &relief, const QString &path);

/// Fails with "Open Failed" / "Error! File Open Failed", "Invalid File" / "Error! File has invalid
/// Magic Number or Version" (versions 0 and 1 are read) or "Load Failed" / "Error! File I/O Error".
/// Values that no relief may hold become 0 and the session log says how many.
Result<std::unique_ptr<Relief>> loadWorkspace(const QString &path);

} // namespace marlowen
