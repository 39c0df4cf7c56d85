#pragma once

#include <QHash>
#include <QObject>

#include <span>

class QAction;
class QWidget;

namespace marlowen {

/// One command of the window. Texts are marked with QT_TRANSLATE_NOOP("Commands", "...").
struct CommandRow
{
    const char *id;    ///< object name of its action
    const char *label; ///< on the button
    const char *icon;  ///< resource name; may be empty
    const char *hint;  ///< one sentence in the tool tip; may be empty
    const char *keys;  ///< shortcuts, separated by "; "; may be empty
    const char *idle;  ///< why it cannot act, when setReason() gave no other reason
    bool checkable = false;
    const char *longName = ""; ///< first words of the tool tip; empty: the label
};

/// The actions of a window, made from rows. Tool tips name the command, what it does, its shortcut
/// and, while it is disabled, why.
class CommandSet : public QObject
{
    Q_OBJECT

public:
    /// Shortcuts work in the whole window.
    explicit CommandSet(QWidget *window);

    void add(std::span<const CommandRow> rows);
    QAction *add(const CommandRow &row);
    /// The action of an id that was added; anything else is a programming error.
    QAction *operator[](const char *id) const;
    bool has(const char *id) const { return m_actions.contains(QLatin1String(id)); }
    QList<QAction *> all() const { return m_order; }
    /// The words its tool tip begins with.
    static QString nameOf(const QAction &action);

    /// Disables with this reason; an empty one enables.
    void setReason(const char *id, const QString &reason);
    void setReason(QAction *action, const QString &reason);

private:
    void _describe(QAction *action);

    QWidget *m_window;
    QHash<QString, QAction *> m_actions;
    QList<QAction *> m_order;
};

} // namespace marlowen
