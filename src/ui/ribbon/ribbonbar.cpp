#include "ui/ribbon/ribbonbar.h"

#include "ui/ribbon/ribbonarrow.h"
#include "ui/ribbon/ribbonbutton.h"
#include "ui/ribbon/ribboncolors.h"
#include "ui/ribbon/ribbonfocus.h"
#include "ui/ribbon/ribbonpage.h"
#include "ui/ribbon/ribbonquickaccessbar.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QStackedWidget>
#include <QTabBar>
#include <QVBoxLayout>

#include <utility>

namespace marlowen {

RibbonBar::RibbonBar(QWidget *parent)
    : QWidget(parent)
    , m_quickAccess(new RibbonQuickAccessBar(this))
    , m_tabs(new QTabBar(this))
    , m_minimize(new RibbonButton(RibbonButton::IconOnly, this))
    , m_stack(new QStackedWidget(this))
{
    auto *row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 6, 0);
    row->setSpacing(0);
    row->addWidget(m_quickAccess);
    row->addWidget(m_tabs, 1);
    row->addWidget(m_minimize, 0, Qt::AlignVCenter);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 1);
    column->setSpacing(0);
    column->addLayout(row);
    column->addWidget(m_stack);

    m_tabs->setExpanding(false);
    m_tabs->setDrawBase(false);
    m_tabs->setUsesScrollButtons(true);
    m_tabs->setElideMode(Qt::ElideNone);
    m_tabs->setMinimumHeight(30);
    m_tabs->setFocusPolicy(Qt::TabFocus);
    m_tabs->setAccessibleName(tr("Ribbon tabs"));
    m_tabs->installEventFilter(this);
    m_stack->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    m_minimize->setAccessibleName(tr("Minimise the ribbon"));
    connect(m_tabs, &QTabBar::currentChanged, this, &RibbonBar::_tabChanged);
    connect(m_tabs, &QTabBar::tabBarClicked, this, [this](int tab) {
        if (tab < 0 || std::exchange(m_clickWasDouble, false))
            return;
        if (m_minimized)
            _floatPage(!m_floating || tab != m_tabs->currentIndex());
        emit pageActivated(m_tabs->tabData(tab).toInt());
    });
    connect(m_tabs, &QTabBar::tabBarDoubleClicked, this, [this](int tab) {
        // The tab bar reports the second press as a click too, after this.
        m_clickWasDouble = tab >= 0;
        if (tab >= 0)
            toggleMinimized();
    });
    connect(m_minimize, &RibbonButton::clicked, this, &RibbonBar::toggleMinimized);
    setMinimized(false);
}

RibbonPage *RibbonBar::addPage(const QString &title)
{
    auto *page = new RibbonPage(title);
    m_pages.push_back(page);
    m_stack->addWidget(page);
    m_stack->setFixedHeight(page->sizeHint().height());
    const int tab = m_tabs->addTab(title);
    m_tabs->setTabData(tab, pageCount() - 1);
    return page;
}

RibbonPage *RibbonBar::page(int number) const
{
    return number >= 0 && number < pageCount() ? m_pages[static_cast<size_t>(number)] : nullptr;
}

/// Tabs stay where they are when hidden, so that a tab's place is its page's number.
int RibbonBar::_tabOf(int number) const
{
    return number;
}

int RibbonBar::currentPage() const
{
    return m_tabs->currentIndex();
}

bool RibbonBar::isPageVisible(int number) const
{
    return page(number) && m_tabs->isTabVisible(_tabOf(number));
}

void RibbonBar::setPageVisible(int number, bool visible)
{
    if (!page(number))
        return;
    if (!visible && currentPage() == number) {
        for (int other = 0; other < pageCount(); ++other) {
            if (other != number && isPageVisible(other)) {
                setCurrentPage(other);
                break;
            }
        }
    }
    // A tab bar that is set twice before it lays out its tabs does not lay them out.
    if (m_tabs->isTabVisible(_tabOf(number)) != visible)
        m_tabs->setTabVisible(_tabOf(number), visible);
}

void RibbonBar::setCurrentPage(int number)
{
    if (isPageVisible(number))
        m_tabs->setCurrentIndex(_tabOf(number));
}

void RibbonBar::_tabChanged(int tab)
{
    if (!page(tab))
        return;
    m_stack->setCurrentIndex(tab);
    emit currentPageChanged(tab);
}

void RibbonBar::setMinimized(bool on)
{
    const bool changed = on != m_minimized;
    _floatPage(false);
    m_minimized = on;
    m_stack->setVisible(!on);
    _drawArrow();
    m_minimize->setText(on ? tr("Keep the ribbon open") : tr("Minimise the ribbon"));
    m_minimize->setToolTip(on ? tr("Keep the ribbon open (Ctrl+F1)")
                              : tr("Show only the tabs (Ctrl+F1)"));
    if (changed)
        emit minimizedChanged(on);
}

void RibbonBar::_drawArrow()
{
    m_minimize->setIcon(
        ribbonArrow(m_minimized ? Qt::DownArrow : Qt::UpArrow, RibbonColors::of(palette()).text));
}

void RibbonBar::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        _drawArrow();
}

/// Shows the page over the window, or hides it. Only while minimised.
void RibbonBar::_floatPage(bool on)
{
    if (on == m_floating || (on && !m_minimized))
        return;
    m_floating = on;
    if (on) {
        m_stack->setParent(window());
        m_stack->setGeometry(QRect(mapTo(window(), QPoint(0, height())),
                                   QSize(width(), m_stack->sizeHint().height())));
        m_stack->show();
        m_stack->raise();
        qApp->installEventFilter(this);
    } else {
        qApp->removeEventFilter(this);
        static_cast<QVBoxLayout *>(layout())->addWidget(m_stack);
        m_stack->setVisible(!m_minimized);
    }
}

void RibbonBar::takeFocus()
{
    m_tabs->setFocus(Qt::ShortcutFocusReason);
}

bool RibbonBar::_tabKey(int key)
{
    if (key == Qt::Key_Down || key == Qt::Key_Return || key == Qt::Key_Enter) {
        if (m_minimized)
            _floatPage(true);
        QWidget *first = firstFocusable(m_stack);
        if (first)
            first->setFocus(Qt::TabFocusReason);
        return first != nullptr;
    }
    if (key == Qt::Key_Escape) {
        if (m_floating)
            _floatPage(false);
        else
            m_tabs->clearFocus();
        return true;
    }
    return false;
}

bool RibbonBar::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_tabs && event->type() == QEvent::KeyPress &&
        _tabKey(static_cast<QKeyEvent *>(event)->key()))
        return true;
    if (m_floating && event->type() == QEvent::MouseButtonPress) {
        const auto *widget = qobject_cast<QWidget *>(watched);
        const bool inside =
            widget && (widget == m_stack || m_stack->isAncestorOf(widget) || isAncestorOf(widget) ||
                       widget == this || widget->window() != window());
        if (widget && !inside)
            _floatPage(false);
    }
    if (m_floating && watched == window() && event->type() == QEvent::Resize)
        _floatPage(false);
    return QWidget::eventFilter(watched, event);
}

void RibbonBar::keyPressEvent(QKeyEvent *event)
{
    // Reaches the bar when a control of the page has no use for the key.
    if (event->key() == Qt::Key_Up || event->key() == Qt::Key_Escape)
        takeFocus();
    else
        QWidget::keyPressEvent(event);
}

void RibbonBar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const RibbonColors colors = RibbonColors::of(palette());
    painter.fillRect(rect(), colors.chrome);
    painter.fillRect(QRect(0, height() - 1, width(), 1), colors.border);
}

} // namespace marlowen
