#include "ui/keyrouter.h"

#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QToolButton>

namespace marlowen {

namespace {

/// The line that is typed in; null for widgets without one.
const QLineEdit *lineOf(const QWidget &widget)
{
    if (const auto *line = qobject_cast<const QLineEdit *>(&widget))
        return line;
    const bool field = qobject_cast<const QAbstractSpinBox *>(&widget) != nullptr;
    return field ? widget.findChild<QLineEdit *>() : nullptr;
}

/// Lists and choices go to the entry that begins with the typed letters.
bool takesText(const QWidget &widget)
{
    return lineOf(widget) || qobject_cast<const QAbstractItemView *>(&widget) ||
           qobject_cast<const QComboBox *>(&widget);
}

bool isSingleCharacter(const QKeyEvent &key)
{
    const bool modified =
        key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    return !modified && key.text().size() == 1 && key.text()[0].isPrint();
}

bool isEnter(const QKeyEvent &key)
{
    return key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
}

bool isPushed(const QWidget &widget)
{
    return qobject_cast<const QPushButton *>(&widget) || qobject_cast<const QToolButton *>(&widget);
}

/// Also in a popup of the window, but not in a dialog, which has a button for Enter itself.
bool standsIn(const QWidget &widget, const QWidget &window)
{
    const QWidget *top = widget.window();
    return top == &window || (top->windowType() == Qt::Popup && top->parentWidget() &&
                              top->parentWidget()->window() == &window);
}

} // namespace

KeyRouter::KeyRouter(QWidget *window, QWidget *filePage)
    : QObject(window)
    , m_window(window)
    , m_filePage(filePage)
{
    qApp->installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *, QWidget *now) {
        if (m_views.contains(now))
            m_lastView = now;
    });
}

void KeyRouter::addView(QWidget *view)
{
    m_views.append(view);
    if (!m_lastView)
        m_lastView = view;
}

bool KeyRouter::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::ShortcutOverride && event->type() != QEvent::KeyPress)
        return false;
    auto *focus = qobject_cast<QWidget *>(watched);
    if (!focus)
        return false;
    auto &key = *static_cast<QKeyEvent *>(event);
    if (event->type() == QEvent::KeyPress && isEnter(key) && isPushed(*focus) &&
        focus->hasFocus() && standsIn(*focus, *m_window)) {
        if (!key.isAutoRepeat())
            static_cast<QAbstractButton *>(focus)->click();
        return true;
    }
    if (focus->window() != m_window)
        return false;
    if (event->type() == QEvent::ShortcutOverride)
        return _routeShortcut(*focus, key);
    if (isEnter(key) && focus->hasFocus() && lineOf(*focus))
        _giveBack(focus);
    return false;
}

/// An accepted override keeps the key for the control.
bool KeyRouter::_routeShortcut(QWidget &focus, QKeyEvent &key) const
{
    if (isSingleCharacter(key) && (m_filePage->isVisible() || takesText(focus))) {
        key.accept();
        return true;
    }
    const QLineEdit *line = lineOf(focus);
    const bool undo = key.matches(QKeySequence::Undo);
    if (!line || !(undo || key.matches(QKeySequence::Redo)))
        return false;
    if (undo ? line->isUndoAvailable() : line->isRedoAvailable())
        return false;
    key.ignore();
    return true;
}

/// After the field has accepted the typed text.
void KeyRouter::_giveBack(QWidget *field)
{
    QTimer::singleShot(0, field, [this, field] {
        if (field->hasFocus() && m_lastView && m_lastView->isVisible())
            m_lastView->setFocus(Qt::OtherFocusReason);
    });
}

} // namespace marlowen
