#pragma once

#include <QString>

class QMimeData;

namespace marlowen {

/// Whether the window opens files of this name.
bool opensInWindow(const QString &path);
/// The filter of the open dialog, "Sculpt Files (*.scp *.jpg ...)".
QString openFilter();
/// The first local file of a drag that the window opens; empty when there is none.
QString firstOpenable(const QMimeData &data);

} // namespace marlowen
