#pragma once

#include <QList>
#include <QObject>

class QAction;
class QWidget;

namespace marlowen {

/// The five actions of the recent files. An action shows the name of its file and carries the whole
/// path as its data; actions without a file are hidden.
class RecentFilesMenu : public QObject
{
    Q_OBJECT

public:
    static constexpr int entryCount = 5;

    explicit RecentFilesMenu(QObject *parent = nullptr);

    const QList<QAction *> &actions() const { return m_actions; }
    /// Reads the list from the settings.
    void refresh();
    /// A heading and a row for each action with the folder of its file; the caller owns it.
    QWidget *makeList();

private:
    QList<QAction *> m_actions;
};

} // namespace marlowen
