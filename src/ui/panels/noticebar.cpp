#include "ui/panels/noticebar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>

namespace marlowen {

NoticeBar::NoticeBar(const QString &text, const QString &action, QWidget *parent)
    : QFrame(parent)
{
    setBackgroundRole(QPalette::AlternateBase);
    setAutoFillBackground(true);
    auto *label = new QLabel(text);
    label->setWordWrap(true);
    auto *act = new QPushButton(action);
    auto *close = new QToolButton;
    close->setText(QStringLiteral("\u00d7"));
    close->setAutoRaise(true);
    close->setToolTip(tr("Leaves it as it is and does not ask again."));
    close->setAccessibleName(tr("Leave it as it is"));
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(8, 4, 4, 4);
    row->setSpacing(4);
    row->addWidget(label, 1);
    row->addWidget(act);
    row->addWidget(close);
    connect(act, &QPushButton::clicked, this, &NoticeBar::accepted);
    connect(close, &QToolButton::clicked, this, &NoticeBar::dismissed);
}

} // namespace marlowen
