#pragma once

class QWidget;

namespace marlowen {

/// The first control below `parent`, in the order of the Tab key, that the keyboard can reach now;
/// null when there is none.
QWidget *firstFocusable(const QWidget *parent);

/// Moves the focus from the focused control of the page to the nearest one in the direction of an
/// arrow key. False when the key is for the bar above: no arrow key, or Up from the first row.
bool moveFocus(QWidget *page, int key);

} // namespace marlowen
