#include "ui/commandset.h"

#include "ui/icons.h"

#include <QAction>
#include <QCoreApplication>
#include <QKeySequence>
#include <QWidget>

namespace marlowen {

namespace {

constexpr char longNameProperty[] = "longName";
constexpr char hintProperty[] = "hint";
constexpr char idleProperty[] = "idle";
constexpr char reasonProperty[] = "reason";

QString translated(const char *text)
{
    return *text ? QCoreApplication::translate("Commands", text) : QString();
}

} // namespace

CommandSet::CommandSet(QWidget *window)
    : QObject(window)
    , m_window(window)
{
}

void CommandSet::add(std::span<const CommandRow> rows)
{
    for (const CommandRow &row : rows)
        add(row);
}

QAction *CommandSet::add(const CommandRow &row)
{
    auto *action = new QAction(translated(row.label), m_window);
    action->setObjectName(QLatin1String(row.id));
    if (*row.icon)
        action->setIcon(icon(QLatin1String(row.icon)));
    action->setCheckable(row.checkable);
    action->setProperty(longNameProperty, translated(row.longName));
    action->setProperty(hintProperty, translated(row.hint));
    action->setProperty(idleProperty, translated(row.idle));
    if (*row.keys)
        action->setShortcuts(QKeySequence::listFromString(QLatin1String(row.keys)));
    m_window->addAction(action);
    m_actions.insert(action->objectName(), action);
    m_order.append(action);
    connect(action, &QAction::enabledChanged, this, [this, action] { _describe(action); });
    _describe(action);
    return action;
}

QAction *CommandSet::operator[](const char *id) const
{
    QAction *action = m_actions.value(QLatin1String(id));
    Q_ASSERT_X(action, "CommandSet", id);
    return action;
}

void CommandSet::setReason(const char *id, const QString &reason)
{
    setReason((*this)[id], reason);
}

void CommandSet::setReason(QAction *action, const QString &reason)
{
    action->setProperty(reasonProperty, reason);
    action->setEnabled(reason.isEmpty());
    _describe(action);
}

QString CommandSet::nameOf(const QAction &action)
{
    const QString text = action.property(longNameProperty).toString();
    return text.isEmpty() ? action.text().remove(QLatin1Char('&')) : text;
}

void CommandSet::_describe(QAction *action)
{
    QString text = nameOf(*action);
    QStringList keys;
    for (const QKeySequence &sequence : action->shortcuts())
        keys.append(sequence.toString(QKeySequence::NativeText));
    if (!keys.isEmpty())
        text += QStringLiteral(" (%1)").arg(keys.join(QStringLiteral(", ")));
    QStringList lines{text, action->property(hintProperty).toString()};
    if (!action->isEnabled()) {
        const QString reason = action->property(reasonProperty).toString();
        lines.append(reason.isEmpty() ? action->property(idleProperty).toString() : reason);
    }
    lines.removeAll(QString());
    action->setToolTip(lines.join(QLatin1Char('\n')));
}

} // namespace marlowen
