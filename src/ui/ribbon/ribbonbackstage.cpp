#include "ui/ribbon/ribbonbackstage.h"

#include "ui/ribbon/ribbonarrow.h"
#include "ui/ribbon/ribbonbutton.h"
#include "ui/ribbon/ribboncolors.h"

#include <QAction>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QVBoxLayout>

namespace marlowen {

RibbonBackstage::RibbonBackstage(const QString &title, QWidget *parent)
    : QWidget(parent)
    , m_side(new QWidget(this))
    , m_commands(new QVBoxLayout(m_side))
    , m_contentPlace(new QVBoxLayout)
    , m_back(new RibbonButton(RibbonButton::Small, m_side))
{
    setObjectName(QStringLiteral("Backstage"));
    setAccessibleName(title);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Button);
    m_side->setAutoFillBackground(true);
    m_side->setBackgroundRole(QPalette::Window);
    m_side->setFixedWidth(220);
    m_commands->setContentsMargins(12, 12, 12, 12);
    m_commands->setSpacing(4);
    m_back->setText(tr("Back"));
    _drawArrow();
    m_back->setToolTip(tr("Back to the work (Esc)"));
    m_back->setFixedHeight(36);
    m_back->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(m_back, &RibbonButton::clicked, this, [this] { setOpen(false); });
    m_commands->addWidget(m_back);
    m_commands->addSpacing(8);
    m_contentPlace->setContentsMargins(32, 20, 32, 20);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(m_side);
    row->addLayout(m_contentPlace, 1);
    parent->installEventFilter(this);
    hide();
}

void RibbonBackstage::_drawArrow()
{
    m_back->setIcon(ribbonArrow(Qt::LeftArrow, RibbonColors::of(palette()).text));
}

void RibbonBackstage::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        _drawArrow();
}

RibbonButton *RibbonBackstage::addCommand(QAction *action)
{
    auto *button = new RibbonButton(action, RibbonButton::Small, m_side);
    button->setFixedHeight(36);
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_commands->addWidget(button);
    connect(action, &QAction::triggered, this, [this] { setOpen(false); });
    return button;
}

void RibbonBackstage::addStretch()
{
    m_commands->addStretch(1);
}

void RibbonBackstage::setContent(QWidget *content)
{
    m_contentPlace->addWidget(content);
}

void RibbonBackstage::setOpen(bool open)
{
    if (open == isVisible())
        return;
    if (open) {
        setGeometry(parentWidget()->rect());
        show();
        raise();
        m_back->setFocus(Qt::OtherFocusReason);
    } else {
        hide();
    }
    emit openChanged(open);
}

bool RibbonBackstage::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize && isVisible())
        setGeometry(parentWidget()->rect());
    return QWidget::eventFilter(watched, event);
}

/// Esc closes the page, even if the window has a shortcut on it.
bool RibbonBackstage::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride &&
        static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape)
        event->accept();
    return QWidget::event(event);
}

void RibbonBackstage::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        setOpen(false);
    else if (event->key() == Qt::Key_Down || event->key() == Qt::Key_Up)
        focusNextPrevChild(event->key() == Qt::Key_Down);
    else
        QWidget::keyPressEvent(event);
}

} // namespace marlowen
