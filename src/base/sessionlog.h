#pragma once

#include <QString>
#include <QTextStream>

#include <functional>

namespace marlowen {

/// The process-wide session log "marlowen3_<pid in hexadecimal>.log" in the data folder. The file
/// is created, truncated, by the first entry written; a process that writes none has no file. When
/// it cannot be opened the failure handler is called once and later entries are lost.
///
/// Each of the first three returns the stream after writing its prefix; the caller appends the text
/// and "\n": `logInfo() << "Created main window\n"; logFlush();`
QTextStream &logInfo();     ///< prefix "Info: "
QTextStream &logWarning();  ///< prefix "Warning: "
QTextStream &logCritical(); ///< prefix "Critical: "
void logFlush();

/// Writes the closing line, flushes and closes the file if it is open. Nothing when no entry was
/// ever written.
void logClose();

/// Called with the dialog title and sentence when the log file cannot be opened. Rooms without
/// windows cannot show it themselves. Set before the first entry.
void setLogFailureHandler(
    std::function<void(const QString &title, const QString &sentence)> handler);

} // namespace marlowen
