#pragma once

#include "recovery/foundwork.h"

#include <QHash>
#include <QImage>
#include <QWidget>

class QLabel;
class QVBoxLayout;

namespace marlowen {

/// The list of unsaved work that windows have left behind: a picture, the name, the time of the
/// last step and how many steps there are, with "Restore" and "Discard", and "Later" for all of it.
class RecoveryPage : public QWidget
{
    Q_OBJECT

public:
    explicit RecoveryPage(QWidget *parent = nullptr);

    static constexpr int thumbnailSide = 96;

    void showWork(const QList<FoundWork> &work);
    /// Nothing when the work is not listed any more.
    void setThumbnail(const QString &folder, const QImage &picture);

signals:
    void restoreClicked(const QString &folder);
    void discardClicked(const QString &folder);
    void laterClicked();

private:
    QWidget *_row(const FoundWork &work);

    QVBoxLayout *m_rows = nullptr;
    QHash<QString, QLabel *> m_pictures; ///< by folder
};

} // namespace marlowen
