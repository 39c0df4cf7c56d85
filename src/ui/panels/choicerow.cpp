#include "ui/panels/choicerow.h"

#include "ui/icons.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

namespace marlowen {

ChoiceRow::ChoiceRow(const QString &label, const std::vector<Choice> &choices, QWidget *parent)
    : QWidget(parent)
    , m_label(new QLabel(label, this))
    , m_group(new QButtonGroup(this))
{
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(4);
    row->addWidget(m_label);
    row->addSpacing(4);
    int id = 0;
    for (const Choice &choice : choices) {
        auto *button = new QToolButton(this);
        button->setText(choice.text);
        button->setAccessibleName(QStringLiteral("%1: %2").arg(label, choice.text));
        button->setCheckable(true);
        button->setAutoRaise(true);
        button->setFocusPolicy(Qt::StrongFocus);
        if (!choice.icon.isEmpty()) {
            button->setIcon(icon(choice.icon));
            button->setIconSize(QSize(16, 16));
        }
        m_group->addButton(button, id++);
        row->addWidget(button);
    }
    row->addStretch(1);
    m_group->button(0)->setChecked(true);
    setReason(QString());
    connect(m_group, &QButtonGroup::idClicked, this, &ChoiceRow::chosen);
}

int ChoiceRow::choice() const
{
    return m_group->checkedId();
}

void ChoiceRow::showChoice(int index)
{
    if (QAbstractButton *wanted = m_group->button(index))
        wanted->setChecked(true);
}

void ChoiceRow::setLabelWidth(int width)
{
    m_label->setFixedWidth(width);
}

void ChoiceRow::setReason(const QString &reason)
{
    setEnabled(reason.isEmpty());
    m_label->setToolTip(reason);
    for (QAbstractButton *button : m_group->buttons())
        button->setToolTip(reason.isEmpty() ? button->text() : reason);
}

QToolButton *ChoiceRow::button(int index) const
{
    return qobject_cast<QToolButton *>(m_group->button(index));
}

} // namespace marlowen
