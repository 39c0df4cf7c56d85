#include "ui/ribbon/ribbonpage.h"

#include "ui/ribbon/ribbongroup.h"

#include <QEvent>

namespace marlowen {

RibbonPage::RibbonPage(const QString &title, QWidget *parent)
    : QWidget(parent)
    , m_title(title)
{
    setAccessibleName(title);
    setBackgroundRole(QPalette::Button);
    setAutoFillBackground(true);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

RibbonGroup *RibbonPage::addGroup(const QString &title)
{
    auto *group = new RibbonGroup(title, this);
    group->show();
    m_groups.push_back(group);
    return group;
}

QSize RibbonPage::sizeHint() const
{
    return {600, 4 + RibbonGroup::contentHeight(this) + fontMetrics().height() + 6};
}

void RibbonPage::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    _arrange();
}

bool RibbonPage::event(QEvent *event)
{
    const bool done = QWidget::event(event);
    if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::Polish ||
        event->type() == QEvent::Show)
        _arrange();
    return done;
}

/// The group that takes the step to `state` next: the rightmost.
RibbonGroup *RibbonPage::_nextToGiveWay(int state) const
{
    RibbonGroup *next = nullptr;
    for (RibbonGroup *group : m_groups) {
        if (!group->isHidden() && group->state() < state)
            next = group;
    }
    return next;
}

void RibbonPage::_arrange()
{
    if (m_arranging)
        return;
    m_arranging = true;
    int needed = 0;
    for (RibbonGroup *group : m_groups) {
        group->setState(RibbonGroup::Full);
        needed += group->isHidden() ? 0 : group->widthIn(RibbonGroup::Full);
    }
    for (const RibbonGroup::State state :
         {RibbonGroup::Medium, RibbonGroup::Icons, RibbonGroup::Collapsed}) {
        while (needed > width()) {
            RibbonGroup *group = _nextToGiveWay(state);
            if (!group)
                break;
            needed += group->widthIn(state) - group->widthIn(group->state());
            group->setState(state);
        }
    }
    int left = 0;
    for (RibbonGroup *group : m_groups) {
        if (group->isHidden())
            continue;
        const int wide = group->widthIn(group->state());
        group->setGeometry(left, 0, wide, height());
        group->setState(group->state());
        left += wide;
    }
    m_arranging = false;
}

} // namespace marlowen
