#pragma once

#include <QString>

class QMimeData;

namespace marlowen {

/// Whether the window opens files of this name.
bool opensInWindow(const QString &path);
/// The filter of the open dialog, "Sculpt Files (*.scp *.jpg ...)".
QString openFilter();
/// The file of a drag to be opened: the first that the window can open, otherwise the first; empty
/// when there is none on this machine.
QString fileToOpen(const QMimeData &data);

} // namespace marlowen
