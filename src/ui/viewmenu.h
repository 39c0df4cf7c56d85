#pragma once

#include <QPoint>

namespace marlowen {

class MainWindow;
class ReliefView;

/// The menu of the right mouse button in a view: tool, size and strength, undo, select none, zoom.
/// Returns when it is closed.
void showViewMenu(MainWindow &window, ReliefView &view, QPoint position);

} // namespace marlowen
