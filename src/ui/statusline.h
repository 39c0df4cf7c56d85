#pragma once

#include <QString>

class QLabel;
class QStatusBar;

namespace marlowen {

class Relief;
struct Step;

/// The permanent fields of the status bar: the position under the pointer, and the relief's size.
class StatusLine
{
public:
    /// The bar owns the fields.
    explicit StatusLine(QStatusBar &bar);

    void showPosition(const QString &text);
    /// Cells, size in the unit (index into lengthUnits) and zoom (1 is a cell a pixel); empty
    /// without a relief.
    void showExtent(const Relief *relief, int unit, double zoom);

    /// Names the step that was taken back or done again, for some seconds.
    void nameStep(const Step &step);

private:
    QStatusBar *m_bar;
    QLabel *m_position;
    QLabel *m_extent;
};

} // namespace marlowen
