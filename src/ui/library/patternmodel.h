#pragma once

#include "ui/library/patternstore.h"

#include <QAbstractListModel>
#include <QCache>
#include <QIcon>
#include <QTimer>

namespace marlowen {

/// The patterns of a folder of the library, or of all, for an icon view. A thumbnail is read from
/// its file when the view asks for it, a few in each turn of the event loop, so that of a folder of
/// thousands only the visible ones are read. Dragged entries are files.
class PatternModel : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role { PathRole = Qt::UserRole, BuiltInRole };

    /// Thumbnails are so many pixels wide and high.
    explicit PatternModel(int side, QObject *parent = nullptr);

    /// Shows the patterns of a folder, of all for an empty path, whose name contains the text.
    void show(const QString &folder, const QString &wanted);
    /// Row of a file; -1 when it is not shown.
    int rowOf(const QString &path) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    /// Only requests another name; the receiver renames and shows the folder again.
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QMimeData *mimeData(const QModelIndexList &indexes) const override;
    QStringList mimeTypes() const override;

signals:
    void renameWanted(const QString &path, const QString &name);

private:
    struct Thumbnail
    {
        QIcon icon;
        QString text; ///< author and size; why it cannot be read
    };

    const Thumbnail *_thumbnail(const PatternEntry &entry) const;
    void _readWaiting();
    Thumbnail *_read(const QString &path) const;

    int m_side;
    QIcon m_empty;
    QList<PatternEntry> m_entries;
    mutable QCache<QString, Thumbnail> m_thumbnails;
    mutable QList<PatternEntry> m_waiting; ///< the last one was asked for last
    mutable QTimer m_reader;
};

} // namespace marlowen
