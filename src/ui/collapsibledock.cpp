#include "ui/collapsibledock.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMainWindow>
#include <QToolButton>

namespace marlowen {

namespace {

constexpr int stripWidth = 30;
/// In narrower windows docks open narrower, so that the views keep their share.
constexpr int roomyWindow = 1560;

} // namespace

CollapsibleDock::CollapsibleDock(const QString &title, const QString &name, QWidget *parent)
    : QDockWidget(QString(title).replace(QLatin1Char('&'), QStringLiteral("&&")), parent)
    , m_title(new QLabel(title))
    , m_button(new QToolButton)
{
    setObjectName(name);
    setFeatures(QDockWidget::DockWidgetMovable);
    setAllowedAreas(Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea);
    auto *bar = new QWidget(this);
    auto *row = new QHBoxLayout(bar);
    row->setContentsMargins(8, 3, 4, 3);
    row->setSpacing(4);
    row->addWidget(m_title, 1);
    row->addWidget(m_button);
    m_button->setAutoRaise(true);
    m_button->setObjectName(name + QStringLiteral("Collapse"));
    m_button->setToolTip(tr("Collapse / expand this panel"));
    m_button->setAccessibleName(m_button->toolTip());
    m_title->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    setTitleBarWidget(bar);
    connect(m_button, &QToolButton::clicked, this, &CollapsibleDock::toggleCollapsed);
    connect(this, &QDockWidget::dockLocationChanged, this, &CollapsibleDock::_showState);
    // Later: the window is still laying out its docks.
    connect(this, &QDockWidget::dockLocationChanged, this, &CollapsibleDock::_takeSide,
            Qt::QueuedConnection);
    _showState();
}

void CollapsibleDock::setContent(QWidget *content, int width)
{
    m_content = content;
    m_openWidth = width;
    setWidget(content);
}

void CollapsibleDock::setCollapsed(bool on)
{
    if (on == m_collapsed)
        return;
    m_collapsed = on;
    if (on)
        m_openWidth = width();
    m_content->setVisible(!on);
    m_title->setVisible(!on);
    setMinimumWidth(on ? stripWidth : 0);
    setMaximumWidth(on ? stripWidth : QWIDGETSIZE_MAX);
    if (!on)
        takeOpenWidth();
    _showState();
}

void CollapsibleDock::fold(int openWidth)
{
    setCollapsed(true);
    m_openWidth = openWidth;
}

void CollapsibleDock::takeOpenWidth()
{
    auto *window = qobject_cast<QMainWindow *>(parentWidget());
    if (!window || m_collapsed)
        return;
    const int share = m_openWidth * window->width() / roomyWindow;
    window->resizeDocks({this}, {qMin(m_openWidth, share)}, Qt::Horizontal);
}

/// The other docks on its side go to the other.
void CollapsibleDock::_takeSide()
{
    auto *window = qobject_cast<QMainWindow *>(parentWidget());
    if (!window)
        return;
    const Qt::DockWidgetArea side = window->dockWidgetArea(this);
    for (CollapsibleDock *other : window->findChildren<CollapsibleDock *>()) {
        if (other == this || window->dockWidgetArea(other) != side)
            continue;
        window->addDockWidget(side == Qt::LeftDockWidgetArea ? Qt::RightDockWidgetArea
                                                             : Qt::LeftDockWidgetArea,
                              other);
        other->takeOpenWidth();
        takeOpenWidth();
    }
}

/// The arrow points where the panel goes.
void CollapsibleDock::_showState()
{
    const auto *window = qobject_cast<QMainWindow *>(parentWidget());
    const bool left = window && window->dockWidgetArea(const_cast<CollapsibleDock *>(this)) ==
                                    Qt::LeftDockWidgetArea;
    m_button->setArrowType(left != m_collapsed ? Qt::LeftArrow : Qt::RightArrow);
}

} // namespace marlowen
