#pragma once

class QMainWindow;
class QSplitter;

namespace marlowen {

/// The window's own layout between two starts.
namespace windowLayout {

/// Restores geometry, docks (also which of them are folded) and splitter, and keeps the window on
/// the screen. False when no layout of the docks was stored.
bool restore(QMainWindow &window, QSplitter &splitter);
void store(const QMainWindow &window, const QSplitter &splitter);

} // namespace windowLayout

} // namespace marlowen
