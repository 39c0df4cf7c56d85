#pragma once

class QEvent;
class QWidget;

namespace marlowen {

/// Answers the "What's This?" events of a window with the tool tips of its widgets. True when the
/// event was answered; any other event is none of its business.
bool explainFromTips(const QWidget &window, QEvent &event);

} // namespace marlowen
