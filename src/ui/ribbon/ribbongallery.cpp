#include "ui/ribbon/ribbongallery.h"

#include "ui/ribbon/ribbonbutton.h"

#include <QButtonGroup>
#include <QGridLayout>

namespace marlowen {

RibbonGallery::RibbonGallery(QWidget *parent)
    : QWidget(parent)
    , m_grid(new QGridLayout(this))
    , m_buttons(new QButtonGroup(this))
{
    m_grid->setContentsMargins(0, 0, 0, 0);
    m_grid->setSpacing(2);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(m_buttons, &QButtonGroup::idClicked, this, &RibbonGallery::chosen);
}

void RibbonGallery::addItem(int id, QPoint place, const QIcon &icon, const QString &text)
{
    auto *button = new RibbonButton(RibbonButton::IconOnly, this);
    button->setCheckable(true);
    button->setIcon(icon);
    button->setText(text);
    button->setToolTip(text);
    m_buttons->addButton(button, id);
    m_grid->addWidget(button, place.y(), place.x());
}

int RibbonGallery::current() const
{
    return m_buttons->checkedId();
}

void RibbonGallery::setCurrent(int id)
{
    if (QAbstractButton *button = m_buttons->button(id))
        button->setChecked(true);
}

} // namespace marlowen
