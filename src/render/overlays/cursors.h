#pragma once

#include <QCursor>

namespace marlowen {

/// The mouse pointers of the views. Their size follows the setting "/state/view/cursorScale", which
/// is read once a process.

/// Pointer of interaction modes 1 to 5; the default arrow for any other.
QCursor cursorForMode(int mode);

/// Percent divided by 100 and kept within 1 to 4.
double cursorScale();

/// Writes the setting and builds the pointers anew. Widgets take them with the next
/// cursorForMode().
void setCursorScale(int percent);

} // namespace marlowen
