#include "ui/ribbon/ribbonquickaccessbar.h"

#include "ui/ribbon/ribbonbutton.h"

#include <QHBoxLayout>

namespace marlowen {

RibbonQuickAccessBar::RibbonQuickAccessBar(QWidget *parent)
    : QWidget(parent)
    , m_row(new QHBoxLayout(this))
{
    m_row->setContentsMargins(0, 0, 4, 0);
    m_row->setSpacing(2);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
}

RibbonButton *RibbonQuickAccessBar::setApplicationCommand(QAction *action)
{
    auto *button = new RibbonButton(action, RibbonButton::Small, this);
    button->setAccented(true);
    button->setMinimumWidth(64);
    button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    m_row->insertWidget(0, button);
    m_row->insertSpacing(1, 6);
    return button;
}

RibbonButton *RibbonQuickAccessBar::addCommand(QAction *action)
{
    auto *button = new RibbonButton(action, RibbonButton::IconOnly, this);
    m_row->addWidget(button);
    return button;
}

} // namespace marlowen
