#pragma once

class QWidget;

namespace marlowen {

/// The first control below `parent`, in the order of the Tab key, that the keyboard can reach now;
/// null when there is none.
QWidget *firstFocusable(const QWidget *parent);

} // namespace marlowen
