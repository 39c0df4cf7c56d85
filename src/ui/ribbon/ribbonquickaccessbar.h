#pragma once

#include <QWidget>

class QHBoxLayout;

namespace marlowen {

class RibbonButton;

/// The few commands that are always at hand, as a row of small buttons before the tabs.
class RibbonQuickAccessBar : public QWidget
{
    Q_OBJECT

public:
    explicit RibbonQuickAccessBar(QWidget *parent = nullptr);

    /// The command that leads to the file page: text on the accent colour, first in the row.
    RibbonButton *setApplicationCommand(QAction *action);
    RibbonButton *addCommand(QAction *action);

private:
    QHBoxLayout *m_row;
};

} // namespace marlowen
