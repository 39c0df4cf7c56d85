#pragma once

#include "base/result.h"

#include <QFileSystemWatcher>
#include <QList>
#include <QString>
#include <QWidget>

class QLabel;
class QLineEdit;
class QListWidget;
class QListWidgetItem;

namespace marlowen {

/// Content of the library dock: thumbnails of the built-in alpha brushes and of the user's
/// pictures, a search field, and a place to drop pictures on. Choosing a thumbnail sets the alpha
/// brush of the process; "None" removes it.
///
/// Thumbnails are made one a turn of the event loop, so that a large folder does not hold up the
/// window. What fails is shown in a message box.
class LibraryPanel : public QWidget
{
    Q_OBJECT

public:
    explicit LibraryPanel(QWidget *parent = nullptr);

    /// Reads the user's folder again; done by itself when the folder changes.
    void reload();
    /// Copies pictures into the library and chooses the last of them.
    void addPictures(const QStringList &paths);

signals:
    /// The alpha brush of the process has another image, or none.
    void AlphaChanged();

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void _arrange();
    void _addItem(const QString &name, const QString &path);
    void _makeThumbnails();
    void _decorateNone();
    void _filter(const QString &wanted);
    void _choose(QListWidgetItem *item);
    void _browse();
    void _offerMenu(const QPoint &position);
    void _rename(const QString &path);
    void _remove(const QString &path);
    void _showLater(const Failure &failure);
    void _forgetLostChoice();
    QListWidgetItem *_itemOf(const QString &path) const;

    QLineEdit *m_search;
    QListWidget *m_list;
    QLabel *m_nothing;
    QString m_chosen;                   ///< path of the alpha brush; empty for none
    QList<QListWidgetItem *> m_waiting; ///< for their thumbnails
    QFileSystemWatcher m_folder;
};

} // namespace marlowen
