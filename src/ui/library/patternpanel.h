#pragma once

#include "base/result.h"

#include <QFileSystemWatcher>
#include <QString>
#include <QTimer>
#include <QWidget>

class QComboBox;
class QLabel;
class QLineEdit;
class QListView;
class QMenu;
class QToolButton;

namespace marlowen {

class PatternModel;

/// The patterns of the library: its folders, a search field, thumbnails. Patterns are added by
/// dropping files or from the relief, renamed, moved to the trash, dragged out to be opened, and
/// chosen to be placed. What fails is shown in a message box.
class PatternPanel : public QWidget
{
    Q_OBJECT

public:
    explicit PatternPanel(QWidget *parent = nullptr);

    /// Reads the folders again; done by itself when one changes.
    void reload();
    /// The folder that new patterns go to: the one that is shown, or the user's.
    QString targetFolder() const;
    /// Copies pattern files into the library and chooses the last of them.
    void addFiles(const QStringList &paths);
    /// Shows a pattern that was added.
    void showPattern(const QString &path);
    /// Why nothing can be added from the relief, and why nothing can be placed; empty when it can.
    void setReasons(const QString &againstAdding, const QString &againstPlacing);
    /// What "Add to library" adds is the selection.
    void setSelectionPresent(bool present);

signals:
    /// The relief, or its selection, shall be added to the library.
    void addWanted();
    void openWanted(const QString &path);
    void placeWanted(const QString &path);

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void _makeList();
    void _arrange();
    void _showFolders();
    void _showEntries();
    void _showPlacing();
    void _activate(const QModelIndex &index);
    void _offer(const QPoint &position);
    void _fill(QMenu &menu, const QModelIndex &index);
    void _rename(const QString &path, const QString &name);
    void _remove(const QString &path);
    void _newFolder();
    void _showLater(const Failure &failure);
    QString _currentPath() const;

    PatternModel *m_model;
    QComboBox *m_folders;
    QLineEdit *m_search;
    QListView *m_list;
    QLabel *m_nothing;
    QToolButton *m_add;
    QToolButton *m_place;
    QString m_reasonAgainstPlacing;
    QFileSystemWatcher m_watcher;
    QTimer m_changed; ///< runs from a change of a folder to the next look at it
};

} // namespace marlowen
