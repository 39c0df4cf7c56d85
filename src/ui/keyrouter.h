#pragma once

#include <QObject>
#include <QPointer>

class QKeyEvent;
class QWidget;

namespace marlowen {

/// Decides between the window's shortcuts and the control that has the keyboard. Keys that are a
/// single character go to controls that take text (fields, lists, choices), and choose no tool
/// behind the file page. Undo and redo go to the relief when the field has nothing to take back.
/// Enter in a field gives the keyboard back to the view that had it last; Enter on a button of the
/// window, or of its popups, presses it.
class KeyRouter : public QObject
{
    Q_OBJECT

public:
    /// Watches the application's events for this window; `filePage` is a child of it.
    KeyRouter(QWidget *window, QWidget *filePage);

    /// A widget whose focus counts as the view's; the first is the one to begin with.
    void addView(QWidget *view);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool _routeShortcut(QWidget &focus, QKeyEvent &key) const;
    void _giveBack(QWidget *field);

    QWidget *m_window;
    QWidget *m_filePage;
    QList<QWidget *> m_views;
    QPointer<QWidget> m_lastView;
};

} // namespace marlowen
